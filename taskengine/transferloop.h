/** The transfer thread. */
#ifndef VIDEODOWN_TASKENGINE_TRANSFERLOOP_H
#define VIDEODOWN_TASKENGINE_TRANSFERLOOP_H

#include "engine/annotatedmutex.h"
#include "taskengine/job.h"

#include <atomic>
#include <thread>
#include <unordered_map>
#include <vector>

namespace taskengine {

/** Owns the jobs and the multi handle; everything below runs on its one thread. */
class TransferLoop
{
public:
    /** Starts the thread. @throws std::system_error, std::bad_alloc */
    TransferLoop(std::shared_ptr<RequestTable> table, EventDispatcher &events);
    TransferLoop(const TransferLoop &) = delete;
    TransferLoop &operator=(const TransferLoop &) = delete;
    ~TransferLoop();

    /** Makes the thread look for commands. Any thread. */
    void wake();

    /** Ends all jobs without events, and the thread. Any thread but a job's; may be repeated. */
    void stop();

private:
    struct MultiDeleter
    {
        void operator()(CURLM *multi) const { curl_multi_cleanup(multi); }
    };

    void run();
    void step();
    void runCommands();
    void runCommand(const Command &command);
    using Jobs = std::unordered_map<const Request *, std::unique_ptr<Job>>;
    Jobs::iterator settle(Jobs::iterator entry);
    void readResults();
    void tickJobs();
    void waitForWork();

    const std::shared_ptr<RequestTable> m_table;
    EventDispatcher &m_events;
    const std::unique_ptr<CURLM, MultiDeleter> m_multi;
    std::atomic<bool> m_stopping{false};
    RateLimit m_rate;                        ///< the thread's own
    RequestHeaders m_headers;                ///< the thread's own
    HostConnections m_hosts;                 ///< the thread's own
    std::unordered_set<std::string> m_mutes; ///< the thread's own
    Jobs m_jobs;                             ///< the thread's own
    std::vector<curl_waitfd> m_inputs;       ///< the thread's own
    AnnotatedMutex m_joinMutex;
    std::thread m_thread VIDEODOWN_GUARDED_BY(m_joinMutex); ///< so that it is joined once
};

} // namespace taskengine

#endif
