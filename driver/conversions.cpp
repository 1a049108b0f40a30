#include "conversions.h"

#include "down/cdown.h"
#include "driver/taskstate.h"

#include <QFileInfo>

namespace conversions {

namespace {

QString descriptionOf(const Profile_Desc &profile)
{
    return QStringLiteral("%1:%2x%3")
        .arg(profile.fileTypeExt)
        .arg(profile.vSize_Width)
        .arg(profile.vSize_Height);
}

// A video that is there already was downloaded under another wish, perhaps.
void takeWish(CXMLInfo &record, const Profile_Desc &wish)
{
    Profile_Desc &profile = *record.Profile->m_pDesc;
    if (wish.fileTypeExt.isEmpty())
        return;
    const bool sized = wish.vSize_Width > 0;
    profile.fileTypeExt = wish.fileTypeExt;
    profile.vSize_Width = sized ? wish.vSize_Width : record.VideoWidth;
    profile.vSize_Height = sized ? wish.vSize_Height : record.VideoHeight;
}

} // namespace

QJsonObject describe(CDown &controller, const QString &key)
{
    tagConvertInfo info;
    controller.getConvertInfo(key, &info);
    QJsonObject object{{QStringLiteral("needed"), info.nConvert == 1}};
    if (info.nConvert == 1) {
        object.insert(QStringLiteral("source"), info.strSrcFile);
        object.insert(QStringLiteral("target"), info.strDstFile);
        object.insert(QStringLiteral("extension"), info.ProfileDesc.fileTypeExt);
        object.insert(QStringLiteral("width"), info.ProfileDesc.vSize_Width);
        object.insert(QStringLiteral("height"), info.ProfileDesc.vSize_Height);
    }
    return object;
}

std::optional<Conversion> pending(CDown &controller, DownloadResult &result,
                                  const Profile_Desc &wish)
{
    const ControllerLock lock;
    CXMLInfo *record = controller.getXMLInfo(result.key);
    if (record == nullptr || result.outcome != DownloadOutcome::Finished)
        return std::nullopt;
    if (result.finding == Finding::AlreadyThere)
        takeWish(*record, wish);
    tagConvertInfo info;
    if (!controller.getConvertInfo(result.key, &info) || info.nConvert == 0)
        return std::nullopt;
    if (record->ConvertionDesc == descriptionOf(info.ProfileDesc) &&
        QFileInfo(record->SaveAsFileName).isFile()) {
        result.path = record->SaveAsFileName;
        return std::nullopt;
    }
    record->State = int(TaskState::Running);
    return Conversion{result, info.strSrcFile, info.strDstFile, info.ProfileDesc, record->Duration};
}

void recordResult(CDown &controller, const DownloadResult &result)
{
    const ControllerLock lock;
    CXMLInfo *record = controller.getXMLInfo(result.key);
    if (record == nullptr)
        return;
    if (result.outcome == DownloadOutcome::Finished) {
        record->State = int(TaskState::Finished);
        record->ConvertionDesc = descriptionOf(*record->Profile->m_pDesc);
        controller.ReNameSaveAsFileName(result.key, result.path, QFileInfo(result.path).suffix());
    } else {
        record->State =
            int(result.outcome == DownloadOutcome::Failed ? TaskState::Failed : TaskState::Stopped);
    }
}

} // namespace conversions
