/** A driver with its history and its conversions: all that an application runs tasks with. */
#ifndef VIDEODOWN_DRIVER_DOWNLOADSESSION_H
#define VIDEODOWN_DRIVER_DOWNLOADSESSION_H

#include "driver/converter.h"
#include "driver/downloaddriver.h"
#include "driver/historykeeper.h"
#include "engine/visibility.h"

#include <QHash>
#include <QObject>

#include <memory>

/**
 * Runs tasks to their last end: the video is there, and converted where that was asked for. The
 * history, once opened, has everything before it happens.
 *
 * Threads: belongs to the thread that made it, which must run an event loop; slots must not delete
 * it.
 */
class VIDEODOWN_PUBLIC DownloadSession : public QObject
{
    Q_OBJECT

public:
    explicit DownloadSession(const DownloadDriver::Settings &settings, QObject *parent = nullptr);
    /** Stops what still runs without any signal, and saves what only the journal has. */
    ~DownloadSession() override;

    DownloadDriver &driver() { return m_driver; }
    CDown &controller() { return m_driver.controller(); }
    Converter &converter() { return m_converter; }
    /** Null until `open`, and when that has failed. */
    HistoryKeeper *keeper() { return m_keeper.get(); }

    /** Loads a history and keeps it from now on. @return why that failed, in English, or empty */
    QString open(const QString &historyPath);
    /** Writes the whole history. @return why that failed, in English, or empty; also without a
     * history */
    QString save();

    /** Takes a task on; see `DownloadDriver::add`. */
    QString add(const DownloadRequest &request);
    /**
     * The same; afterwards the video is converted if the site does not offer what is wanted.
     * @param wish what the user wants of a video that is there already; an open one: as it was
     */
    QString addAndConvert(const DownloadRequest &request, const Profile_Desc &wish);
    /** Converts the video of a finished task. @return why that cannot be, in English, or empty */
    QString convert(const QString &key, const Profile_Desc &wish);
    /** Stops a task: its download, or its conversion. */
    void stop(const QString &key);
    /** Stops everything. */
    void stopAll();
    /** The same, but what has not ended is interrupted, for a later session to resume. */
    void interruptAll();
    /** Whether nothing waits, runs or is being converted. */
    bool isIdle() const;
    /** Whether the task waits for its conversion, or is being converted. */
    bool isConverting(const QString &key) const;
    /** Why something cannot be done with a task now, for people; nothing when it can. */
    std::optional<QString> obstacle(const QString &key, TaskAction action) const;
    /** The same for a record of the controller's list. The caller holds the controller lock. */
    std::optional<QString> obstacle(const CXMLInfo &record, TaskAction action) const;

signals:
    /** The task's video is being converted; `ended` will not come a second time. */
    void converting(const DownloadResult &result);
    /** As of the driver; while a video is being converted, how far that is. */
    void progressed(const DownloadProgress &progress);
    /** The task's only end: of its download and of its conversion. */
    void ended(const DownloadResult &result);
    /** A change of the history could not be written. Not repeated until one could. */
    void saveFailed(const QString &reason);
    /** Everything has ended. Comes again after further tasks. */
    void idle();

private:
    void settle(DownloadResult result);
    void converted(const DownloadResult &result);
    void commit(const QString &key);
    void emitEnded(const DownloadResult &result);
    void emitIdle();

    DownloadDriver m_driver;
    Converter m_converter;
    std::unique_ptr<HistoryKeeper> m_keeper;
    const UnfinishedFiles m_unfinishedFiles;
    QHash<QString, Profile_Desc> m_wishes; // of the tasks that are to be converted
    QSet<QString> m_converting;            // tasks that the converter has
    bool m_stopping = false;               // no conversion begins until a task is added
    bool m_interrupting = false;           // neither is any task stopped for good
};

#endif
