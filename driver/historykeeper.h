/** Keeps a controller's history file so that no crash, full disk or second program costs a task. */
#ifndef VIDEODOWN_DRIVER_HISTORYKEEPER_H
#define VIDEODOWN_DRIVER_HISTORYKEEPER_H

#include "down/cdown.h"
#include "driver/taskrecord.h"
#include "engine/annotatedmutex.h"
#include "engine/visibility.h"

#include <QHash>
#include <QJsonObject>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

#include <future>
#include <memory>
#include <optional>

class HistoryLock;
class Journal;
struct MovedFiles;
struct UpgradeFiles;

/**
 * One keeper writes one history at a time, in this or any other program: a lock file,
 * NAME.lock, ensures that, and is valid for as long as its program lives.
 *
 * Changes go to a journal beside the history, NAME.journal, before what they describe happens. The
 * history itself is rewritten when the journal has grown long, and by `save`: to NAME.new, which is
 * compared with what it should hold, flushed to disk and renamed over the history, whose last
 * version stays as NAME.previous. So history and journal together are whole at every moment, and a
 * disk that is full costs the save, not the history. When the program ends suddenly, the next
 * `open` reads both, and removes what was reserved for the tasks of the journal and never used.
 *
 * A history that is not well-formed XML is first set aside as NAME.damaged-DATE, then what could be
 * read of it is kept. A journal of another history is set aside alike.
 *
 * Threads: belongs to the thread that made it, except `recordSize`. Not to be called with the
 * controller lock held: it takes it, and writes to disk without it.
 */
class VIDEODOWN_PUBLIC HistoryKeeper : public QObject
{
    Q_OBJECT

public:
    /**
     * @param controller must outlive the keeper
     * @param unfinished which files the engine leaves of an unfinished download; may be empty
     */
    HistoryKeeper(CDown &controller, const QString &path, UnfinishedFiles unfinished = {},
                  QObject *parent = nullptr);
    /** Saves what is in the journal, and gives the lock back. */
    ~HistoryKeeper() override;

    /**
     * To be called before `open` by a program that is going to change tasks: what the first change
     * needs is then made beside the loading.
     */
    void expectChanges();

    /**
     * Takes the lock and adds the stored tasks to the controller. Makes the folder when needed.
     * @return the reason in English why the history cannot be used; empty on success
     */
    QString open();
    /**
     * Where a damaged history was set aside by `open`; empty when it was intact. The version before
     * it, when there was one, is kept beside it, as that name with ".previous".
     */
    QString setAsidePath() const;
    /** Where a journal of another history was set aside by `open`; empty when there was none. */
    QString setAsideJournal() const;

    /**
     * Has the records of these tasks on disk when it returns. For tasks whose upgrade has begun,
     * their records stay as they were on disk until it has ended.
     * @return whether that worked; if not, `saveFailed` says why, and the tasks are tried again
     * with the next ones
     */
    bool commit(const QStringList &keys);

    /**
     * The task has come to rest: none of its files is being written any more. Until then, the next
     * `open` after a sudden end cleans up what the task left behind.
     */
    void settle(const QString &key);

    /** Has on disk when it returns that the task is leaving the list. */
    bool drop(const QString &key);

    /**
     * Records the size of a task's video, so that after a sudden end of the program the complete
     * file can be distinguished from anybody else's. To be called before the file gets its name.
     * Any thread.
     */
    void recordSize(const QString &key, qint64 bytes);

    /**
     * Has on disk when it returns that these files of the task are about to be set aside. Unless
     * `endUpgrade` comes, the next `open` puts them back. May be called again with more names.
     */
    bool beginUpgrade(const QString &key, const UpgradeFiles &files);
    /** The upgrade has ended, either way; `commit` now takes the record as it is. */
    void endUpgrade(const QString &key);

    /**
     * Has on disk when it returns that these files of the task are about to be moved. Unless
     * `endMove` comes, the next `open` finds out which of them were, and has the record say so.
     */
    bool beginMove(const QString &key, const MovedFiles &files);
    /** The files are moved, or not, and the record says where they are. */
    void endMove(const QString &key);

    /** Writes the whole history, and ends the journal. @return why it failed, in English; empty on
     * success: then nothing is lost, and history and journal on disk are as before */
    QString save();

signals:
    /** A change could not be written. Not repeated until one could. */
    void saveFailed(const QString &reason);

private:
    QString load();
    bool loadTasks();
    QString setAside();
    QString setAsideForeignJournal();
    void replay(const QList<QJsonObject> &entries);
    bool begin(const QString &key, const QString &what, const QJsonObject &files);
    void end(const QString &key, const QString &what);
    bool hasBegun(const QString &key);
    QJsonObject changeOf(const QString &key);
    bool append(const QList<QJsonObject> &entries);
    void beginJournalAnew(const QList<QJsonObject> &late) VIDEODOWN_REQUIRES(m_mutex);
    QString writeAnew();
    QByteArray serialized();
    QString writeNew(const QString &path, const QByteArray &content);
    bool replaceBy(const QString &path);
    bool reportSave(const QString &problem);
    QByteArray digest() VIDEODOWN_REQUIRES(m_mutex);

    CDown &m_controller;
    const QString m_path;
    const UnfinishedFiles m_unfinished;
    const std::unique_ptr<HistoryLock> m_lock;
    const std::unique_ptr<Journal> m_journal;
    QString m_setAside;
    QString m_setAsideJournal;
    QHash<QString, QStringList> m_stored; // texts of records on disk, of tasks at work
    QSet<QString> m_atWork;               // tasks that the next opening has to look after
    QSet<QString> m_unstored;             // tasks whose changes could not be written
    bool m_expectsChanges = false;
    bool m_open = false;
    bool m_failing = false;

    AnnotatedMutex m_mutex;
    // Of the history on disk; made when it is needed.
    std::optional<QByteArray> m_digest VIDEODOWN_GUARDED_BY(m_mutex);
    std::future<QByteArray> m_digestOfLoaded VIDEODOWN_GUARDED_BY(m_mutex); // being made
    // Entries of the upgrades and moves that have not ended.
    QHash<QString, QJsonObject> m_begun VIDEODOWN_GUARDED_BY(m_mutex);
    // Sizes noted while the history is being saved.
    QList<QJsonObject> m_late VIDEODOWN_GUARDED_BY(m_mutex);
    bool m_saving VIDEODOWN_GUARDED_BY(m_mutex) = false;
};

#endif
