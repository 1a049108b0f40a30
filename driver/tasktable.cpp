#include "driver/tasktable.h"

#include <utility>

Task &TaskTable::add(Task task)
{
    const QString key = task.key;
    Task &added = m_tasks.emplace(key, std::move(task)).first->second;
    m_stages[index(added.stage)].append(&added);
    return added;
}

Task *TaskTable::find(const QString &key)
{
    const auto found = m_tasks.find(key);
    return found == m_tasks.end() ? nullptr : &found->second;
}

const Task *TaskTable::find(const QString &key) const
{
    const auto found = m_tasks.find(key);
    return found == m_tasks.end() ? nullptr : &found->second;
}

void TaskTable::moveTo(Task &task, Stage stage, Place place)
{
    m_stages[index(task.stage)].removeOne(&task);
    task.stage = stage;
    QList<Task *> &tasks = m_stages[index(stage)];
    tasks.insert(place == Place::First ? 0 : tasks.size(), &task);
}

void TaskTable::moveBefore(Task &task, Task *other)
{
    QList<Task *> &tasks = m_stages[index(task.stage)];
    if (other == &task)
        return;
    tasks.removeOne(&task);
    const qsizetype at = tasks.indexOf(other);
    tasks.insert(at < 0 ? tasks.size() : at, &task);
}

Task TaskTable::take(Task &task)
{
    m_stages[index(task.stage)].removeOne(&task);
    return std::move(m_tasks.extract(task.key).mapped());
}
