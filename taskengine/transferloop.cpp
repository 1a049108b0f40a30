#include "taskengine/transferloop.h"

#include <algorithm>
#include <csignal>
#include <new>
#include <utility>

namespace taskengine {

namespace {

constexpr std::chrono::milliseconds longestWait{1000};

/** How long to stay away from a multi handle that reports an error, so as not to spin. */
constexpr std::chrono::milliseconds errorWait{50};

CURLM *newMulti()
{
    CURLM *multi = curl_multi_init();
    if (multi == nullptr)
        throw std::bad_alloc();
    return multi;
}

/** Rounded up: woken early, the loop would only turn once more. */
std::chrono::milliseconds until(Clock::time_point time)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(time - Clock::now());
    return std::max(left, std::chrono::milliseconds(0));
}

/** Signals are for the application's threads; a broken pipe or a file limit is an error code here.
 */
void blockSignals()
{
    sigset_t signals;
    sigfillset(&signals);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

} // namespace

TransferLoop::TransferLoop(std::shared_ptr<RequestTable> table, EventDispatcher &events)
    : m_table(std::move(table)), m_events(events), m_multi(newMulti()), m_thread([this] { run(); })
{
}

TransferLoop::~TransferLoop()
{
    stop();
}

void TransferLoop::wake()
{
    curl_multi_wakeup(m_multi.get());
}

void TransferLoop::stop()
{
    m_stopping = true;
    wake();
    const MutexLock lock(m_joinMutex);
    if (m_thread.joinable())
        m_thread.join();
}

void TransferLoop::run()
{
    blockSignals();
    while (!m_stopping) {
        step();
        waitForWork();
    }
    for (const auto &entry : m_jobs)
        entry.second->abandon();
    m_jobs.clear();
}

void TransferLoop::step()
{
    runCommands();
    int running = 0;
    if (curl_multi_perform(m_multi.get(), &running) != CURLM_OK)
        std::this_thread::sleep_for(errorWait);
    readResults();
    m_rate.tick(Clock::now());
    tickJobs();
    m_events.wake();
}

void TransferLoop::runCommands()
{
    for (const Command &command : m_table->takeCommands())
        runCommand(command);
}

/** Stops and pauses of a request that has just ended find no job: its last event is on its way. */
void TransferLoop::runCommand(const Command &command)
{
    const Request *request = command.request.get();
    if (command.verb == Command::Verb::Start)
        m_jobs[request] = Job::create(
            command.request, {m_multi.get(), m_rate, m_events, m_headers, m_hosts, m_mutes});
    const auto found = m_jobs.find(request);
    if (found == m_jobs.end())
        return;
    Job &job = *found->second;
    switch (command.verb) {
    case Command::Verb::Start:
        job.start();
        break;
    case Command::Verb::Stop:
        job.stop();
        break;
    case Command::Verb::TogglePause:
        job.togglePause();
        break;
    }
    settle(found);
}

/** @return the next entry; a job that is over has gone, or its successor has its place */
TransferLoop::Jobs::iterator TransferLoop::settle(Jobs::iterator entry)
{
    while (entry->second->isOver()) {
        auto successor = entry->second->takeSuccessor();
        if (!successor)
            return m_jobs.erase(entry);
        entry->second = std::move(successor);
    }
    return std::next(entry);
}

void TransferLoop::readResults()
{
    int left = 0;
    while (const CURLMsg *message = curl_multi_info_read(m_multi.get(), &left)) {
        if (message->msg != CURLMSG_DONE)
            continue;
        const CURLcode result = message->data.result; // gone once the handle is removed
        void *transfer = nullptr;
        curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &transfer);
        static_cast<Transfer *>(transfer)->end(result);
    }
}

void TransferLoop::tickJobs()
{
    const Clock::time_point now = Clock::now();
    for (auto entry = m_jobs.begin(); entry != m_jobs.end();) {
        Job &job = *entry->second;
        if (!job.isOver())
            job.tick(now);
        entry = settle(entry);
    }
}

void TransferLoop::waitForWork()
{
    m_inputs.clear();
    Clock::time_point next = std::min(Clock::now() + longestWait, m_rate.wakeTime());
    for (const auto &entry : m_jobs) {
        next = std::min(next, entry.second->wakeTime());
        const int input = entry.second->inputDescriptor();
        if (input >= 0)
            m_inputs.push_back({input, CURL_WAIT_POLLIN, 0});
    }
    const auto timeout = static_cast<int>(until(next).count());
    const auto count = static_cast<unsigned>(m_inputs.size());
    if (curl_multi_poll(m_multi.get(), m_inputs.data(), count, timeout, nullptr) != CURLM_OK)
        std::this_thread::sleep_for(errorWait);
}

} // namespace taskengine
