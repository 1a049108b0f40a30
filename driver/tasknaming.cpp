// How a video is named, so that the library's choice stands in nobody's way.
#include "driver/dispatcher.h"

#include "driver/taskrecord.h"

#include <algorithm>
#include <utility>

// False when the task has ended here. The name is not taken yet.
bool Dispatcher::nameVideo(Task &task)
{
    if (skip(task))
        return false;
    PictureSize offered;
    const auto place = placeFor(task, offered);
    if (!place) {
        endFailed(task, refusal(task.key));
        return false;
    }
    if (!confirmUpgrade(task, offered))
        return false;
    const auto name = chooseOutputName(*place);
    if (const auto *reason = std::get_if<FailureReason>(&name)) {
        endFailed(task, *reason);
        return false;
    }
    recordName(task, std::get<OutputName>(name));
    if (task.request.onConflict == OnConflict::Overwrite && !task.upgrade)
        task.wanted = plainName(*place);
    return true;
}

// Settles the format too: the name depends on it.
std::optional<OutputPlace> Dispatcher::placeFor(Task &task, PictureSize &offered)
{
    const DownloadRequest &request = task.request;
    FormatWish wish = task.offer.settled(request.profile, request.keepSource);
    const ChosenFormat chosen = task.offer.chosen(wish);
    offered = {chosen.width, chosen.height};
    task.byProfile = wish.byProfile;
    OutputPlace place;
    place.title = task.progress.title;
    place.key = task.key;
    place.extension = chosen.extension;
    place.downloadFolder = request.downloadFolder;
    place.copyFolder = request.outputFolder;
    place.copies = request.keepSource;
    place.unfinished = m_settings.unfinishedFiles;
    place.isAwaited = [this, key = task.key](const QString &path) {
        return ::isAwaited(controller(), key, path, m_settings.unfinishedFiles);
    };
    for (const Task *other : m_tasks.in(Stage::Named))
        place.claimed.insert(other->name->video);
    const ControllerLock lock;
    CXMLInfo *record = controller().getXMLInfo(task.key);
    if (record == nullptr)
        return std::nullopt;
    if (wish.byProfile) // else the wish stays open, for when the task is resumed
        controller().SaveProfile(task.key, &wish.profile);
    if (!nameIsClaimed(*record)) {
        place.ownVideo = record->FileName;
        place.ownCopy = record->SaveAsFileName;
        place.ownSize = record->FileSize;
    }
    return place;
}

// As the library will write it when it sends the request; but on disk, before the name is taken.
void Dispatcher::recordName(Task &task, const OutputName &name)
{
    task.name = name;
    {
        const ControllerLock lock;
        CXMLInfo *record = controller().getXMLInfo(task.key);
        if (record == nullptr)
            return;
        record->Title = name.title;
        if (record->FileName != name.video)
            record->FileSize = 0;
        record->FileName = name.video;
        record->SaveAsFileName =
            name.copy.isEmpty() ? record->SaveAsPath + name.video.mid(name.video.lastIndexOf(u'/'))
                                : name.copy;
        record->ConvertionDesc = QStringLiteral(""); // the new video is not converted yet
    }
    m_changed.insert(task.key);
    recordUpgradeNames(task);
}

// Two unfinished tasks can remember one name: it was free again when the
// first had failed. The one that comes first now leaves it to the other.
bool Dispatcher::nameIsClaimed(const CXMLInfo &record)
{
    const ControllerLock lock;
    const auto &all = controller().m_pHistory->m_InfoList;
    return std::any_of(all.cbegin(), all.cend(), [&record](const CXMLInfo *other) {
        return other != &record && other->FileName == record.FileName &&
               (taskrecord::isInterrupted(*other) ||
                taskrecord::stateOf(*other) == TaskState::Finished);
    });
}

void Dispatcher::releaseName(Task &task)
{
    if (const auto name = std::exchange(task.name, std::nullopt))
        release(*name);
}
