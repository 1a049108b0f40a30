#ifndef VIDEODOWN_SITE_FAULTS_H
#define VIDEODOWN_SITE_FAULTS_H

#include "site/videosite.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

/** Those that meet a fault together. All members may be called on any thread. */
class Crowd
{
public:
    /** @return what counts as one more while it lives; null when there are so many already */
    std::shared_ptr<void> join(unsigned most);

    /** @return how long to wait, so that all send no more than so many bytes per second */
    std::chrono::nanoseconds waitFor(std::uint64_t bytes, std::uint64_t perSecond);

private:
    std::mutex m_mutex;
    // Protected by m_mutex:
    std::shared_ptr<std::atomic<unsigned>> m_members = std::make_shared<std::atomic<unsigned>>(0);
    std::chrono::steady_clock::time_point m_idleFrom;
};

/** A fault, and who else meets it. */
struct MetFault
{
    Misbehaviour fault;
    std::shared_ptr<Crowd> crowd = std::make_shared<Crowd>();
};

/** The faults that the site was given. All members may be called on any thread. */
class Faults
{
public:
    void add(const Misbehaviour &fault);
    void clear();
    /** The fault that a request with this path and query meets; a faultless one when there is none.
     */
    MetFault take(const std::string &target);

private:
    struct Entry
    {
        MetFault meeting;
        unsigned met = 0;
    };

    std::mutex m_mutex;
    // Protected by m_mutex:
    std::vector<Entry> m_entries;
};

#endif
