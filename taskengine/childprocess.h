/** A program that is run for its output. */
#ifndef VIDEODOWN_TASKENGINE_CHILDPROCESS_H
#define VIDEODOWN_TASKENGINE_CHILDPROCESS_H

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace taskengine {

/**
 * Runs without a shell, with nothing on standard input and its messages thrown away, and in a
 * process group of its own, which ends with this object.
 */
class ChildProcess
{
public:
    ChildProcess() = default;
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;
    ~ChildProcess() { kill(); }

    /** @param arguments the program, looked up in PATH, and its arguments. @return 0 or errno */
    int start(const std::vector<std::string> &arguments);

    /**
     * Appends what the program has written since the last call, without waiting.
     * @return false when nothing more can come
     */
    bool read(std::string &output);

    /** @return its exit status, -1 when it ended otherwise; nothing while it still runs */
    std::optional<int> exitStatus() const;

    /** @param stopped whether the whole group stands still */
    void setStopped(bool stopped) const;

    /** Kills the group and waits for the program, which takes no time after that. */
    void kill();

    /** @return the descriptor that `read` reads, -1 when nothing more can come */
    int outputDescriptor() const { return m_output; }

private:
    void closeOutput();

    pid_t m_process = -1;
    int m_output = -1;
};

} // namespace taskengine

#endif
