/** Parse requests that run the application's video-info command. */
#ifndef VIDEODOWN_TASKENGINE_COMMANDJOB_H
#define VIDEODOWN_TASKENGINE_COMMANDJOB_H

#include "taskengine/childprocess.h"
#include "taskengine/job.h"

#include <string>
#include <vector>

namespace taskengine {

/** Runs the command once, bounded in time and output; its faults are not retried. */
class CommandJob : public Job
{
public:
    /** @param command program and arguments; @param isFallback the site has been asked before */
    CommandJob(RequestPointer request, const JobContext &context, std::vector<std::string> command,
               bool isFallback);

    Clock::time_point wakeTime() const override;
    int inputDescriptor() const override { return isPaused() ? -1 : m_process.outputDescriptor(); }

private:
    void beginTry() override;
    void cutTry() override { m_process.kill(); }
    void work(Clock::time_point now) override;
    void setPaused(bool paused) override;
    void conclude(int status);
    void deliver();
    bool hasTimeLimit() const { return options().commandTimeLimit.count() > 0; }

    const std::vector<std::string> m_command;
    const bool m_isFallback;
    ChildProcess m_process;
    std::string m_output;
    Clock::time_point m_deadline;
    Clock::time_point m_pausedAt;
};

} // namespace taskengine

#endif
