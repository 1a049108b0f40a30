#include "down/cdown.h"
#include "down/paths.h"
#include "strutil/narrowtext.h"
#include "strutil/strutil.h"
#include "sysutility/sysutility.h"

#include <QFile>
#include <QFileInfo>

namespace {

// A blank title names nothing, just like an empty one. A title that consists of forbidden
// characters only does become the empty name.
QString cleanName(const QString &title, const QString &key)
{
    const std::string narrow = narrowtext::toNarrow(title);
    if (strutil::trim(narrow).empty())
        return key;
    return narrowtext::fromNarrow(sysutility::MakeFileName(narrow));
}

// Three substitutions, each into the text the one before has made: a folder or name with a percent
// sign and a digit takes part in the later ones.
QString joined(const QString &folder, const QString &name, const QString &extension)
{
    const QString pattern = QStringLiteral("%1") + g_BackSlash + QStringLiteral("%2%3");
    // NOLINTNEXTLINE(clazy-qstring-arg): not arg(folder, name, extension), which is one pass
    return pattern.arg(folder).arg(name).arg(extension);
}

bool renameFile(const QString &from, const QString &to)
{
    const ControllerUnlock unlock;
    return !from.isEmpty() && !to.isEmpty() && QFile::rename(from, to);
}

CXMLInfo &recordAt(void *handle)
{
    return *static_cast<CXMLInfo *>(handle);
}

} // namespace

QString CDown::getVideoFileName(const QString &folder, const QString &title,
                                const QString &extension, const QString &key)
{
    const ControllerLock lock;
    const QString ownKey = key; // may be the list's own element
    const bool makeUnique = m_ReDownLoadList.removeAll(ownKey) == 0;
    return withForwardSlashes(
        CustomVideoName(folder, cleanName(title, ownKey), extension, makeUnique));
}

QString CDown::CustomVideoName(const QString &folder, const QString &name, const QString &extension,
                               bool makeUnique)
{
    QString path = joined(folder, name, extension);
    for (qint64 n = 0; makeUnique && QFileInfo::exists(path); ++n)
        path = joined(folder, QStringLiteral("%1_%2").arg(name).arg(n), extension);
    return path;
}

QString CDown::GetFileBaseName(const QString &path, QString &extension)
{
    const QString unified = withForwardSlashes(path);
    const qsizetype slash = unified.lastIndexOf(u'/');
    if (slash < 0)
        return QStringLiteral("");
    const QString fileName = unified.mid(slash + 1);
    const qsizetype dot = fileName.lastIndexOf(u'.');
    extension = dot < 0 ? QStringLiteral("") : fileName.mid(dot + 1);
    return dot < 0 ? fileName : fileName.left(dot);
}

bool CDown::setSaveAsFileName(const QString &key, const QString &newFilePath,
                              const QString &newBaseName)
{
    const QString ownKey = key;
    const QString newPath = newFilePath;
    const QString newBase = newBaseName;
    QString current;
    {
        const ControllerLock lock;
        const CXMLInfo *record = m_pHistory->item(ownKey);
        if (record == nullptr)
            return false;
        current = record->FileName;
    }
    if (!renameFile(current, newPath))
        return false;
    QString oldCopy;
    QString newCopy;
    {
        const ControllerLock lock;
        CXMLInfo *record = m_pHistory->item(ownKey);
        if (record == nullptr)
            return false;
        QString extension;
        GetFileBaseName(record->SaveAsFileName, extension);
        const auto copyNamed = [&](const QString &base) {
            return record->SaveAsPath + g_BackSlash + base + u'.' + extension;
        };
        oldCopy = copyNamed(record->BaseName);
        newCopy = copyNamed(newBase);
        record->Title = newBase;
        record->BaseName = newBase;
        record->FileName = newPath;
        record->SaveAsFileName = newCopy;
    }
    return renameFile(oldCopy, newCopy);
}

bool CDown::ReNameSaveAsFileName(const QString &key, const QString &saveAsFileName,
                                 const QString &saveAsExt)
{
    const ControllerLock lock;
    CXMLInfo *record = m_pHistory->item(key);
    if (record == nullptr)
        return false;
    const QString extension = saveAsExt; // may be the field that is written first
    record->SaveAsFileName = saveAsFileName;
    record->SaveAsExt = extension;
    return AutoSaveXmlFile();
}

QString CDown::getSaveAsFileName(void *handle)
{
    const ControllerLock lock;
    return recordAt(handle).SaveAsFileName;
}

QString CDown::getSaveAsFileName(const QString &key)
{
    const ControllerLock lock;
    const CXMLInfo *record = m_pHistory->item(key);
    return record != nullptr ? record->SaveAsFileName : QStringLiteral("");
}

QString CDown::getSaveAsExt(void *handle)
{
    const ControllerLock lock;
    const CXMLInfo &record = recordAt(handle);
    return record.SaveAsExt.isEmpty() ? record.Profile->m_pDesc->fileTypeExt : record.SaveAsExt;
}

QString CDown::getProFileExt(void *handle)
{
    const ControllerLock lock;
    const CXMLInfo &record = recordAt(handle);
    return record.IsOrgVideo == 1 ? QStringLiteral("flv") : record.Profile->m_pDesc->fileTypeExt;
}
