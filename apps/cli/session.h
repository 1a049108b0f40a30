/** A download session with all that the commands need around it. */
#ifndef VIDEODOWN_CLI_SESSION_H
#define VIDEODOWN_CLI_SESSION_H

#include "commandline.h"
#include "driver/downloadsession.h"
#include "exitstatus.h"
#include "signalwatch.h"

#include <memory>

/** Carries a command's tasks out, from the first to the last, and counts how they end. */
class Session : public QObject
{
    Q_OBJECT

public:
    /** @param downloadFolder absolute path of a folder that exists */
    Session(const CommandLine &line, const QString &downloadFolder);

    DownloadDriver &driver() { return m_session.driver(); }
    ProgressView &view() { return *m_view; }

    /** Loads the history, and keeps it from now on. @return whether that worked; if not, it was
     * reported */
    bool openHistory();

    /** Adds the tasks, and runs until all have ended. */
    ExitStatus run(const QList<DownloadRequest> &requests);

    /**
     * Writes a result, line end included, to standard output. The history has it by then: nobody
     * may act upon a result that a sudden end of the program could make undone. Broken output ends
     * the run.
     */
    void deliver(const QByteArray &result);

    /** Whether ffmpeg is there, if the command needs it; if not, that is reported. */
    bool canConvert();

signals:
    /** A task has ended, and so has the conversion of its video. */
    void settled(const DownloadResult &result);

private:
    void follow();
    void settle(const DownloadResult &result);
    void count(const DownloadResult &result);
    void announceSummary();
    void interrupt(int number);

    const CommandLine m_line;
    SignalWatch m_signals;
    std::unique_ptr<ProgressView> m_view;
    DownloadSession m_session;
    ExitStatus m_status;
    int m_finished = 0;
    int m_failed = 0;
    int m_stopped = 0;
    bool m_outputBroken = false;
};

#endif
