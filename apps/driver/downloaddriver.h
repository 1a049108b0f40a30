/** Drives a download controller the safe way, for any application. */
#ifndef VIDEODOWN_DRIVER_DOWNLOADDRIVER_H
#define VIDEODOWN_DRIVER_DOWNLOADDRIVER_H

#include "down/cdown.h"
#include "driver/downloadtask.h"
#include "driver/enginemailbox.h"
#include "driver/outputname.h"
#include "driver/taskstate.h"
#include "driver/upgrade.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QThreadPool>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

class HistoryKeeper;

/**
 * Hands tasks to a controller of its own, no more at once than it has slots for, and follows each
 * to its one end. The controller's waiting lists, which can strand work, thus stay empty;
 * everything that waits, waits here.
 *
 * Threads: belongs to the thread that made it, which must run an event loop; every member is called
 * there. Signals come from that event loop only, never from inside a call. Slots may call every
 * member, but must not delete the driver.
 *
 * Controller: made with the driver, and destroyed with it. One driver exists per process at a time.
 */
class DownloadDriver : public QObject
{
    Q_OBJECT

public:
    /** Fixed for the driver's life. */
    struct Settings
    {
        QString downloadFolder;             ///< absolute path of a folder that exists
        int videoLimit = 3;                 ///< videos at once, at least 1
        bool thumbnails = true;             ///< also fetch each video's thumbnail
        std::optional<tagProxyParam> proxy; ///< used by every request
        /** Cause of a failure from the engine's code for it; may be empty. */
        std::function<QString(double)> failureText;
        /** What the user can do about it; may be empty. */
        std::function<QString(double)> failureAdvice;
        /** What the user can do about a page that offers nothing. */
        QString offerAdvice = QStringLiteral("Look at the page in a browser.");
        /**
         * Whether a video's failure may come from a stream address that is no longer good; may be
         * empty: none does. Such a task asks the site for new addresses, once, and goes on with
         * them under the same file name.
         */
        std::function<bool(double)> hasExpired;
        /** The files that the engine leaves of an unfinished download; may be empty. */
        UnfinishedFiles unfinishedFiles;
    };

    /** Makes the controller and initialises the engine. */
    explicit DownloadDriver(Settings settings, QObject *parent = nullptr);
    /** Stops what still runs, without any signal, shuts the engine down and ends the controller. */
    ~DownloadDriver() override;

    /**
     * Has everything on disk before it happens, from now on: a task before it begins, a file's name
     * before it is taken, a result before it is told. @param keeper of this driver's controller;
     * null ends that, and must come before the keeper is destroyed
     */
    void setKeeper(HistoryKeeper *keeper);

    /**
     * Takes a task on. A task with the same key that has not ended is that task: nothing is added.
     *
     * Unless it is only inspected, the task stands in the controller's list from now on, its
     * `State` kept up to date (TaskState), its `Progress` (percent) set when it ends. A task that
     * the list has already goes on where it was, under the same file name where that suits the
     * request; when its file is there, it ends at once. The record of a task that never had a file
     * is replaced when its parse begins, and handles to it end there.
     * @return the task key, by which signals name the task
     */
    QString add(const DownloadRequest &request);
    /** Stops the task: what only waits is dropped, what runs is waited for. Unknown keys: nothing.
     */
    void stop(const QString &key);
    /** The same for all tasks. */
    void stopAll();
    /** Whether no task waits or runs, and nothing is left to be told. */
    bool isIdle() const;
    /** The controller, for reading tasks; what is at work belongs to the driver. */
    CDown &controller();

signals:
    /** The task's page is being parsed. */
    void started(const QString &key);
    /** The site's answer is in the task's record; `title` is the site's. */
    void described(const QString &key, const QString &title);
    /** The video's transfer begins anew; `attempt` counts from 2. */
    void retrying(const QString &key, int attempt);
    /** First when the transfer begins; at most once per task and turn of the event loop. */
    void progressed(const DownloadProgress &progress);
    /** The task's only end. A thumbnail may still be on its way. */
    void ended(const DownloadResult &result);
    /** Everything has ended. Comes again after further tasks. */
    void idle();

private:
    struct Task
    {
        DownloadRequest request;
        DownloadProgress progress;
        bool stopping = false;
        bool diskFull = false;
        bool refreshed = false;         // has asked for new addresses
        bool byProfile = true;          // how the library is to choose the format
        std::optional<OutputName> name; // chosen, and perhaps reserved
        std::optional<Upgrade> upgrade; // one that has begun
        Finding finding = Finding::Downloaded;
    };
    struct Sent
    {
        int result;  // the controller's
        bool atWork; // the engine has the request, or has ended it already
    };

    // One turn: events in, work out, signals.
    void wake();
    Q_INVOKABLE void turn();
    void work();
    void commit();
    void emitAll();
    void tell(std::function<void()> signal);

    // Handing over (handover.cpp)
    void nameVideos();
    void handOver();
    bool handOverOne();
    bool hasSharedSlot() const;
    bool hasVideoSlot() const;
    Sent watched(const QString &key, const std::function<int()> &send);
    Sent watchedIn(const QString &folder, const QString &key, const std::function<int()> &send);
    void sendParse(const QString &key);
    void sendVideo(const QString &key);
    void sendThumbnail(const QString &key);
    FailureReason refusal(const QString &key);

    // Naming (naming.cpp)
    bool nameVideo(const QString &key);
    std::optional<OutputPlace> placeFor(const QString &key, PictureSize &offer);
    void recordName(const QString &key, const OutputName &name);
    bool nameIsClaimed(const CXMLInfo &record);
    void releaseName(Task &task);

    // The tasks' records (records.cpp)
    bool enlist(const QString &key, const DownloadRequest &request);
    int requestParse(const QString &key, DownloadRequest request);
    void setState(const QString &key, TaskState state);
    void noteEnd(const QString &key, const Task &task, DownloadOutcome outcome);
    void copyAgain(const QString &key);
    void endPresent(const QString &key);
    void settleIfAtRest(const QString &key);

    // Larger pictures (upgraderun.cpp)
    int requestUpgrade(const QString &key, Task &task, Profile_Desc profile);
    bool confirmUpgrade(const QString &key, const PictureSize &offer);
    bool setAsideForUpgrade(const QString &key, Upgrade &upgrade);
    void noteUpgradeNames(const QString &key, const Task &task);
    void endUpgrade(const QString &key, Task &task, DownloadResult &result);

    // Events and ends (engineevents.cpp)
    void handle(const EngineEvent &event);
    void handleThumbnail(const EngineEvent &event);
    void handleParse(const QString &key, const EngineEvent &event);
    void handleVideo(const QString &key, Task &task, const EngineEvent &event);
    void noteProgress(Task &task, const EngineEvent &event);
    void tellProgress(const QString &key);
    void parsed(const QString &key);
    void finished(const QString &key);
    bool refresh(const QString &key, Task &task, double code);
    void dropThumbnail(const QString &key);
    void stopAtWork(const QString &key);
    FailureReason reasonFor(const Task &task, double code) const;
    void endFailed(const QString &key, const FailureReason &reason);
    void endStopped(const QString &key);
    void end(const QString &key, DownloadResult result);

    const Settings m_settings;
    EngineMailbox m_mailbox;
    std::atomic_bool m_turnDue{false};
    std::unique_ptr<CDown> m_controller;

    QHash<QString, Task> m_tasks;           // all that have not ended, by task key
    QStringList m_unfit;                    // to be failed in the next turn
    QStringList m_present;                  // to be finished in the next turn: the file is there
    QStringList m_waiting;                  // to be parsed
    QStringList m_ready;                    // parsed; to be named
    QStringList m_named;                    // to be downloaded once the name is on disk
    QStringList m_thumbnailsToGet;          // task keys
    QSet<QString> m_parsing;                // at the engine
    QSet<QString> m_videos;                 // at the engine
    QSet<QString> m_thumbnails;             // at the engine; task keys, some of ended tasks
    QSet<QString> m_copying;                // complete, but for a copy that is being made
    QSet<QString> m_progressed;             // whose progress is to be told
    QList<std::function<void()>> m_signals; // to be emitted at the turn's end
    QSet<QString> m_changed;                // tasks whose records are to be committed
    HistoryKeeper *m_keeper = nullptr;
    bool m_busy = false; // idle() is due when nothing is left
    QThreadPool m_copiers;
};

#endif
