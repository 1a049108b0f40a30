#include "taskengine/commandjob.h"

#include "taskengine/address.h"
#include "taskengine/commandoutput.h"
#include "taskengine/videoinfosource.h"

#include <algorithm>
#include <utility>

namespace taskengine {

namespace {

/** How often to look whether a program has ended that has closed its output. */
constexpr std::chrono::milliseconds endInterval{10};

/** POSIX: what a program that could not be run leaves, posix_spawn's child and shells alike. */
constexpr int notFoundStatus = 127;

} // namespace

CommandJob::CommandJob(RequestPointer request, const JobContext &context,
                       std::vector<std::string> command, bool isFallback)
    : Job(std::move(request), context), m_command(std::move(command)), m_isFallback(isFallback)
{
}

/** Only addresses with a scheme get this far, so none can look like an option of the command. */
void CommandJob::beginTry()
{
    const std::string page = request().record.szPageURL;
    if (const auto fault = addressFault(page)) {
        fail(*fault);
        return;
    }
    std::vector<std::string> arguments = m_command;
    arguments.push_back(page);
    m_deadline = Clock::now() + options().commandTimeLimit;
    if (const int error = m_process.start(arguments))
        fail(commandFault(error));
}

void CommandJob::work(Clock::time_point now)
{
    if (isPaused())
        return;
    const bool mayWriteMore = m_process.read(m_output);
    const auto status = mayWriteMore ? std::nullopt : m_process.exitStatus();
    if (m_output.size() > options().responseLimit)
        fail(permanent(Failure::UnusableOutput));
    else if (status)
        conclude(*status);
    else if (hasTimeLimit() && now >= m_deadline)
        fail(permanent(Failure::TimedOut));
}

void CommandJob::conclude(int status)
{
    if (status == notFoundStatus)
        fail(permanent(Failure::CommandNotFound));
    else if (status != 0)
        fail(permanent(Failure::CommandFailed));
    else
        deliver();
}

void CommandJob::deliver()
{
    std::string lines = linesOfCommand(m_output);
    const std::string name = m_isFallback ? "fallback" : "command";
    const auto mistake = mistakeIn(m_output);
    if (lines.empty() && (!mistake || mistake->line == 0)) {
        fail(permanent(Failure::UnusableOutput));
        return;
    }
    if (mistake) {
        lines = linesFor(*mistake);
    } else {
        headers().take(request().record.szTaskKey, lines);
        if (m_isFallback && lines.find("fmt_stream_map=") != std::string::npos)
            context().mutes.insert(hostOf(request().record.szPageURL));
        lines = signedLines(std::move(lines), name);
    }
    finish({DOWN_STATE_PARSE_SUCCESS, 0, lines + "answered_by=" + name + "\r\n", {}});
}

void CommandJob::setPaused(bool paused)
{
    m_process.setStopped(paused);
    if (paused)
        m_pausedAt = Clock::now();
    else
        m_deadline += Clock::now() - m_pausedAt;
}

Clock::time_point CommandJob::wakeTime() const
{
    const Clock::time_point idle = Job::wakeTime();
    if (isPaused())
        return idle;
    const bool isEnding = m_process.outputDescriptor() < 0;
    const Clock::time_point next = isEnding ? Clock::now() + endInterval : idle;
    return hasTimeLimit() ? std::min(next, m_deadline) : next;
}

} // namespace taskengine
