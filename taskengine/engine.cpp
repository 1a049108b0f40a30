#include "taskengine/engine.h"

#include "taskengine/address.h"
#include "taskengine/commandjob.h"
#include "taskengine/downloadjob.h"
#include "taskengine/parsejob.h"

#include <stdexcept>

namespace taskengine {

std::unique_ptr<Job> Job::create(const RequestPointer &request, const JobContext &context)
{
    if (request->kind != RequestKind::Parse)
        return std::make_unique<DownloadJob>(request, context);
    const Options &options = *request->options;
    if (!options.videoInfoCommand.empty())
        return std::make_unique<CommandJob>(request, context, options.videoInfoCommand, false);
    if (!options.fallbackCommand.empty() &&
        context.mutes.count(hostOf(request->record.szPageURL)) > 0)
        return std::make_unique<CommandJob>(request, context, options.fallbackCommand, true);
    return std::make_unique<ParseJob>(request, context, std::make_unique<VideoInfoSource>());
}

Engine::CurlUse::CurlUse()
{
    if (curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK)
        throw std::runtime_error("libcurl cannot be initialised");
}

Engine::CurlUse::~CurlUse()
{
    curl_global_cleanup();
}

Engine::Engine() : m_table(std::make_shared<RequestTable>()), m_loop(m_table, m_events) {}

Engine::~Engine()
{
    stop();
}

/** The file comes first: when the caller looks for the next free name, this one must be taken. */
bool Engine::submit(RequestKind kind, const tagTaskInfo &record)
{
    const auto request = std::make_shared<Request>(kind, record, m_table);
    if (!request->isUsable() || !m_table->isFree(request->record.szTaskKey))
        return false;
    if (kind != RequestKind::Parse)
        request->target->reserve(request->record.szSavePath);
    if (!m_table->submit(request))
        return false;
    m_loop.wake();
    return true;
}

bool Engine::command(const char *key, Command::Verb verb)
{
    if (!m_table->command(key, verb))
        return false;
    m_loop.wake();
    return true;
}

bool Engine::stop()
{
    m_table->close();
    m_loop.stop();
    return m_events.stop();
}

} // namespace taskengine
