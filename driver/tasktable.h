/** The tasks that a driver has, and where each of them stands. Internal to the driver. */
#ifndef VIDEODOWN_DRIVER_TASKTABLE_H
#define VIDEODOWN_DRIVER_TASKTABLE_H

#include "driver/downloadtask.h"
#include "driver/outputname.h"
#include "driver/taskstate.h"
#include "driver/upgrade.h"

#include <QList>

#include <array>
#include <optional>
#include <unordered_map>

/** Where a task stands on its way; it ends by leaving the table. */
enum class Stage {
    Unfit,       ///< cannot be downloaded: to be failed in the next turn
    Present,     ///< its file is there: to be finished in the next turn
    Waiting,     ///< to be parsed
    Parsing,     ///< at the engine
    Ready,       ///< parsed; to be named
    Named,       ///< to be downloaded once its name is on disk
    Downloading, ///< at the engine
    Copying,     ///< complete, but for a copy that is being made
};

/** What a task of the list was before it was asked for again. */
struct FormerTask
{
    TaskState state;
    DownloadRequest wishes;
};

/** A task that has not ended. */
struct Task
{
    QString key;
    DownloadRequest request;
    Stage stage = Stage::Waiting; // written by the table only
    DownloadProgress progress;
    VideoOffer offer; // once it is parsed
    bool stopping = false;
    bool diskFull = false;
    bool refreshed = false;           // has asked for new addresses
    bool byProfile = true;            // how the library is to choose the format
    std::optional<OutputName> name;   // chosen, and perhaps reserved
    std::optional<OutputName> wanted; // the names to have in the end, whoever has them
    std::optional<FormerTask> former; // nothing: it was not in the list
    std::optional<Upgrade> upgrade;   // one that has begun
    Finding finding = Finding::Downloaded;
};

/**
 * All tasks by key, and the tasks of each stage in their order. References stay good until their
 * task is taken out.
 */
class TaskTable
{
public:
    enum class Place { First, Last };

    /** Adds a task, last of its stage. There must be none with this key. */
    Task &add(Task task);
    /** The task with this key, or null. */
    Task *find(const QString &key);
    const Task *find(const QString &key) const;
    /** Puts the task into a stage, among those that are in it already. */
    void moveTo(Task &task, Stage stage, Place place = Place::Last);
    /** Puts a task before another one of its stage; null: last. */
    void moveBefore(Task &task, Task *other);
    /** Takes the task out, which ends references to it. */
    Task take(Task &task);

    /** Calls a function for every task, in no order. It must not change the table. */
    template <typename Function>
    void forEach(Function function)
    {
        for (auto &each : m_tasks)
            function(each.second);
    }
    /** The tasks of a stage, in their order. */
    const QList<Task *> &in(Stage stage) const { return m_stages[index(stage)]; }
    qsizetype count(Stage stage) const { return in(stage).size(); }
    bool isEmpty() const { return m_tasks.empty(); }

private:
    static constexpr std::size_t stageCount = std::size_t(Stage::Copying) + 1;
    static std::size_t index(Stage stage) { return std::size_t(stage); }

    std::unordered_map<QString, Task> m_tasks;
    std::array<QList<Task *>, stageCount> m_stages;
};

#endif
