/** The program's three streams as the system sees them. */
#ifndef VIDEODOWN_CLI_STANDARDSTREAMS_H
#define VIDEODOWN_CLI_STANDARDSTREAMS_H

#include <QString>

namespace standardstreams {

/**
 * Gives streams that the caller closed something to stand for them; otherwise the first file or
 * connection would take their place and receive our messages. Before anything else is opened.
 */
void openMissing();

/** Whether standard output or standard error shows on a terminal. */
bool outputIsTerminal();
bool errorIsTerminal();

/** Size of the terminal behind standard error, in characters; a usual one if there is none. */
struct TerminalSize
{
    int columns = 80;
    int rows = 24;
};
TerminalSize terminalSize();

/** Writes everything, at once. @return 0, or the error (errno) */
int writeOutput(const QByteArray &bytes);
/** The same to standard error, where an error could not be reported. */
void writeError(const QByteArray &bytes);

/** A text as it may be shown: nothing in it controls a terminal. */
QString shown(const QString &text);
/** Writes one message line to standard error, as it may be shown. */
void writeMessage(const QString &line);

} // namespace standardstreams

#endif
