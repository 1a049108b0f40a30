/** What has to reach the disk itself. Internal to the driver. */
#ifndef VIDEODOWN_DRIVER_DISK_H
#define VIDEODOWN_DRIVER_DISK_H

#include <QByteArray>
#include <QString>

#include <filesystem>

namespace disk {

std::filesystem::path native(const QString &path);

/** Writes all of it, however many calls that takes. */
bool writeAll(int descriptor, const QByteArray &bytes);

/** Whether the file holds these very bytes. */
bool holds(const QString &path, const QByteArray &bytes);

/** Returns when the file's bytes are on disk. @return whether they are */
bool syncFile(const QString &path);
/** The same for the names in a folder. File systems that cannot do it are no failure. */
bool syncFolder(const QString &path);

/** Whether the name is taken, be it by a link that leads nowhere. */
bool isTaken(const QString &path);
/** Whether both are the same name in the same folder, which may have several names by links. An
 * empty path is the same as none. */
bool isSamePath(const QString &one, const QString &other);
/** Removes a regular file of no bytes; everything else stays. */
void removeIfEmpty(const QString &path);
/** Makes an empty file of this name, unless the name is taken. @return whether it did */
bool makeEmpty(const QString &path);
/** Renames, replacing what has the name. @return whether it did */
bool rename(const QString &from, const QString &to);

} // namespace disk

#endif
