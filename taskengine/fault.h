/** Faults: how they are distinguished, and which of them may pass. */
#ifndef VIDEODOWN_TASKENGINE_FAULT_H
#define VIDEODOWN_TASKENGINE_FAULT_H

#include "taskengine/failure.h"

#include <chrono>
#include <curl/curl.h>

namespace taskengine {

/** One thing that went wrong. */
struct Fault
{
    double value = 0;                  ///< HTTP status or `Failure`, as events report it
    bool transient = false;            ///< a later try may succeed
    std::chrono::milliseconds wait{0}; ///< least delay that the site asked for

    bool is(Failure failure) const { return value == static_cast<double>(failure); }
};

/** @return a fault that trying again does not cure */
Fault permanent(Failure failure);

/** @return a fault that may have gone at the next try */
Fault transient(Failure failure);

/** @return the fault of an answer whose status is not the wanted one */
Fault statusFault(CURL *easy);

/**
 * @param viaProxy whether the connection was to a proxy
 * @return the fault of a transfer that ended with `code`, other than CURLE_OK
 */
Fault transferFault(CURL *easy, CURLcode code, bool viaProxy);

/** @return the fault of a file operation that set `error` (errno) */
Fault fileFault(int error);

/** @return the fault of a command that could not be started because of `error` (errno) */
Fault commandFault(int error);

} // namespace taskengine

#endif
