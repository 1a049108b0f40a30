#include "driver/journal.h"

#include "driver/disk.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

// Within this file, so that nobody has to link with it.
#define XXH_INLINE_ALL
#include <xxhash.h>

#include <fcntl.h>
#include <optional>
#include <unistd.h>
#include <utility>

namespace {

const QString numberName = QStringLiteral("n");
const QString baseName = QStringLiteral("journalOf");
const QString successorName = QStringLiteral("becomes");
const QLatin1String digestForm("xxh128:");

QByteArray checksum(const QByteArray &text)
{
    return QCryptographicHash::hash(text, QCryptographicHash::Md5).toHex().left(8);
}

// Nothing for a line that is not as it was written.
std::optional<QJsonObject> entryIn(const QByteArray &line)
{
    const QByteArray text = line.mid(9);
    if (line.size() < 10 || line.at(8) != ' ' || line.left(8) != checksum(text))
        return std::nullopt;
    const QJsonDocument document = QJsonDocument::fromJson(text);
    return document.isObject() ? std::optional(document.object()) : std::nullopt;
}

// Of all bytes of a history: with MD5 that took as long as writing them.
class Digest
{
public:
    Digest() { XXH3_128bits_reset(&m_state); }

    void add(const char *bytes, qint64 size)
    {
        XXH3_128bits_update(&m_state, bytes, std::size_t(size));
    }

    QByteArray result() const
    {
        XXH128_canonical_t bytes;
        XXH128_canonicalFromHash(&bytes, XXH3_128bits_digest(&m_state));
        return digestForm.data() +
               QByteArray(reinterpret_cast<const char *>(bytes.digest), sizeof bytes).toHex();
    }

private:
    XXH3_state_t m_state;
};

// As journals had it before 0.1.0.
QByteArray formerDigestOfFile(const QString &historyPath)
{
    QFile file(historyPath);
    QCryptographicHash hash(QCryptographicHash::Md5);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file))
        return {};
    return hash.result().toHex();
}

// Tells whether a line means the history as it is.
class HistoryMatch
{
public:
    HistoryMatch(const QString &historyPath, const QByteArray &digest)
        : m_path(historyPath), m_digest(QString::fromLatin1(digest))
    {
    }

    bool operator()(const QJsonValue &value)
    {
        const QString digest = value.toString();
        if (digest.isEmpty() || digest.startsWith(digestForm))
            return value.isString() && digest == m_digest;
        if (!m_former)
            m_former = QString::fromLatin1(formerDigestOfFile(m_path));
        return digest == *m_former;
    }

private:
    const QString m_path;
    const QString m_digest;
    std::optional<QString> m_former;
};

struct Lines
{
    QList<QJsonObject> entries; // the head is the first
    qint64 size = 0;            // bytes up to the end of the last whole line
};

Lines wholeLines(QFile &file)
{
    Lines lines;
    qint64 last = -1;
    for (QByteArray line = file.readLine(); line.endsWith('\n'); line = file.readLine()) {
        line.chop(1);
        const auto entry = entryIn(line);
        if (!entry)
            continue;
        lines.size = file.pos();
        const qint64 number = entry->value(numberName).toInteger(-1);
        if (number > last)
            lines.entries.append(*entry);
        last = qMax(last, number);
    }
    return lines;
}

} // namespace

QByteArray Journal::digestOf(const QByteArray &history)
{
    Digest digest;
    digest.add(history.constData(), history.size());
    return digest.result();
}

QByteArray Journal::digestOfFile(const QString &historyPath)
{
    QFile file(historyPath);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return {};
    constexpr qint64 blockSize = 262144;
    QByteArray block(blockSize, Qt::Uninitialized);
    Digest digest;
    qint64 size = 0;
    while ((size = file.read(block.data(), blockSize)) > 0)
        digest.add(block.constData(), size);
    return size < 0 ? QByteArray() : digest.result();
}

Journal::Journal(QString path) : m_path(std::move(path)) {}

Journal::~Journal()
{
    if (m_file >= 0)
        ::close(m_file);
}

Journal::Found Journal::open(const QString &historyPath, const QByteArray &digest,
                             QList<QJsonObject> &entries)
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly))
        return Found::Nothing;
    const Lines lines = wholeLines(file);
    if (lines.entries.isEmpty()) {
        file.remove();
        return Found::Nothing;
    }
    HistoryMatch isHistory(historyPath, digest);
    bool isOurs = isHistory(lines.entries.first().value(baseName));
    for (const QJsonObject &entry : lines.entries) {
        if (isHistory(entry.value(successorName))) {
            isOurs = true;
            entries.clear(); // the history has them
        } else if (!entry.contains(baseName) && !entry.contains(successorName)) {
            entries.append(entry);
        }
    }
    if (!isOurs)
        return Found::Foreign;
    const MutexLock lock(m_mutex);
    m_size = lines.size;
    m_number = lines.entries.last().value(numberName).toInteger() + 1;
    return Found::Entries;
}

bool Journal::exists() const
{
    const MutexLock lock(m_mutex);
    return m_size > 0;
}

qint64 Journal::size() const
{
    const MutexLock lock(m_mutex);
    return m_size;
}

bool Journal::append(const QList<QJsonObject> &entries, const QByteArray &digest)
{
    const MutexLock lock(m_mutex);
    if (!openFile())
        return false;
    const qint64 number = m_number;
    QByteArray lines;
    if (m_size == 0)
        lines = lineOf({{baseName, QString::fromLatin1(digest)}});
    for (const QJsonObject &entry : entries)
        lines += lineOf(entry);
    if (write(lines))
        return true;
    m_number = number;
    return false;
}

bool Journal::sync()
{
    const MutexLock lock(m_mutex);
    return m_file < 0 || ::fdatasync(m_file) == 0;
}

bool Journal::announce(const QByteArray &digest)
{
    {
        const MutexLock lock(m_mutex);
        if (m_size == 0)
            return true;
        if (!openFile() || !write(lineOf({{successorName, QString::fromLatin1(digest)}})))
            return false;
    }
    return sync();
}

void Journal::remove()
{
    const MutexLock lock(m_mutex);
    if (m_file >= 0)
        ::close(std::exchange(m_file, -1));
    QFile::remove(m_path);
    m_size = 0;
    m_number = 0;
}

// A new file has its name on disk before anything relies on its lines.
bool Journal::openFile()
{
    if (m_file >= 0)
        return true;
    m_file = ::open(QFile::encodeName(m_path).constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    if (m_file < 0)
        return false;
    if (::ftruncate(m_file, m_size) == 0 && ::lseek(m_file, m_size, SEEK_SET) == m_size &&
        (m_size > 0 || disk::syncFolder(QFileInfo(m_path).path())))
        return true;
    ::close(std::exchange(m_file, -1));
    return false;
}

bool Journal::write(const QByteArray &lines)
{
    if (disk::writeAll(m_file, lines)) {
        m_size += lines.size();
        return true;
    }
    // What the next line begins behind must be a line's end.
    if (::ftruncate(m_file, m_size) != 0 || ::lseek(m_file, m_size, SEEK_SET) != m_size)
        ::close(std::exchange(m_file, -1));
    return false;
}

QByteArray Journal::lineOf(QJsonObject entry)
{
    entry.insert(numberName, m_number++);
    const QByteArray text = QJsonDocument(entry).toJson(QJsonDocument::Compact);
    return checksum(text) + ' ' + text + '\n';
}
