/** What is behind DownloadDriver: its tasks, turn by turn. Internal to the driver. */
#ifndef VIDEODOWN_DRIVER_DISPATCHER_H
#define VIDEODOWN_DRIVER_DISPATCHER_H

#include "driver/controllerport.h"
#include "driver/downloaddriver.h"
#include "driver/tasktable.h"

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
 * Works in turns of the event loop: takes in what the engine reported, hands over what has room,
 * and then emits the driver's signals. Functions that end a task return, or note, what they found;
 * a task leaves the table in `end` only.
 */
class Dispatcher : public QObject
{
    Q_OBJECT

public:
    Dispatcher(DownloadDriver::Settings settings, DownloadDriver &driver);
    ~Dispatcher() override;

    CDown &controller() { return m_port.controller(); }
    void setKeeper(HistoryKeeper *keeper);

    QString add(const DownloadRequest &request);
    void stop(const QString &key);
    void stopAll();
    bool isIdle() const;

    // control.cpp
    bool setPaused(const QString &key, bool paused);
    bool moveBefore(const QString &key, const QString &other);
    void setVideoLimit(int limit);
    int videoLimit() const { return m_videoLimit; }
    void setThumbnails(bool wanted) { m_settings.thumbnails = wanted; }
    void setProxy(const std::optional<tagProxyParam> &proxy) { m_port.setProxy(proxy); }
    DownloadTotals totals() const;
    DownloadProgress progress(const QString &key) const;
    TaskActivity activity(const QString &key) const;
    std::optional<QString> obstacle(const QString &key, TaskAction action) const;
    std::optional<QString> obstacle(const CXMLInfo &record, TaskAction action) const;

private:
    std::optional<QString> liveObstacle(const QString &key, TaskAction action) const;

    // One turn: events in, work out, signals.
    void wake();
    Q_INVOKABLE void turn();
    void endUnsent();
    void work();
    void commit();
    void emitAll();
    void announce(std::function<void()> signal);

    // Handing over (handover.cpp)
    void nameVideos();
    void handOver();
    bool handOverOne();
    bool hasSharedSlot() const;
    bool hasVideoSlot() const;
    Task *nextToParse() const;
    void sendParse(Task &task);
    void sendVideo(Task &task);
    void sendThumbnail(const QString &key);
    FailureReason refusal(const QString &key);

    // Naming (tasknaming.cpp)
    std::optional<OutputPlace> placeFor(Task &task, PictureSize &offered);
    bool nameVideo(Task &task);
    void recordName(Task &task, const OutputName &name);
    bool nameIsClaimed(const CXMLInfo &record);
    static void releaseName(Task &task);

    // Names that others have (conflicts.cpp)
    bool skip(Task &task);
    void leaveSkipped(const Task &task);
    void dropSkipped(const QString &key);
    void overwrite(const Task &task, const OutputName &wanted, DownloadResult &result);
    std::optional<QString> move(const QString &key, const MovedFiles &files);

    // The tasks' records (bookkeeping.cpp)
    Stage enlist(Task &task);
    void adopt(Task &inspection, const DownloadRequest &request);
    void startCopy(const QString &key);
    void setState(const Task &task, TaskState state);
    bool answerFromRecord(Task &task);
    void dropInspected(const Task &task);
    void recordEnd(const Task &task, DownloadOutcome outcome);
    void settleIfAtRest(const QString &key);

    // Larger pictures (upgrading.cpp)
    ControllerPort::Answer sendUpgradeParse(Task &task);
    bool confirmUpgrade(Task &task, const PictureSize &offered);
    std::optional<FailureReason> setAsideForUpgrade(const Task &task, Upgrade &upgrade);
    void recordUpgradeNames(const Task &task);
    void endUpgrade(Task &task, DownloadResult &result);

    // Events and ends (taskevents.cpp)
    void handle(const EngineEvent &event);
    void handleThumbnail(const EngineEvent &event);
    void handleParse(Task &task, const EngineEvent &event);
    void handleVideo(Task &task, const EngineEvent &event);
    void updateProgress(Task &task, const EngineEvent &event);
    void announceProgress(const Task &task);
    void parsed(Task &task);
    std::optional<FailureReason> takeAnswer(Task &task, DownloadResult &result);
    void wantThumbnail(const Task &task);
    FinishedFiles filesOf(const QString &key);
    void finished(Task &task);
    bool refresh(Task &task, double code);
    void dropThumbnail(const QString &key);
    void stopAtWork(Task &task);
    FailureReason parseReason(const Task &task, double code) const;
    FailureReason reasonFor(const Task &task, double code) const;
    void endPresent(Task &task);
    void dropUnfinished(const QString &key);
    void endFailed(Task &task, const FailureReason &reason);
    void endStopped(Task &task);
    void end(Task &task, DownloadResult result);

    DownloadDriver::Settings m_settings;
    DownloadDriver &m_driver;
    std::atomic_bool m_turnDue{false};
    ControllerPort m_port;
    int m_videoLimit;

    TaskTable m_tasks;
    QStringList m_thumbnailsToGet;          // task keys, some of ended tasks
    QSet<QString> m_thumbnails;             // the same, at the engine
    QSet<QString> m_progressed;             // whose progress is to be announced
    QList<std::function<void()>> m_signals; // to be emitted at the turn's end
    QSet<QString> m_changed;                // tasks whose records are to be committed
    HistoryKeeper *m_keeper = nullptr;
    bool m_busy = false; // idle() is due when nothing is left
    QThreadPool m_copiers;
};

#endif
