#include "taskengine/job.h"

#include "taskengine/retrydelay.h"

#include <algorithm>
#include <utility>

namespace taskengine {

namespace {

constexpr std::int32_t mostTries = 100;
constexpr std::chrono::milliseconds idleInterval{1000};

} // namespace

void introduce(TransferRequest &transfer, const Request &task, const RequestHeaders &headers)
{
    transfer.headers = headers.fieldsFor(task, transfer.address);
    if (task.kind != RequestKind::Parse)
        transfer.page = task.record.szPageURL;
}

Job::Job(RequestPointer request, const JobContext &context)
    : m_request(std::move(request)), m_context(context)
{
}

void Job::start()
{
    const bool isParse = m_request->kind == RequestKind::Parse;
    post(isParse ? DOWN_STATE_START_PARSE : DOWN_STATE_START_DOWNLOAD);
    if (m_request->target->fault())
        fail(*m_request->target->fault());
    else
        beginTry();
}

void Job::stop()
{
    cutTry();
    finish({DOWN_STATE_USER_STOP, 0, {}, cleanUp(true)});
}

void Job::abandon()
{
    cutTry();
    cleanUp(true); // which waits for the disk: nothing else goes on
    m_over = true;
}

void Job::togglePause()
{
    m_paused = !m_paused;
    setPaused(m_paused); // also between two tries, of which the first may have ended in a pause
}

void Job::tick(Clock::time_point now)
{
    if (!m_waiting) {
        work(now);
    } else if (!m_paused && now >= m_nextTry) {
        m_waiting = false;
        beginTry();
    }
}

Clock::time_point Job::wakeTime() const
{
    const Clock::time_point idle = Clock::now() + idleInterval;
    return m_waiting && !m_paused ? std::min(m_nextTry, idle) : idle;
}

std::unique_ptr<Completion> Job::cleanUp(bool mayContinue)
{
    auto rest = leaveFiles(mayContinue);
    m_request->target->release();
    return rest;
}

void Job::post(tagDownloadStateCode code, double value)
{
    m_context.events.post(m_request, {code, value, {}, {}});
}

void Job::fail(const Fault &fault)
{
    cutTry();
    if (mayTryAgain(fault))
        scheduleTry(fault);
    else
        giveUp(fault);
}

bool Job::mayTryAgain(const Fault &fault) const
{
    const std::int32_t wanted =
        options().tries > 0 ? options().tries : m_request->record.nEngineParam2;
    const std::int32_t tries = std::clamp(wanted, 1, mostTries);
    return fault.transient && m_try < tries && isWorthRetrying(fault);
}

void Job::scheduleTry(const Fault &fault)
{
    ++m_try;
    m_waiting = true;
    m_nextTry =
        Clock::now() + std::max(delayBefore(m_try, m_request->record.nEngineParam3), fault.wait);
    post(DOWN_STATE_RETRY_DOWNLOAD, m_try);
}

/** The request has begun already, and may be paused. */
void Job::takeOver(bool paused)
{
    beginTry();
    if (paused)
        togglePause();
}

void Job::giveUp(const Fault &fault)
{
    m_successor = alternative(fault);
    if (m_successor) {
        m_over = true;
        m_successor->takeOver(m_paused);
        return;
    }
    const bool isDiskFull = fault.is(Failure::DiskFull);
    auto rest = cleanUp(fault.value != 404);
    if (isDiskFull)
        post(DOWN_STATE_DISK_NO_SPACE);
    const bool isParse = m_request->kind == RequestKind::Parse;
    finish({isParse ? DOWN_STATE_PARSE_FAIL : DOWN_STATE_DOWNLOAD_FAIL,
            fault.value,
            {},
            std::move(rest)});
}

void Job::finish(Event event)
{
    m_over = true;
    m_context.events.post(m_request, std::move(event));
}

} // namespace taskengine
