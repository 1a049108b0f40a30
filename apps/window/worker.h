/** Everything that touches files, network and history, on a thread of its own. */
#ifndef VIDEODOWN_WINDOW_WORKER_H
#define VIDEODOWN_WINDOW_WORKER_H

#include "driver/downloadsession.h"
#include "settings.h"
#include "taskrow.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QTimer>

#include <memory>

/** How the history came into use. */
struct OpenedHistory
{
    QString problem;         ///< why it can only be read; empty: it is this program's
    QString setAside;        ///< where a damaged history was put
    QString setAsideJournal; ///< where a journal of another history was put
    int interrupted = 0;     ///< tasks that another run left
};
Q_DECLARE_METATYPE(OpenedHistory)

/**
 * Runs a download session for the window. Changes are gathered, so that the window hears of them at
 * most five times a second.
 *
 * Threads: lives on a thread of its own; every function is called there
 * (`QMetaObject::invokeMethod` with the worker as context), and every signal is emitted there.
 */
class Worker : public QObject
{
    Q_OBJECT

public:
    Worker(Settings settings, QString historyPath);
    ~Worker() override;

    /** Makes the session and opens the history; `opened` comes. */
    void open();
    /** Stops everything and saves; `closed` comes once that is done. */
    void close();

    void applySettings(const Settings &settings);
    void add(const QList<DownloadRequest> &requests, bool convert);
    /** Asks the site what it offers; `inspected` comes. */
    void inspect(const QString &address);
    /** Pauses, continues, stops, resumes or retries these tasks, as far as that is possible. */
    void perform(TaskAction action, const QStringList &keys);
    /** Moves waiting tasks one place forward or back in their queue. */
    void move(const QStringList &keys, bool forward);
    void upgrade(const QStringList &keys, const Profile_Desc &profile);
    void convert(const QStringList &keys, const Profile_Desc &profile);
    void rename(const QString &key, const QString &name);
    /** Tells which files a removal with deletion would delete: `filesFound` comes. */
    void findFiles(const QStringList &keys);
    void remove(const QStringList &keys, bool deleteFiles);
    /** Resumes what another run left. */
    void resumeInterrupted();
    /** `detailsFound` comes. */
    void findDetails(const QString &key);
    /** `abilitiesFound` comes. */
    void findAbilities(const QStringList &keys);

signals:
    void opened(const OpenedHistory &history);
    void closed(const QString &problem);
    /** Rows that are new or have changed. */
    void rowsChanged(const QList<TaskRow> &rows);
    void rowsRemoved(const QStringList &keys);
    void totalsChanged(const DownloadTotals &totals);
    void inspected(const DownloadResult &result);
    void detailsFound(const TaskDetails &details);
    void abilitiesFound(const Abilities &abilities);
    void filesFound(const QStringList &keys, const QStringList &files);
    /** Something that the user should know. */
    void message(const QString &text);
    /** The last task has ended. */
    void idle();

private:
    void follow();
    void readAll();
    void change(const QString &key);
    void emitChanges();
    TaskRow rowOf(const CXMLInfo &record) const;
    void judge(const CXMLInfo &record, Abilities &abilities) const;
    void ended(const DownloadResult &result);
    void resume(const QList<DownloadRequest> &requests);
    bool save();
    bool isReadOnly() const { return m_session && m_session->keeper() == nullptr; }

    Settings m_settings;
    const QString m_historyPath;
    std::unique_ptr<DownloadSession> m_session;
    QTimer m_gather;
    QStringList m_changed; // in the order of their changes: new rows come as they were added
    QSet<QString> m_inspecting;
    QSet<QString> m_ended; // since the session was idle
    QStringList m_waiting; // in their order, of those that were added
    QHash<QString, DownloadProgress> m_progress;
    QHash<QString, FailureReason> m_failures;
    bool m_closing = false;
};

#endif
