// How a video is named, so that the library's choice stands in nobody's way.
#include "driver/downloaddriver.h"

#include "driver/formatchoice.h"
#include "driver/taskrecord.h"

#include <algorithm>
#include <utility>

// False when the task has ended here. The name is not taken yet.
bool DownloadDriver::nameVideo(const QString &key)
{
    PictureSize offer;
    auto place = placeFor(key, offer);
    if (!place) {
        endFailed(key, refusal(key));
        return false;
    }
    if (!confirmUpgrade(key, offer))
        return false;
    for (const QString &other : std::as_const(m_named))
        place->claimed.insert(m_tasks[other].name->video);
    const auto name = chooseOutputName(*place);
    if (const auto *reason = std::get_if<FailureReason>(&name)) {
        endFailed(key, *reason);
        return false;
    }
    recordName(key, std::get<OutputName>(name));
    return true;
}

// Settles the format too: the name depends on it.
std::optional<OutputPlace> DownloadDriver::placeFor(const QString &key, PictureSize &offer)
{
    Task &task = m_tasks[key];
    const DownloadRequest &request = task.request;
    OutputPlace place;
    place.title = task.progress.title;
    place.key = key;
    place.downloadFolder = request.downloadFolder;
    place.copyFolder = request.outputFolder;
    place.copies = request.keepSource;
    place.unfinished = m_settings.unfinishedFiles;
    const ControllerLock lock;
    CXMLInfo *record = m_controller->getXMLInfo(key);
    if (record == nullptr)
        return std::nullopt;
    FormatWish wish = formatchoice::settled(request, record->fmt_list, record->fmt_stream_map);
    const ChosenFormat chosen =
        formatchoice::chosen(wish, record->fmt_list, record->fmt_stream_map);
    offer = {chosen.width, chosen.height};
    place.extension = chosen.extension;
    if (wish.byProfile) // else the wish stays open, for when the task is resumed
        m_controller->SaveProfile(key, &wish.profile);
    task.byProfile = wish.byProfile;
    if (!nameIsClaimed(*record)) {
        place.ownVideo = record->FileName;
        place.ownCopy = record->SaveAsFileName;
        place.ownSize = record->FileSize;
    }
    return place;
}

// As the library will write it when it sends the request; but on disk, before the name is taken.
void DownloadDriver::recordName(const QString &key, const OutputName &name)
{
    m_tasks[key].name = name;
    {
        const ControllerLock lock;
        CXMLInfo *record = m_controller->getXMLInfo(key);
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
    m_changed.insert(key);
    noteUpgradeNames(key, m_tasks[key]);
}

// Two unfinished tasks can remember one name: it was free again when the
// first had failed. The one that comes first now leaves it to the other.
bool DownloadDriver::nameIsClaimed(const CXMLInfo &record)
{
    const ControllerLock lock;
    const auto &all = m_controller->m_pHistory->m_InfoList;
    return std::any_of(all.cbegin(), all.cend(), [&record](const CXMLInfo *other) {
        return other != &record && other->FileName == record.FileName &&
               (taskrecord::isInterrupted(*other) ||
                taskrecord::stateOf(*other) == TaskState::Finished);
    });
}

void DownloadDriver::releaseName(Task &task)
{
    if (const auto name = std::exchange(task.name, std::nullopt))
        release(*name);
}
