#include "standardstreams.h"

#include "driver/plaintext.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace standardstreams {

namespace {

// The pipe may be somebody else's too, who made it non-blocking.
bool waitUntilWritable(int stream)
{
    pollfd descriptor{stream, POLLOUT, 0};
    return poll(&descriptor, 1, -1) > 0 || errno == EINTR;
}

int writeAll(int stream, const QByteArray &bytes)
{
    const char *next = bytes.constData();
    auto left = static_cast<std::size_t>(bytes.size());
    while (left > 0) {
        const ssize_t written = write(stream, next, left);
        if (written >= 0) {
            next += written;
            left -= static_cast<std::size_t>(written);
        } else if (errno != EINTR && (errno != EAGAIN || !waitUntilWritable(stream))) {
            return errno;
        }
    }
    return 0;
}

} // namespace

void openMissing()
{
    // The lowest free number is given out first, so each call fills the gap it found. Opened the
    // wrong way round, so that using the stream is still the error that it was.
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) == -1)
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

bool outputIsTerminal()
{
    return isatty(STDOUT_FILENO) == 1;
}

bool errorIsTerminal()
{
    return isatty(STDERR_FILENO) == 1;
}

TerminalSize terminalSize()
{
    winsize size = {};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0)
        return {};
    return {size.ws_col, size.ws_row};
}

int writeOutput(const QByteArray &bytes)
{
    return writeAll(STDOUT_FILENO, bytes);
}

void writeError(const QByteArray &bytes)
{
    writeAll(STDERR_FILENO, bytes);
}

QString shown(const QString &text)
{
    return plaintext::withoutControls(text, QChar::ReplacementCharacter);
}

void writeMessage(const QString &line)
{
    writeError(shown(line).toUtf8() + '\n');
}

} // namespace standardstreams
