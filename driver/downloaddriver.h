/** Drives a download controller the safe way, for any application. */
#ifndef VIDEODOWN_DRIVER_DOWNLOADDRIVER_H
#define VIDEODOWN_DRIVER_DOWNLOADDRIVER_H

#include "down/cdown.h"
#include "driver/downloadtask.h"
#include "driver/taskaction.h"
#include "driver/taskrecord.h"
#include "driver/taskstate.h"
#include "engine/visibility.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>

class Dispatcher;
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
class VIDEODOWN_PUBLIC DownloadDriver : public QObject
{
    Q_OBJECT

public:
    /** What a driver begins with. */
    struct Settings
    {
        QString downloadFolder;             ///< absolute path of a folder that exists
        int videoLimit = 3;                 ///< videos at once, from 1 to `maxVideoLimit`
        bool thumbnails = true;             ///< also fetch each video's thumbnail
        std::optional<tagProxyParam> proxy; ///< used by every request
        /** Cause of a failure from the engine's code for it; may be empty. */
        std::function<QString(double)> failureText;
        /** What the user can do about it; may be empty. */
        std::function<QString(double)> failureAdvice;
        /** What the user can do about a page that offers nothing; empty: look at the page. */
        QString offerAdvice;
        /** Whether a failure means that the site has no video info of a page; may be empty. */
        std::function<bool(double)> hasNoVideoInfo;
        /** The program that such a page could be asked about if it were there; may be empty. */
        std::function<QString()> missingExtractor;
        /**
         * Whether a video's failure may come from a stream address that is no longer good; may be
         * empty: none does. Such a task asks the site for new addresses, once, and continues with
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
     * before it is taken, a result before it is announced. @param keeper of this driver's
     * controller; null ends that, and must come before the keeper is destroyed
     */
    void setKeeper(HistoryKeeper *keeper);

    /**
     * Takes a task on. A task with the same key that has not ended is that task: nothing is added.
     * Only one that is inspected becomes the task that is asked for, and ends as such, once.
     *
     * Unless it is only inspected, the task stands in the controller's list from now on, its
     * `State` kept up to date (TaskState), its `Progress` (percent) set when it ends. A task that
     * the list has already is resumed, under the same file name where that suits the
     * request; when its file is there, it ends at once. The record of a task that never had a file
     * is replaced when its parse begins, and handles to it end there.
     * @return the task key, by which signals name the task
     */
    QString add(const DownloadRequest &request);
    /**
     * Stops the task: what only waits is dropped, what runs is waited for. Unknown keys: nothing.
     */
    void stop(const QString &key);
    /** The same for all tasks. */
    void stopAll();
    /**
     * Halts a task's transfer, or lets it continue where it was. A paused video keeps its place
     * among the videos at once. @return whether the task could be paused or continued
     */
    bool setPaused(const QString &key, bool paused);
    /**
     * Gives a waiting task another turn: before a waiting task, or last when `other` is empty or
     * none. @return whether the task waits
     */
    bool moveBefore(const QString &key, const QString &other);
    /** Videos at once from now on, from 1 to `maxVideoLimit`; those that run are not stopped. */
    void setVideoLimit(int limit);
    int videoLimit() const;
    /** Whether thumbnails are fetched from now on. */
    void setThumbnails(bool wanted);
    /** The proxy of requests from now on; nothing for none. */
    void setProxy(const std::optional<tagProxyParam> &proxy);

    /** What the tasks come to now. */
    DownloadTotals totals() const;
    /** How far a task's video is; without bytes for a task that the driver does not have. */
    DownloadProgress progress(const QString &key) const;
    /** What the driver is doing with the task. */
    TaskActivity activity(const QString &key) const;
    /** What can be done with a task now, be it at work or in the controller's list only. */
    QList<TaskAction> actions(const QString &key) const;
    /** Why something cannot be done with a task now, for people; nothing when it can. */
    std::optional<QString> obstacle(const QString &key, TaskAction action) const;
    /** The same for a record of the controller's list. The caller holds the controller lock. */
    std::optional<QString> obstacle(const CXMLInfo &record, TaskAction action) const;

    /** Whether no task waits or runs, and nothing is left to announce. */
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
    /**
     * First when the transfer begins, then as it gets on, is paused or continues; at most once per
     * task and turn of the event loop.
     */
    void progressed(const DownloadProgress &progress);
    /** The task's only end. A thumbnail may still be on its way. */
    void ended(const DownloadResult &result);
    /** Everything has ended. Comes again after further tasks. */
    void idle();

private:
    std::unique_ptr<Dispatcher> m_dispatcher;
};

#endif
