/** Ends the program in order when somebody interrupts it. */
#ifndef VIDEODOWN_CLI_SIGNALWATCH_H
#define VIDEODOWN_CLI_SIGNALWATCH_H

#include <QObject>

/**
 * Tells of the first SIGINT, SIGTERM or SIGHUP from the event loop; the next one ends the program
 * at once. Signals that the caller ignores (nohup, background jobs) stay ignored. SIGPIPE becomes
 * an error of the write. One per process, until its end.
 */
class SignalWatch : public QObject
{
    Q_OBJECT

public:
    explicit SignalWatch(QObject *parent = nullptr);

    /** Ends the program as `number` does by default; returns only for signals that do not end it.
     */
    static void endBy(int number);

signals:
    void interrupted(int number);
};

#endif
