// What an application does with tasks while they are at work, and what it can see of them.
#include "driver/dispatcher.h"

#include "driver/taskrecord.h"
#include "driver/texts.h"

#include <QFileInfo>

#include <algorithm>

namespace {

// What is done with a task that the driver has; everything else needs a task at rest.
bool isLive(TaskAction action)
{
    return action == TaskAction::Stop || action == TaskAction::Pause ||
           action == TaskAction::Continue || action == TaskAction::Move;
}

std::optional<QString> unless(bool possible, const QString &why)
{
    return possible ? std::nullopt : std::optional(why);
}

} // namespace

bool Dispatcher::setPaused(const QString &key, bool paused)
{
    Task *task = m_tasks.find(key);
    const TaskAction action = paused ? TaskAction::Pause : TaskAction::Continue;
    if (task == nullptr || obstacle(key, action) || !m_port.togglePause(key))
        return false;
    task->progress.paused = paused;
    task->progress.bytesPerSecond = 0;
    m_progressed.insert(key);
    wake();
    return true;
}

bool Dispatcher::moveBefore(const QString &key, const QString &other)
{
    Task *task = m_tasks.find(key);
    if (task == nullptr || obstacle(key, TaskAction::Move))
        return false;
    m_tasks.moveBefore(*task, m_tasks.find(other));
    return true;
}

void Dispatcher::setVideoLimit(int limit)
{
    m_videoLimit = std::clamp(limit, 1, maxVideoLimit);
    m_port.setVideoLimit(m_videoLimit);
    wake();
}

DownloadTotals Dispatcher::totals() const
{
    DownloadTotals totals;
    for (const Stage stage : {Stage::Present, Stage::Waiting, Stage::Ready, Stage::Named})
        totals.waiting += int(m_tasks.count(stage));
    totals.parsing = int(m_tasks.count(Stage::Parsing));
    totals.downloading = int(m_tasks.count(Stage::Downloading));
    for (const Task *task : m_tasks.in(Stage::Downloading)) {
        totals.paused += int(task->progress.paused);
        totals.received += task->progress.received;
        totals.total += std::max(task->progress.total, task->progress.received);
        totals.bytesPerSecond += task->progress.bytesPerSecond;
    }
    return totals;
}

DownloadProgress Dispatcher::progress(const QString &key) const
{
    const Task *task = m_tasks.find(key);
    DownloadProgress none;
    none.key = key;
    return task == nullptr ? none : task->progress;
}

TaskActivity Dispatcher::activity(const QString &key) const
{
    const Task *task = m_tasks.find(key);
    if (task == nullptr)
        return TaskActivity::None;
    if (task->stopping)
        return TaskActivity::Stopping;
    switch (task->stage) {
    case Stage::Parsing:
        return TaskActivity::Parsing;
    case Stage::Downloading:
        return task->progress.paused ? TaskActivity::Paused : TaskActivity::Downloading;
    case Stage::Copying:
        return TaskActivity::Copying;
    default:
        return TaskActivity::Waiting;
    }
}

std::optional<QString> Dispatcher::obstacle(const QString &key, TaskAction action) const
{
    if (isLive(action))
        return liveObstacle(key, action);
    const ControllerLock lock;
    const CXMLInfo *record = m_port.controller().getXMLInfo(key);
    return record == nullptr ? Texts::tr("there is no such task") : obstacle(*record, action);
}

std::optional<QString> Dispatcher::obstacle(const CXMLInfo &record, TaskAction action) const
{
    if (isLive(action))
        return liveObstacle(record.MD5Code, action);
    if (activity(record.MD5Code) != TaskActivity::None)
        return Texts::tr("the task is at work");
    return taskrecord::obstacle(record, action);
}

std::optional<QString> Dispatcher::liveObstacle(const QString &key, TaskAction action) const
{
    const TaskActivity now = activity(key);
    const Task *task = m_tasks.find(key);
    switch (action) {
    case TaskAction::Pause:
        return unless(now == TaskActivity::Downloading,
                      Texts::tr("only a video that is being downloaded can be paused"));
    case TaskAction::Continue:
        return unless(now == TaskActivity::Paused, Texts::tr("the task is not paused"));
    case TaskAction::Move:
        return unless(task != nullptr && task->stage == Stage::Waiting,
                      Texts::tr("only a task that waits can be moved"));
    default:
        return unless(now != TaskActivity::None && now != TaskActivity::Stopping &&
                          now != TaskActivity::Copying,
                      Texts::tr("only a task that waits or runs can be stopped"));
    }
}
