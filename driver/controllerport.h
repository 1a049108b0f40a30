/** The one place that asks the controller for work. Internal to the driver. */
#ifndef VIDEODOWN_DRIVER_CONTROLLERPORT_H
#define VIDEODOWN_DRIVER_CONTROLLERPORT_H

#include "down/cdown.h"
#include "driver/downloadtask.h"
#include "driver/enginemailbox.h"

#include <functional>
#include <memory>
#include <optional>

/**
 * Owns the controller and the box that its callbacks post to. The controller answers 0 also when it
 * sent nothing, and keeps waiting lists that can strand work; behind this port, a request is either
 * at the engine, and one end of it will come, or it is nowhere.
 *
 * Threads: one thread makes all calls, but `copy`. None is to be made with the controller lock
 * held.
 */
class ControllerPort
{
public:
    /** What became of a request. */
    enum class Answer {
        Sent,        ///< the engine has it; exactly one end of it will be, or is, in the mailbox
        Refused,     ///< neither controller nor engine has anything of it
        NothingToDo, ///< the same, because there is nothing to fetch
    };

    /** Fixed for the port's life. */
    struct Settings
    {
        QString downloadFolder;
        int videoLimit = 3;
        std::optional<tagProxyParam> proxy;
    };

    /** Makes the controller and initialises the engine. @param wake see EngineMailbox */
    ControllerPort(const Settings &settings, std::function<void()> wake);
    /** Shuts the engine down and ends the controller. Work that still runs is cut off. */
    ~ControllerPort();
    ControllerPort(const ControllerPort &) = delete;
    ControllerPort &operator=(const ControllerPort &) = delete;

    CDown &controller() const { return *m_controller; }
    EngineMailbox &mailbox() { return m_mailbox; }

    /** Videos at once, from 1 to `maxVideoLimit`; what runs is left alone. */
    void setVideoLimit(int limit);
    void setProxy(std::optional<tagProxyParam> proxy);

    /**
     * Asks the site about a task's video. A task with a file name keeps its record; that of any
     * other is made anew, and handles to it end here.
     */
    Answer parse(const QString &key, const DownloadRequest &request);
    /** Asks about a larger picture. NothingToDo: the profile asks for none. */
    Answer parseForUpgrade(const QString &key, Profile_Desc profile);
    /** Whether the site's answer has a larger picture; the old one's record makes way then. */
    bool acceptUpgrade(const QString &key);
    /**
     * Downloads a task's video to the name that its record has.
     * @param folder    the downloads folder of the task
     * @param byProfile whether the format is chosen by the profile, else by the rule for sources
     */
    Answer download(const QString &key, const QString &folder, bool byProfile);
    /** Downloads its thumbnail. NothingToDo: there is no such task. */
    Answer downloadThumbnail(const QString &key);
    /** Makes the copy of a complete video; takes as long as that takes. Any thread. */
    void copy(const QString &key) { m_controller->CopyVideo(key); }

    /** Ends the task's parse or download; its end comes as an event. */
    void stop(const QString &key);
    /** The same for its thumbnail. */
    void stopThumbnail(const QString &key);
    /** Pauses a download at the engine, or lets a paused one continue. @return whether it could */
    bool togglePause(const QString &key);
    /** A task has ended: the controller keeps nothing of it but its record. */
    void forget(const QString &key);

    /** Stops these tasks and thumbnails and shuts the engine down: no event comes after this. */
    void shutDown(const QStringList &tasks, const QStringList &thumbnails);

private:
    Answer send(const QString &key, const std::function<int()> &request);
    Answer sendParse(const QString &key, const DownloadRequest &request);
    void giveBack(const QString &key);

    EngineMailbox m_mailbox;
    std::unique_ptr<CDown> m_controller;
    bool m_isDown = false;
};

#endif
