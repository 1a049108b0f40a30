#include "down/cdown.h"
#include "down/enginerequest.h"
#include "video/formatentry.h"
#include "video/formatselection.h"

namespace {

QString taskKeyOf(const QString &imageKey)
{
    return imageKey.left(imageKey.lastIndexOf(u'1'));
}

void recordPicture(CXMLInfo &record, const tagVideoInfo &chosen, bool fallback)
{
    record.VideoWidth = fallback ? chosen.nFallbackWidth : chosen.nWidth;
    record.VideoHeight = fallback ? chosen.nFallbackHeight : chosen.nHeight;
    record.VideoExt = fallback ? chosen.strFallbackExt : chosen.strExt;
    record.SaveAsExt = record.VideoExt;
}

void recordNames(CXMLInfo &record, const QString &fileName)
{
    record.BaseName = CDown::GetFileBaseName(fileName, record.SaveAsExt);
    record.FileName = fileName;
    if (record.Title.compare(record.BaseName, Qt::CaseInsensitive) != 0)
        record.Title = record.BaseName;
    const qsizetype slash = fileName.lastIndexOf(g_BackSlash);
    record.SaveAsFileName =
        slash < 0 ? fileName : record.SaveAsPath + g_BackSlash + fileName.mid(slash + 1);
}

} // namespace

tagVideoInfo CDown::chooseFormat(const CXMLInfo &record) const
{
    tagVideoInfo wanted = formatentry::wantedFormat(*record.Profile->m_pDesc);
    tagVideoInfo chosen{};
    if (m_bUseProfileFmt || record.IsOrgVideo == 0)
        formatselection::bestByProfile(record.fmt_list, wanted, chosen);
    else
        formatselection::bestSource(record.fmt_stream_map, record.fmt_list, chosen);
    return chosen;
}

// Records the choice of format, address and names in the task. The texts that the request then
// needs are read back from the record.
void CDown::prepareVideo(CXMLInfo &record)
{
    const tagVideoInfo chosen = chooseFormat(record);
    int fallback = 0;
    record.DownLoadURL = getDownLoadHttp(record.fmt_stream_map, chosen.nFmt, fallback);
    const QString fileName =
        getVideoFileName(m_strDownloadPath, record.Title, u'.' + chosen.strExt, record.MD5Code);
    recordPicture(record, chosen, fallback == 1);
    recordNames(record, fileName);
    record.DownState = 0;
}

tagTaskInfo CDown::downloadRequest(const CXMLInfo &record) const
{
    tagTaskInfo task(localForm(record.MD5Code).constData());
    request::fill(task.szPageURL, record.OrgWebSite);
    request::fillCommon(task, *this, 1);
    task.nFileType = FILE_TYPE_VIDEO;
    task.pUserData = m_pSelf;
    return task;
}

int CDown::sendVideo(const QString &key, std::optional<QString> &refused)
{
    CXMLInfo *record = m_pHistory->item(key);
    if (record == nullptr || record->fmt_stream_map.isEmpty() || record->fmt_list.isEmpty())
        return 0;
    prepareVideo(*record);
    tagTaskInfo task = downloadRequest(*record);
    const bool carried = request::fill(task.szTaskKey, record->MD5Code) &&
                         request::fill(task.szPageURL, record->OrgWebSite) &&
                         request::fill(task.szDownloadURL, record->DownLoadURL) &&
                         request::fill(task.szSavePath, record->FileName);
    if (m_DownLoadingList.contains(key) || m_DownLoadingList.size() >= DOWN_THREADNUM_MAX)
        return 0;
    m_DownLoadingList.append(key);
    if (!engineHasRoomFor(key))
        return 0;
    m_DownloadAllTask.append(key);
    const int result = carried ? ::DownloadVideo(task) : -1;
    if (result == -1)
        refused = key;
    return result;
}

int CDown::DownloadRun(const QString &key, bool isVideo)
{
    const ControllerLock lock;
    const QString ownKey = key;
    if (!isVideo) {
        CXMLInfo *record = m_pHistory->item(taskKeyOf(ownKey));
        return record == nullptr ? 0 : DownloadImageRun(ownKey, record, downloadRequest(*record));
    }
    std::optional<QString> refused;
    const int result = sendVideo(ownKey, refused);
    if (refused)
        DownloadUnlock(*refused, FILE_TYPE_VIDEO, false);
    return result;
}
