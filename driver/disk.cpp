#include "driver/disk.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace disk {

namespace {

bool sync(const QString &path, int flags)
{
    const int descriptor = ::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool synced = ::fsync(descriptor) == 0 || errno == EINVAL;
    return ::close(descriptor) == 0 && synced;
}

} // namespace

std::filesystem::path native(const QString &path)
{
    return QFile::encodeName(path).toStdString();
}

bool writeAll(int descriptor, const QByteArray &bytes)
{
    for (qsizetype done = 0; done < bytes.size();) {
        const ssize_t written =
            ::write(descriptor, bytes.constData() + done, std::size_t(bytes.size() - done));
        if (written > 0)
            done += written;
        else if (written == 0 || errno != EINTR)
            return false;
    }
    return true;
}

bool holds(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) || file.size() != bytes.size())
        return false;
    constexpr qsizetype blockSize = 262144;
    QByteArray block(blockSize, Qt::Uninitialized);
    for (qsizetype at = 0; at < bytes.size();) {
        const auto size = qsizetype(file.read(block.data(), blockSize));
        if (size <= 0 || size > bytes.size() - at ||
            !std::equal(block.cbegin(), block.cbegin() + size, bytes.cbegin() + at))
            return false;
        at += size;
    }
    return true;
}

bool syncFile(const QString &path)
{
    return sync(path, O_WRONLY);
}

bool syncFolder(const QString &path)
{
    return sync(path, O_RDONLY | O_DIRECTORY);
}

bool isTaken(const QString &path)
{
    const QFileInfo file(path);
    return file.exists() || file.isSymLink();
}

bool isSamePath(const QString &one, const QString &other)
{
    // Asked of thousands of paths, which nearly always differ in their last characters.
    const QStringView name = QStringView(one).mid(one.lastIndexOf(u'/'));
    if (one.isEmpty() || !other.endsWith(name))
        return false;
    if (one == other)
        return true;
    const QFileInfo file(one);
    const QFileInfo otherFile(other);
    if (file.fileName() != otherFile.fileName())
        return false;
    const QString folder = QFileInfo(file.path()).canonicalFilePath();
    return !folder.isEmpty() && folder == QFileInfo(otherFile.path()).canonicalFilePath();
}

void removeIfEmpty(const QString &path)
{
    const QFileInfo file(path);
    if (!path.isEmpty() && !file.isSymLink() && file.isFile() && file.size() == 0)
        QFile::remove(path);
}

bool makeEmpty(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::NewOnly);
}

bool rename(const QString &from, const QString &to)
{
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

} // namespace disk
