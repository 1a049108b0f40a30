#include "driver/upgrade.h"

#include "driver/disk.h"
#include "driver/taskstate.h"
#include "video/formatentry.h"

#include <QFile>
#include <QFileInfo>

namespace {

UpgradeFiles::Pair pairFor(const QString &path)
{
    return {path, path + QLatin1String(".former")};
}

qint64 areaOf(const PictureSize &picture)
{
    return formatentry::frameArea(picture.width, picture.height);
}

} // namespace

Upgrade::Upgrade(const CXMLInfo &record)
    : m_profile(*record.Profile->m_pDesc),
      m_keepsSource(record.IsOrgVideo),
      m_picture{record.VideoWidth, record.VideoHeight},
      m_extension(record.VideoExt),
      m_fileName(record.FileName),
      m_baseName(record.BaseName),
      m_title(record.Title),
      m_copyName(record.SaveAsFileName),
      m_copyExtension(record.SaveAsExt),
      m_conversion(record.ConvertionDesc),
      m_size(record.FileSize)
{
    m_files.old.append(pairFor(m_fileName));
    const bool hasCopy =
        m_keepsSource == 1 && m_copyName != m_fileName &&
        QFileInfo(m_copyName).canonicalFilePath() != QFileInfo(m_fileName).canonicalFilePath() &&
        QFileInfo(m_copyName).size() == m_size;
    if (hasCopy)
        m_files.old.append(pairFor(m_copyName));
}

bool Upgrade::isLarger(const PictureSize &picture) const
{
    return areaOf(picture) > areaOf(m_picture);
}

std::optional<QString> Upgrade::setAside()
{
    for (const auto &[path, aside] : std::as_const(m_files.old)) {
        if (disk::isTaken(aside))
            return aside;
    }
    m_isSetAside = true;
    for (const auto &[path, aside] : std::as_const(m_files.old)) {
        if (!disk::rename(path, aside)) {
            rollBack();
            return aside;
        }
    }
    return std::nullopt;
}

std::optional<QString> Upgrade::commit()
{
    std::optional<QString> left;
    for (const auto &[path, aside] : std::as_const(m_files.old)) {
        if (!QFile::remove(aside) && disk::isTaken(aside))
            left = aside;
    }
    return left;
}

// What is in the old file's place by now is an empty file that held the name, or nothing.
std::optional<QString> Upgrade::rollBack()
{
    std::optional<QString> left;
    if (!m_isSetAside)
        return left;
    for (const auto &[path, aside] : std::as_const(m_files.old)) {
        const bool isBack = !disk::isTaken(aside) || disk::rename(aside, path);
        if (!isBack && !left)
            left = aside;
    }
    m_isSetAside = left.has_value();
    return left;
}

void Upgrade::restore(CXMLInfo &record) const
{
    const auto &[path, aside] = m_files.old.first();
    const bool isAside = m_isSetAside && disk::isTaken(aside);
    *record.Profile->m_pDesc = m_profile;
    record.IsOrgVideo = m_keepsSource;
    record.VideoWidth = m_picture.width;
    record.VideoHeight = m_picture.height;
    record.VideoExt = m_extension;
    record.FileName = isAside ? aside : m_fileName;
    record.BaseName = m_baseName;
    record.Title = m_title;
    record.SaveAsFileName = m_copyName;
    record.SaveAsExt = m_copyExtension;
    record.ConvertionDesc = m_conversion;
    record.FileSize = m_size;
    record.State = int(TaskState::Finished);
    record.Progress = 100;
}
