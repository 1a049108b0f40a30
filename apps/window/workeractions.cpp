// What the user does with tasks.
#include "driver/renaming.h"
#include "driver/taskrecord.h"
#include "driver/taskrequests.h"
#include "enginesettings.h"
#include "worker.h"

#include <QFile>

#include <algorithm>
#include <utility>

void Worker::perform(TaskAction action, const QStringList &keys)
{
    QStringList possible;
    std::copy_if(keys.cbegin(), keys.cend(), std::back_inserter(possible), [&](const QString &key) {
        return !isReadOnly() && !m_session->obstacle(key, action);
    });
    for (const QString &key : std::as_const(possible)) {
        if (action == TaskAction::Stop)
            m_session->stop(key);
        else if (action == TaskAction::Pause || action == TaskAction::Continue)
            m_session->driver().setPaused(key, action == TaskAction::Pause);
        change(key);
    }
    if (action == TaskAction::Resume || action == TaskAction::Retry)
        resume(taskrequests::toRetry(m_session->controller(), possible));
}

void Worker::resume(const QList<DownloadRequest> &requests)
{
    add(requests, m_settings.convert);
}

void Worker::resumeInterrupted()
{
    if (!isReadOnly())
        resume(taskrequests::interrupted(m_session->controller()));
}

void Worker::move(const QStringList &keys, bool forward)
{
    QStringList order;
    std::copy_if(
        m_waiting.cbegin(), m_waiting.cend(), std::back_inserter(order),
        [this](const QString &key) { return !m_session->obstacle(key, TaskAction::Move); });
    if (!forward)
        std::reverse(order.begin(), order.end());
    for (qsizetype at = 1; at < order.size(); ++at) {
        if (keys.contains(order[at]) && !keys.contains(order[at - 1]))
            order.swapItemsAt(at, at - 1);
    }
    if (!forward)
        std::reverse(order.begin(), order.end());
    for (const QString &key : std::as_const(order)) {
        m_session->driver().moveBefore(key, {});
        m_waiting.removeOne(key);
        m_waiting.append(key);
        change(key);
    }
}

void Worker::upgrade(const QStringList &keys, const Profile_Desc &profile)
{
    QList<DownloadRequest> requests;
    for (const QString &key : keys) {
        if (const auto request = taskrequests::toUpgrade(m_session->controller(), key, profile))
            requests << *request;
    }
    add(requests, false);
}

void Worker::convert(const QStringList &keys, const Profile_Desc &profile)
{
    for (const QString &key : keys) {
        const QString problem = isReadOnly() ? QString() : m_session->convert(key, profile);
        if (!problem.isEmpty())
            emit message(tr("The video cannot be converted: %1").arg(problem));
        change(key);
    }
}

void Worker::rename(const QString &key, const QString &name)
{
    if (isReadOnly())
        return;
    const QString problem = renameTask(m_session->controller(), key, name, unfinishedFiles);
    if (!problem.isEmpty())
        emit message(tr("The video cannot be renamed: %1").arg(problem));
    m_session->keeper()->commit({key});
    m_session->keeper()->settle(key);
    change(key);
    save();
}

void Worker::findFiles(const QStringList &keys)
{
    QStringList files;
    for (const QString &key : keys) {
        const ControllerLock lock;
        if (const CXMLInfo *record = m_session->controller().getXMLInfo(key))
            files << taskrecord::filesOf(*record, unfinishedFiles);
    }
    files.removeDuplicates();
    emit filesFound(keys, files);
}

// Rather a file without a task than a task without its file: the files go last.
void Worker::remove(const QStringList &keys, bool deleteFiles)
{
    QList<std::shared_ptr<CXMLInfo>> removed; // unlinked records are ours
    QStringList gone;
    for (const QString &key : keys) {
        if (isReadOnly() || m_session->obstacle(key, TaskAction::Remove))
            continue;
        removed << std::shared_ptr<CXMLInfo>(m_session->controller().getXMLInfo(key));
        m_session->controller().remove(key, false);
        m_failures.remove(key);
        m_changed.removeAll(key);
        gone << key;
    }
    if (gone.isEmpty())
        return;
    emit rowsRemoved(gone);
    emit totalsChanged(m_session->driver().totals());
    if (!save() || !deleteFiles)
        return;
    for (const auto &record : std::as_const(removed)) {
        for (const QString &path : taskrecord::filesOf(*record, unfinishedFiles)) {
            if (!QFile::remove(path))
                emit message(tr("\"%1\" cannot be deleted.").arg(path));
        }
    }
}
