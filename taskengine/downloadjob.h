/** Downloads of videos and images. */
#ifndef VIDEODOWN_TASKENGINE_DOWNLOADJOB_H
#define VIDEODOWN_TASKENGINE_DOWNLOADJOB_H

#include "taskengine/furtherconnections.h"
#include "taskengine/partfile.h"
#include "taskengine/progressmeter.h"
#include "taskengine/transferjob.h"

namespace taskengine {

/**
 * Fetches a file into its part file, from where that has a gap when the site allows it. The try's
 * first connection is on its own as long as the file may be small or the site may not know ranges;
 * then further ones take pieces of what it still has to fetch.
 */
class DownloadJob : public TransferJob
{
public:
    DownloadJob(RequestPointer request, const JobContext &context);

    Clock::time_point wakeTime() const override;

private:
    void beginTry() override;
    std::unique_ptr<Completion> leaveFiles(bool mayContinue) override;
    void work(Clock::time_point now) override;
    void cutTry() override;
    void setPaused(bool paused) override;

    std::optional<Fault> judge(const ResponseHead &head) override;
    bool isComplete() const override;
    std::optional<Fault> take(const char *data, std::size_t length) override;
    std::optional<Fault> complete() override;

    bool isVideo() const { return request().kind == RequestKind::Video; }
    std::optional<Fault> openPart();
    void fetchGap();
    std::optional<Fault> workTogether(Clock::time_point now);
    std::optional<Fault> goOnAlone();
    bool isWhole() const { return m_total < 0 || m_part->size() == m_total; }
    std::optional<Fault> judgeKind(const ResponseHead &head) const;
    std::optional<Fault> beginWhole(const ResponseHead &head);
    std::optional<Fault> continuePart(const ResponseHead &head);
    std::optional<Fault> judgeUnsatisfiable(const ResponseHead &head);
    std::optional<Fault> expect(std::int64_t total);
    Fault startOver();
    std::optional<Fault> judgeLength() const;
    void warnNoResume();
    void report(Clock::time_point now);
    void saveFacts(Clock::time_point now);

    std::unique_ptr<PartFile> m_part = std::make_unique<PartFile>(); ///< never null
    ProgressMeter m_meter;
    std::int64_t m_total = -1;   ///< bytes of the whole file, -1 while unknown
    Clock::time_point m_begun{}; ///< when the body that is received began
    Clock::time_point m_saved{}; ///< when the pieces were noted last
    std::int64_t m_end = -1;     ///< where the announced body ends in the file, -1 when unknown
    std::int64_t m_asked = 0;    ///< where the first connection asked the site to begin
    Piece m_rest;                ///< what it still has to fetch
    std::optional<HostConnections::Seat> m_seat; ///< of the first connection
    FurtherConnections m_others;
    bool m_mayShare = false;  ///< the site gives parts of exactly this file
    bool m_firstDone = false; ///< the first connection has nothing to fetch, others have
    std::int64_t m_sizeReported = -1;
    bool m_complete = false; ///< the part turned out to be the whole file
    bool m_warned = false;
};

} // namespace taskengine

#endif
