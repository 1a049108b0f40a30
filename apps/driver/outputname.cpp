#include "driver/outputname.h"

#include "down/cdown.h"
#include "driver/plaintext.h"
#include "driver/taskrecord.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>

namespace {

bool isTaken(const QString &path)
{
    const QFileInfo file(path);
    return file.exists() || file.isSymLink();
}

bool isSameFolder(const QString &one, const QString &other)
{
    return QFileInfo(one).canonicalFilePath() == QFileInfo(other).canonicalFilePath();
}

FailureReason cannotWrite(const QString &path, const QString &error)
{
    return {QStringLiteral("\"%1\" cannot be written (%2)").arg(path, error),
            QStringLiteral("Choose an output folder that you may write to.")};
}

FailureReason copyFailed(const FinishedFiles &files, qint64 size)
{
    const QString folder = QFileInfo(files.copy).path();
    const bool full = QStorageInfo(folder).bytesAvailable() < size;
    return {QStringLiteral("the copy into \"%1\" failed, %2; the downloaded file is safe: \"%3\"")
                .arg(folder,
                     full ? QStringLiteral("the disk is full")
                          : QStringLiteral("the folder cannot be written"),
                     files.video),
            full ? QStringLiteral("Free some space and copy the file yourself.")
                 : QStringLiteral("Copy the file yourself, or choose another output folder.")};
}

// Whether the library would make the task's own path of its own base name.
bool givesOwnName(const OutputPlace &place, const QString &base)
{
    return CDown::CustomVideoName(place.downloadFolder, base, u'.' + place.extension, false) ==
           place.ownVideo;
}

bool reservesCopy(const OutputPlace &place)
{
    return place.copies && !isSameFolder(place.downloadFolder, place.copyFolder);
}

std::optional<OutputName> ownName(const OutputPlace &place)
{
    const QString base = QFileInfo(place.ownVideo).completeBaseName();
    const bool suits = !place.ownVideo.isEmpty() && base == plaintext::fileTitle(base, {}) &&
                       givesOwnName(place, base) &&
                       taskrecord::mayReplace(place.ownVideo, place.ownSize);
    if (!suits)
        return std::nullopt;
    if (!reservesCopy(place))
        return OutputName{base, {}, true};
    const QString copy = place.copyFolder + u'/' + QFileInfo(place.ownVideo).fileName();
    QFile file(copy);
    if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return OutputName{base, copy, true};
    if (copy != place.ownCopy || !taskrecord::mayReplace(copy, place.ownSize))
        return std::nullopt;
    return OutputName{base, file.size() == 0 ? copy : QString(), true};
}

void removeIfEmpty(const QString &path)
{
    const QFileInfo file(path);
    if (!path.isEmpty() && file.isFile() && file.size() == 0)
        QFile::remove(path);
}

std::variant<OutputName, FailureReason> freeName(const OutputPlace &place)
{
    const bool reserves = reservesCopy(place);
    const QString base = plaintext::fileTitle(place.title, place.key);
    QString name = base;
    for (int n = 0;; name = base + u'_' + QString::number(n++)) {
        const QString video =
            CDown::CustomVideoName(place.downloadFolder, name, u'.' + place.extension, false);
        if (isTaken(video))
            continue;
        if (!reserves)
            return OutputName{name, {}};
        const QString copy = place.copyFolder + u'/' + QFileInfo(video).fileName();
        QFile file(copy);
        if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
            return OutputName{name, copy};
        if (!isTaken(copy))
            return cannotWrite(copy, file.errorString());
    }
}

} // namespace

std::variant<OutputName, FailureReason> chooseOutputName(const OutputPlace &place)
{
    if (place.copies && !QDir().mkpath(place.copyFolder))
        return cannotWrite(place.copyFolder, QStringLiteral("it cannot be made"));
    if (const auto own = ownName(place))
        return *own;
    removeIfEmpty(place.ownVideo);
    if (place.copies)
        removeIfEmpty(place.ownCopy);
    return freeName(place);
}

std::optional<FailureReason> missingFile(const FinishedFiles &files)
{
    const QFileInfo video(files.video);
    if (!video.isFile())
        return FailureReason{QStringLiteral("the downloaded file \"%1\" is gone").arg(files.video),
                             QStringLiteral("Start the download again.")};
    if (files.copy.isEmpty() || QFileInfo(files.copy).size() == video.size())
        return std::nullopt;
    return copyFailed(files, video.size());
}
