#include "driver/outputname.h"

#include "driver/disk.h"
#include "driver/plaintext.h"
#include "driver/taskrecord.h"
#include "driver/texts.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace {

bool isSameFolder(const QString &one, const QString &other)
{
    return QFileInfo(one).canonicalFilePath() == QFileInfo(other).canonicalFilePath();
}

FailureReason cannotWrite(const QString &path, const QString &error)
{
    return {Texts::tr("\"%1\" cannot be written (%2)").arg(path, error),
            Texts::tr("Choose an output folder that you may write to.")};
}

FailureReason copyFailed(const FinishedFiles &files, qint64 size)
{
    const QString folder = QFileInfo(files.copy).path();
    const bool full = QStorageInfo(folder).bytesAvailable() < size;
    return {
        Texts::tr(R"(the copy into "%1" failed, %2; the downloaded file is safe: "%3")")
            .arg(folder,
                 full ? Texts::tr("the disk is full") : Texts::tr("the folder cannot be written"),
                 files.video),
        full ? Texts::tr("Free some space and copy the file yourself.")
             : Texts::tr("Copy the file yourself, or choose another output folder.")};
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
                       givesOwnName(place, base) && !place.claimed.contains(place.ownVideo) &&
                       taskrecord::mayReplace(place.ownVideo, place.ownSize);
    if (!suits)
        return std::nullopt;
    if (!reservesCopy(place))
        return OutputName{base, place.ownVideo, {}, true};
    const QString copy = place.copyFolder + u'/' + QFileInfo(place.ownVideo).fileName();
    const bool isOurs = copy == place.ownCopy && (taskrecord::mayReplace(copy, place.ownSize) ||
                                                  taskrecord::isBegunCopy(copy, place.ownVideo));
    if (disk::isTaken(copy) && !isOurs)
        return std::nullopt;
    return OutputName{base, place.ownVideo, copy, true};
}

OutputName nameOf(const OutputPlace &place, const QString &base)
{
    const QString video =
        CDown::CustomVideoName(place.downloadFolder, base, u'.' + place.extension, false);
    return {base, video,
            reservesCopy(place) ? place.copyFolder + u'/' + QFileInfo(video).fileName()
                                : QString()};
}

bool isFree(const OutputPlace &place, const OutputName &name)
{
    return !disk::isTaken(name.video) && !place.claimed.contains(name.video) &&
           (name.copy.isEmpty() || !disk::isTaken(name.copy)) &&
           !(place.isAwaited && place.isAwaited(name.video));
}

OutputName freeName(const OutputPlace &place)
{
    const OutputName plain = plainName(place);
    OutputName name = plain;
    for (int n = 0; !isFree(place, name);)
        name = nameOf(place, plain.title + u'_' + QString::number(n++));
    return name;
}

// What the task left under a name that it does not keep.
void abandonOwn(const OutputPlace &place)
{
    disk::removeIfEmpty(place.ownVideo);
    if (place.copies)
        disk::removeIfEmpty(place.ownCopy);
    if (!place.unfinished || place.ownVideo.isEmpty())
        return;
    for (const QString &path : place.unfinished(place.ownVideo))
        QFile::remove(path);
}

} // namespace

bool isAwaited(CDown &controller, const QString &key, const QString &path,
               const UnfinishedFiles &unfinished)
{
    const QStringList parts = unfinished ? unfinished(path) : QStringList();
    if (std::none_of(parts.cbegin(), parts.cend(), disk::isTaken))
        return false;
    const ControllerLock lock;
    const auto &all = controller.m_pHistory->m_InfoList;
    return std::any_of(all.cbegin(), all.cend(), [&](const CXMLInfo *record) {
        return record->MD5Code != key && taskrecord::stateOf(*record) != TaskState::Finished &&
               disk::isSamePath(record->FileName, path);
    });
}

std::variant<OutputName, FailureReason> chooseOutputName(const OutputPlace &place)
{
    if (place.copies && !QDir().mkpath(place.copyFolder))
        return cannotWrite(place.copyFolder, Texts::tr("it cannot be made"));
    if (const auto own = ownName(place))
        return *own;
    abandonOwn(place);
    return freeName(place);
}

OutputName plannedName(const OutputPlace &place)
{
    const auto own = ownName(place);
    return own ? *own : freeName(place);
}

OutputName plainName(const OutputPlace &place)
{
    return nameOf(place, plaintext::fileTitle(place.title, place.key));
}

QString conflictWith(const OutputPlace &place)
{
    if (ownName(place))
        return {};
    const OutputName plain = plainName(place);
    const QString path = plain.copy.isEmpty() ? plain.video : plain.copy;
    return disk::isTaken(path) || place.claimed.contains(plain.video) ? path : QString();
}

std::variant<Reservation, FailureReason> reserve(const OutputName &name)
{
    const bool isNew = disk::makeEmpty(name.video);
    if (!isNew && disk::isTaken(name.video) && !name.isOwn)
        return Reservation::Taken;
    if (name.copy.isEmpty() || disk::makeEmpty(name.copy))
        return Reservation::Done;
    const QString error = QString::fromLocal8Bit(std::strerror(errno));
    const bool isTaken = disk::isTaken(name.copy);
    if (isTaken && name.isOwn)
        return Reservation::Done;
    if (isNew)
        QFile::remove(name.video);
    if (isTaken)
        return Reservation::Taken;
    return cannotWrite(name.copy, error);
}

void release(const OutputName &name)
{
    disk::removeIfEmpty(name.video);
    disk::removeIfEmpty(name.copy);
}

std::optional<FailureReason> missingFile(const FinishedFiles &files)
{
    const QFileInfo video(files.video);
    if (!video.isFile())
        return FailureReason{Texts::tr("the downloaded file \"%1\" is gone").arg(files.video),
                             Texts::tr("Start the download again.")};
    if (files.copy.isEmpty() || QFileInfo(files.copy).size() == video.size())
        return std::nullopt;
    return copyFailed(files, video.size());
}
