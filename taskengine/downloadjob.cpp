#include "taskengine/downloadjob.h"

#include "taskengine/address.h"
#include "taskengine/partending.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace taskengine {

namespace {

constexpr std::chrono::milliseconds reportInterval{250};
constexpr std::chrono::milliseconds saveInterval{500}; ///< a kill costs no more work than this

constexpr std::int64_t endless = std::numeric_limits<std::int64_t>::max();

} // namespace

DownloadJob::DownloadJob(RequestPointer request, const JobContext &context)
    : TransferJob(std::move(request), context), m_others(context, Job::request())
{
}

Clock::time_point DownloadJob::wakeTime() const
{
    return std::min(TransferJob::wakeTime(), Clock::now() + reportInterval);
}

void DownloadJob::beginTry()
{
    if (const auto fault = openPart()) {
        fail(*fault);
        return;
    }
    m_meter.restart(m_part->size(), Clock::now());
    fetchGap();
}

/** The rest of a file is asked for without its end, as sites know it from those who continue it. */
void DownloadJob::fetchGap()
{
    m_complete = false;
    m_firstDone = false;
    m_mayShare = false; // until the answer shows what it brings
    m_end = -1;
    m_asked = m_part->pieces().firstMissing();
    const PartFacts &facts = m_part->facts();
    const std::vector<Piece> gaps = m_part->pieces().missing({m_asked, facts.total});
    m_rest = {m_asked, gaps.empty() ? endless : gaps.front().end};
    m_seat.emplace(context().hosts, hostOf(request().record.szDownloadURL));
    const bool isRest = m_rest.end >= facts.total;
    fetch({request().record.szDownloadURL, m_asked, isRest ? -1 : m_rest.end, facts.validator});
}

/** Ready to go on at its end, or empty. */
std::optional<Fault> DownloadJob::openPart()
{
    if (!m_part->isOpen())
        return m_part->open(target()->path(), request().record.szTaskKey);
    if (m_part->size() == 0 || (isVideo() && m_part->canContinue()))
        return std::nullopt;
    warnNoResume();
    return m_part->restart();
}

std::unique_ptr<Completion> DownloadJob::leaveFiles(bool mayContinue)
{
    if (mayContinue && m_part->hasPieces())
        return partLeaving(std::exchange(m_part, std::make_unique<PartFile>()));
    leavePart(*m_part, mayContinue);
    return nullptr;
}

void DownloadJob::work(Clock::time_point now)
{
    report(now);
    TransferJob::work(now);
    if (!isTrying())
        return;
    if (const auto fault = workTogether(now))
        fail(*fault);
}

/** A part without a beginning would be of no use to a later request. */
std::optional<Fault> DownloadJob::workTogether(Clock::time_point now)
{
    if (m_mayShare && m_part->pieces().firstMissing() > 0) {
        if (const auto fault = m_others.work(*m_part, m_firstDone ? nullptr : &m_rest, now))
            return fault;
    }
    return m_firstDone && m_others.isIdle() && !isPaused() ? goOnAlone() : std::nullopt;
}

std::optional<Fault> DownloadJob::goOnAlone()
{
    if (isWhole())
        return complete();
    fetchGap();
    return std::nullopt;
}

void DownloadJob::cutTry()
{
    TransferJob::cutTry();
    m_seat.reset();
    m_others.giveUp();
}

void DownloadJob::setPaused(bool paused)
{
    TransferJob::setPaused(paused);
    m_others.setPaused(paused);
}

/** Also when another connection has fetched what the answer would bring next. */
bool DownloadJob::isComplete() const
{
    return m_complete || (m_rest.length() == 0 && m_rest.end < m_end);
}

std::optional<Fault> DownloadJob::judge(const ResponseHead &head)
{
    m_seat->moveTo(head.host);
    m_others.setHost(head.host);
    if (head.status == 416 && m_asked > 0)
        return judgeUnsatisfiable(head);
    if (head.status != 200 && head.status != 206)
        return statusFaultHere();
    if (const auto fault = judgeKind(head))
        return fault;
    return head.status == 206 ? continuePart(head) : beginWhole(head);
}

std::optional<Fault> DownloadJob::judgeKind(const ResponseHead &head) const
{
    const bool fits = isVideo() ? canBeVideo(head.mediaType) : canBeImage(head.mediaType);
    if (!fits || head.encoded)
        return permanent(Failure::NotMedia);
    const auto limit = static_cast<std::int64_t>(options().imageLimit);
    if (!isVideo() && head.length > limit)
        return permanent(Failure::ResponseTooLarge);
    return std::nullopt;
}

/** Also the answer to a range that the site does not serve, or no longer has. */
std::optional<Fault> DownloadJob::beginWhole(const ResponseHead &head)
{
    if (m_part->size() > 0) {
        warnNoResume();
        if (const auto fault = m_part->restart())
            return fault;
    }
    m_end = head.length < 0 ? endless : head.length;
    m_rest = {0, m_end};
    m_begun = Clock::now();
    if (isVideo())
        m_part->remember(head.length, head.validator);
    m_mayShare = isVideo() && head.acceptsRanges && head.length > 0 && !head.validator.empty();
    return expect(head.length);
}

std::optional<Fault> DownloadJob::continuePart(const ResponseHead &head)
{
    if (m_asked == 0)
        return permanent(Failure::MalformedResponse);
    const PartFacts &facts = m_part->facts();
    const bool isSameFile = (head.validator.empty() || head.validator == facts.validator) &&
                            head.range &&
                            (head.range->total < 0 || head.range->total == facts.total);
    if (!isSameFile || head.range->first != m_asked)
        return startOver();
    m_end = head.range->last + 1;
    if (m_end > std::min(m_rest.end, facts.total))
        return startOver();
    m_mayShare = true;
    return expect(facts.total);
}

/** RFC 9110, section 15.5.17: the size in the answer shows whether there is nothing left to get. */
std::optional<Fault> DownloadJob::judgeUnsatisfiable(const ResponseHead &head)
{
    const bool isWhole = m_part->size() == m_part->facts().total;
    m_complete = isWhole && head.range && head.range->total == m_part->size();
    if (m_complete)
        return expect(m_part->size());
    return startOver();
}

/** The site cannot be trusted with ranges of this file: the next try asks for all of it. */
Fault DownloadJob::startOver()
{
    m_part->remember(-1, {});
    return transient(Failure::RangeMismatch);
}

std::optional<Fault> DownloadJob::expect(std::int64_t total)
{
    m_total = total;
    if (isVideo() && total > 0 && total != m_sizeReported) {
        m_sizeReported = total;
        post(DOWN_STATE_FILE_SIZE, static_cast<double>(total));
    }
    if (!m_part->hasSpaceFor(total))
        return permanent(Failure::DiskFull);
    return std::nullopt;
}

std::optional<Fault> DownloadJob::take(const char *data, std::size_t length)
{
    const std::int64_t end = m_rest.first + static_cast<std::int64_t>(length);
    if (end > m_end)
        return startOver();
    if (!isVideo() && end > static_cast<std::int64_t>(options().imageLimit))
        return permanent(Failure::ResponseTooLarge);
    const std::int64_t wanted = std::min(end, m_rest.end) - m_rest.first;
    const auto fault = m_part->write(m_rest.first, data, static_cast<std::size_t>(wanted));
    m_rest.first += wanted;
    report(Clock::now());
    return fault;
}

std::optional<Fault> DownloadJob::complete()
{
    if (const auto fault = judgeLength())
        return fault;
    m_firstDone = true;
    m_seat.reset();
    if (!isWhole())
        return std::nullopt;
    m_others.giveUp();
    const std::int64_t size = m_part->size();
    if (isVideo() && size != m_sizeReported)
        post(DOWN_STATE_FILE_SIZE, static_cast<double>(size));
    if (m_meter.isNews(size))
        post(DOWN_STATE_DOWNLOAD_PROGRESS, static_cast<double>(size));
    auto part = std::exchange(m_part, std::make_unique<PartFile>());
    finish({DOWN_STATE_DOWNLOAD_FINISH,
            static_cast<double>(size),
            {},
            partCompletion(std::move(part), target())});
    return std::nullopt;
}

std::optional<Fault> DownloadJob::judgeLength() const
{
    if (m_part->size() == 0)
        return permanent(Failure::EmptyResponse);
    if (m_total >= 0 && !m_complete && m_rest.length() > 0)
        return transient(Failure::ShortBody);
    return std::nullopt;
}

void DownloadJob::warnNoResume()
{
    if (!m_warned)
        post(DOWN_STATE_NO_RESUME);
    m_warned = true;
}

void DownloadJob::report(Clock::time_point now)
{
    saveFacts(now);
    if (const auto position = m_meter.progress(m_part->size(), now))
        post(DOWN_STATE_DOWNLOAD_PROGRESS, static_cast<double>(*position));
    if (const auto speed = m_meter.speed(m_part->size(), now))
        post(DOWN_STATE_DOWNLOAD_SPEED, std::max(*speed, 0.0));
}

/** What takes so long may be interrupted, and is worth continuing. */
void DownloadJob::saveFacts(Clock::time_point now)
{
    if (now - m_begun >= reportInterval)
        m_part->saveFacts();
    if (now - m_saved < saveInterval)
        return;
    m_saved = now;
    m_part->savePieces();
}

} // namespace taskengine
