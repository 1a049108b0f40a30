// What becomes of a video whose name somebody else's file has.
#include "driver/dispatcher.h"

#include "driver/disk.h"
#include "driver/historykeeper.h"
#include "driver/overwriting.h"
#include "driver/taskrecord.h"
#include "driver/texts.h"

#include <QFile>
#include <QFileInfo>

#include <memory>

// Whether the task has ended here.
bool Dispatcher::skip(Task &task)
{
    const bool keepsName = task.upgrade || task.name;
    if (task.request.onConflict != OnConflict::Skip || keepsName)
        return false;
    PictureSize offered;
    const auto place = placeFor(task, offered);
    const QString taken = place ? conflictWith(*place) : QString();
    if (taken.isEmpty())
        return false;
    DownloadResult result;
    result.outcome = DownloadOutcome::Skipped;
    result.path = taken;
    end(task, result);
    return true;
}

// A task that was not in the list is not to be there, whenever the program ends.
void Dispatcher::leaveSkipped(const Task &task)
{
    {
        const ControllerLock lock;
        CXMLInfo *record = controller().getXMLInfo(task.key);
        if (record != nullptr && task.former)
            taskrecord::setWishes(*record, task.former->wishes);
        if (record != nullptr)
            record->State = int(task.former ? task.former->state : TaskState::None);
    }
    if (task.former) {
        m_changed.insert(task.key);
        return;
    }
    m_changed.remove(task.key);
    if (m_keeper != nullptr)
        m_keeper->drop(task.key);
}

// Not before those who hear of the task have heard its end. Its thumbnail may have been quicker.
void Dispatcher::dropSkipped(const QString &key)
{
    const ControllerLock lock;
    std::unique_ptr<CXMLInfo> record(controller().getXMLInfo(key));
    if (record && taskrecord::stateOf(*record) == TaskState::None) {
        QFile::remove(record->ImagePath);
        controller().remove(key, false);
    } else {
        static_cast<void>(record.release()); // the list's
    }
}

// The complete video takes the place of the file that has its name. Until then, both are whole.
void Dispatcher::overwrite(const Task &task, const OutputName &wanted, DownloadResult &result)
{
    MovedFiles files;
    {
        const ControllerLock lock;
        const CXMLInfo *record = controller().getXMLInfo(task.key);
        if (record == nullptr || record->FileName == wanted.video)
            return;
        if (!wanted.copy.isEmpty())
            files.moves.append({record->SaveAsFileName, wanted.copy});
        files.moves.append({record->FileName, wanted.video});
    }
    files.size = QFileInfo(files.moves.last().from).size();
    bool isTaken = false;
    std::optional<QString> obstacle;
    for (const auto &[from, to] : std::as_const(files.moves)) {
        isTaken = isTaken || disk::isTaken(to);
        if (!obstacle)
            obstacle =
                overwriting::obstacle(controller(), task.key, to, m_settings.unfinishedFiles);
    }
    if (!obstacle)
        obstacle = move(task.key, files);
    result.overwrote = isTaken && !obstacle;
    result.notOverwritten = obstacle.value_or(QString());
}

// The files first: the record says what became of them.
std::optional<QString> Dispatcher::move(const QString &key, const MovedFiles &files)
{
    if (m_keeper != nullptr && !m_keeper->beginMove(key, files))
        return Texts::tr("the history cannot be written");
    std::optional<QString> obstacle;
    for (const auto &[from, to] : files.moves) {
        if (!obstacle && !disk::rename(from, to))
            obstacle = Texts::tr("\"%1\" cannot be replaced").arg(to);
    }
    {
        const ControllerLock lock;
        if (CXMLInfo *record = controller().getXMLInfo(key))
            leftovers::follow(*record, files);
    }
    if (m_keeper != nullptr)
        m_keeper->endMove(key);
    return obstacle;
}
