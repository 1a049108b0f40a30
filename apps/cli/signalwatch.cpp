#include "signalwatch.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr std::array<int, 3> watched{SIGINT, SIGTERM, SIGHUP};

int wakePipe[2] = {-1, -1};

// Called by the system in the middle of anything. Giving all signals back makes the next one end
// the program.
void onSignal(int number)
{
    const int savedError = errno;
    for (const int each : watched)
        std::signal(each, SIG_DFL);
    const char byte = static_cast<char>(number);
    const ssize_t written = write(wakePipe[1], &byte, 1);
    static_cast<void>(written); // the pipe is empty: each signal comes here once
    errno = savedError;
}

// Not SIG_IGN: programs that the engine starts would inherit that.
void onBrokenPipe(int /*number*/) {}

void watch(int number)
{
    struct sigaction old = {};
    if (sigaction(number, nullptr, &old) == 0 && old.sa_handler == SIG_IGN)
        return;
    struct sigaction action = {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    sigaction(number, &action, nullptr);
}

} // namespace

SignalWatch::SignalWatch(QObject *parent) : QObject(parent)
{
    std::signal(SIGPIPE, onBrokenPipe);
    if (pipe2(wakePipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    auto *const notifier = new QSocketNotifier(wakePipe[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        if (read(wakePipe[0], &byte, 1) == 1)
            emit interrupted(byte);
    });
    for (const int number : watched)
        watch(number);
}

void SignalWatch::endBy(int number)
{
    std::signal(number, SIG_DFL);
    std::raise(number);
}
