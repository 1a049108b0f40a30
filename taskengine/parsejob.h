/** Parse requests that ask the site. */
#ifndef VIDEODOWN_TASKENGINE_PARSEJOB_H
#define VIDEODOWN_TASKENGINE_PARSEJOB_H

#include "taskengine/transferjob.h"
#include "taskengine/videoinfosource.h"

#include <memory>
#include <string>

namespace taskengine {

/** Fetches the video-info response of a page. */
class ParseJob : public TransferJob
{
public:
    ParseJob(RequestPointer request, const JobContext &context,
             std::unique_ptr<VideoInfoSource> source);

private:
    void beginTry() override;
    bool isWorthRetrying(const Fault &fault) const override;
    std::unique_ptr<Job> alternative(const Fault &fault) override;
    std::optional<Fault> judge(const ResponseHead &head) override;
    std::optional<Fault> take(const char *data, std::size_t length) override;
    std::optional<Fault> complete() override;

    const std::unique_ptr<VideoInfoSource> m_source;
    std::string m_answer;
};

} // namespace taskengine

#endif
