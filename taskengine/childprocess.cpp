#include "taskengine/childprocess.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern "C" char **environ; // NOLINT(readability-redundant-declaration): POSIX has it in no header

namespace taskengine {

namespace {

/** What the child's descriptors and signals shall be. */
class SpawnSettings
{
public:
    explicit SpawnSettings(int output)
    {
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
#if defined(__GLIBC__) && __GLIBC_PREREQ(2, 34)
        posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
#endif
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setpgroup(&attributes, 0);
        setSignals();
    }
    SpawnSettings(const SpawnSettings &) = delete;
    SpawnSettings &operator=(const SpawnSettings &) = delete;
    ~SpawnSettings()
    {
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&actions);
    }

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;

private:
    /** What the application blocks or ignores is no business of the child. */
    void setSignals()
    {
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes, &signals);
        sigaddset(&signals, SIGPIPE);
        sigaddset(&signals, SIGINT);
        sigaddset(&signals, SIGTERM);
        posix_spawnattr_setsigdefault(&attributes, &signals);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK |
                                                  POSIX_SPAWN_SETSIGDEF);
    }
};

std::vector<char *> argumentList(std::vector<std::string> &arguments)
{
    std::vector<char *> list;
    list.reserve(arguments.size() + 1);
    for (std::string &argument : arguments)
        list.push_back(argument.data());
    list.push_back(nullptr);
    return list;
}

} // namespace

int ChildProcess::start(const std::vector<std::string> &arguments)
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return errno;
    m_output = ends[0];
    // The program expects a standard output that waits for its reader.
    ::fcntl(ends[1], F_SETFL, 0);
    std::vector<std::string> copy = arguments;
    const std::vector<char *> list = argumentList(copy);
    const SpawnSettings settings(ends[1]);
    const int error = ::posix_spawnp(&m_process, list[0], &settings.actions, &settings.attributes,
                                     list.data(), environ);
    ::close(ends[1]);
    if (error != 0) {
        m_process = -1;
        closeOutput();
    }
    return error;
}

bool ChildProcess::read(std::string &output)
{
    std::array<char, 65536> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init)
    while (m_output >= 0) {
        const ssize_t length = ::read(m_output, buffer.data(), buffer.size());
        if (length > 0) {
            output.append(buffer.data(), static_cast<std::size_t>(length));
            return true;
        }
        if (length < 0 && errno == EAGAIN)
            return true;
        if (length == 0 || errno != EINTR)
            closeOutput();
    }
    return false;
}

/** The program stays a zombie until `kill`, so that the number of its group stays its own. */
std::optional<int> ChildProcess::exitStatus() const
{
    siginfo_t info = {};
    if (::waitid(P_PID, static_cast<id_t>(m_process), &info, WEXITED | WNOHANG | WNOWAIT) != 0)
        return errno == EINTR ? std::nullopt : std::optional<int>(-1);
    if (info.si_pid == 0)
        return std::nullopt;
    return info.si_code == CLD_EXITED ? info.si_status : -1;
}

void ChildProcess::setStopped(bool stopped) const
{
    if (m_process > 0)
        ::kill(-m_process, stopped ? SIGSTOP : SIGCONT);
}

void ChildProcess::kill()
{
    closeOutput();
    if (m_process <= 0)
        return;
    ::kill(-m_process, SIGKILL);
    ::kill(m_process, SIGKILL); // where it is told to run before it has become a group
    while (::waitpid(m_process, nullptr, 0) < 0 && errno == EINTR) {
    }
    m_process = -1;
}

void ChildProcess::closeOutput()
{
    if (m_output >= 0)
        ::close(m_output);
    m_output = -1;
}

} // namespace taskengine
