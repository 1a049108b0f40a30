/** A download session with all that the commands need around it. */
#ifndef VIDEODOWN_CLI_SESSION_H
#define VIDEODOWN_CLI_SESSION_H

#include "commandline.h"
#include "driver/downloadsession.h"
#include "exitstatus.h"
#include "runlog.h"
#include "signalwatch.h"

#include <QSet>

#include <memory>

/** Carries a command's tasks out, from the first to the last, and counts how they end. */
class Session : public QObject
{
    Q_OBJECT

public:
    /** @param downloadFolder absolute path of a folder that exists */
    Session(const CommandLine &line, const QString &downloadFolder);

    DownloadDriver &driver() { return m_session.driver(); }

    /** Opens the log that the command line names. What cannot be is reported. @return how the
     * program then ends; 0 to go on */
    int openLog();
    /** The same, and looks whether there is ffmpeg if the command needs it, and loads the history,
     * which is kept from now on. */
    int prepare();

    /** Adds the tasks, and runs until all have ended. */
    ExitStatus run(const QList<DownloadRequest> &requests);

    /**
     * Writes a result, line end included, to standard output. The history has it by then: nobody
     * may act upon a result that a sudden end of the program could make undone. Broken output ends
     * the run.
     */
    void deliver(const QByteArray &result);

    /** Tells everybody, and the log. */
    void say(const QString &line);
    /** Tells all but those who want to know of errors only, and the log. */
    void note(const QString &line);
    /** Tells those who want to know more, and the log. */
    void tell(const QString &line);

signals:
    /** A task has ended, and so has the conversion of its video. */
    void settled(const DownloadResult &result);

private:
    void follow();
    void followSteps();
    void begin(const QString &key, const QString &address);
    void describe(const QString &key, const QString &title);
    void choose(const QString &key);
    void log(const QString &line);
    bool canConvert();
    bool isInspection() const;
    QString labelOf(const QString &key);
    void settle(const DownloadResult &result);
    void count(const DownloadResult &result);
    void announceSummary();
    void interrupt(int number);

    const CommandLine m_line;
    SignalWatch m_signals;
    std::unique_ptr<ProgressView> m_view;
    RunLog m_log;
    DownloadSession m_session;
    QSet<QString> m_begun;  // tasks of whose video a part was there
    QSet<QString> m_chosen; // tasks whose choice has been told
    ExitStatus m_status;
    int m_finished = 0;
    int m_failed = 0;
    int m_stopped = 0;
    int m_skipped = 0;
    bool m_outputBroken = false;
};

#endif
