/** Keeps a controller's history file so that no crash, full disk or second program costs a task. */
#ifndef VIDEODOWN_DRIVER_HISTORYKEEPER_H
#define VIDEODOWN_DRIVER_HISTORYKEEPER_H

#include "down/cdown.h"

#include <QLockFile>
#include <QObject>
#include <QString>
#include <QTimer>

/**
 * One keeper writes one history at a time, in this or any other program: a lock file beside the
 * history, NAME.lock, sees to that.
 *
 * A save goes to NAME.new, is read back, flushed to disk and renamed over the history, whose last
 * version stays as NAME.previous. So the history is whole at every moment, and a disk that is full
 * costs the save, not the history. A file that is not well-formed XML is first set aside as
 * NAME.damaged-DATE, then what could be read of it goes on.
 *
 * Threads: belongs to the thread that made it and needs its event loop for gathered saves.
 */
class HistoryKeeper : public QObject
{
    Q_OBJECT

public:
    /** @param controller must outlive the keeper */
    HistoryKeeper(CDown &controller, const QString &path, QObject *parent = nullptr);
    /** Saves what is still due, and gives the lock back. */
    ~HistoryKeeper() override;

    /**
     * Takes the lock and adds the stored tasks to the controller. Makes the folder when needed.
     * @return the reason in English why the history cannot be used; empty on success
     */
    QString open();
    /** Where a damaged file was set aside by `open`; empty when it was sound. */
    QString setAsidePath() const;

    /** The controller's tasks have changed: saves them soon, several changes at once. */
    void noteChange();
    /** Saves now. @return why it failed, in English; empty on success */
    QString save();

signals:
    /** A gathered save was made, or failed: what had changed before it is as safe as it gets. */
    void gathered();
    /** A gathered save failed; the history on disk is the one before. Not repeated until one
     * succeeds. */
    void saveFailed(const QString &reason);

private:
    QString lock();
    QString load();
    bool setAside();
    void saveGathered();
    QString writeNew(const QString &path);
    bool replaceBy(const QString &path);

    CDown &m_controller;
    const QString m_path;
    QLockFile m_lock;
    QTimer m_timer;
    QString m_setAside;
    int m_delay; // milliseconds from a change to its save
    bool m_open = false;
    bool m_failing = false;
};

#endif
