#include "taskengine/parsejob.h"

#include "taskengine/address.h"
#include "taskengine/commandjob.h"

#include <utility>

namespace taskengine {

ParseJob::ParseJob(RequestPointer request, const JobContext &context,
                   std::unique_ptr<VideoInfoSource> source)
    : TransferJob(std::move(request), context), m_source(std::move(source))
{
}

void ParseJob::beginTry()
{
    m_answer.clear();
    const std::string page = request().record.szPageURL;
    if (const auto fault = addressFault(page))
        fail(*fault);
    else
        fetch({m_source->infoAddress(page)});
}

/** A site that nobody listens at is more likely mistyped than out for a second. */
bool ParseJob::isWorthRetrying(const Fault &fault) const
{
    return !fault.is(Failure::ConnectionFailed) && !fault.is(Failure::ProxyFailed);
}

std::unique_ptr<Job> ParseJob::alternative(const Fault &fault)
{
    if (!meansNoVideoInfo(fault.value) || options().fallbackCommand.empty())
        return nullptr;
    return std::make_unique<CommandJob>(requestPointer(), context(), options().fallbackCommand,
                                        true);
}

std::optional<Fault> ParseJob::judge(const ResponseHead &head)
{
    if (head.status / 100 != 2)
        return statusFaultHere();
    if (head.encoded)
        return permanent(Failure::MalformedResponse);
    if (head.length > static_cast<std::int64_t>(options().responseLimit))
        return permanent(Failure::ResponseTooLarge);
    return std::nullopt;
}

std::optional<Fault> ParseJob::take(const char *data, std::size_t length)
{
    if (length > options().responseLimit - m_answer.size())
        return permanent(Failure::ResponseTooLarge);
    m_answer.append(data, length);
    return std::nullopt;
}

std::optional<Fault> ParseJob::complete()
{
    if (m_answer.empty())
        return permanent(Failure::EmptyResponse);
    std::string lines = m_source->lines(m_answer);
    if (lines.empty())
        return permanent(Failure::MalformedResponse);
    finish({DOWN_STATE_PARSE_SUCCESS, 0, std::move(lines), {}});
    return std::nullopt;
}

} // namespace taskengine
