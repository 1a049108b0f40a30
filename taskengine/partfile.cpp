#include "taskengine/partfile.h"

#include "taskengine/unfinishedfiles.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace taskengine {

namespace {

constexpr const char *factsHeading = "videodown part 1";

bool isSameFile(int file, const std::string &path)
{
    struct stat opened = {};
    struct stat named = {};
    return ::fstat(file, &opened) == 0 && ::lstat(path.c_str(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

int openNoFollow(const std::string &path, int flags)
{
    return ::open(path.c_str(), flags | O_CLOEXEC | O_NOFOLLOW, 0666);
}

} // namespace

PartFile::~PartFile()
{
    close();
}

std::optional<Fault> PartFile::open(const std::string &target, const std::string &key)
{
    const UnfinishedFiles names = unfinishedFiles(target);
    m_path = names.part;
    m_factsPath = names.facts;
    m_key = key;
    if (const auto fault = openLocked())
        return fault;
    m_facts = {};
    m_size = ::lseek(m_file, 0, SEEK_END);
    m_factsSaved = true; // for all that is known
    if (m_size == 0) {
        removeFacts();
        return std::nullopt;
    }
    loadFacts();
    return canContinue() ? std::nullopt : restart();
}

/** Who held the lock before may have renamed or removed the file meanwhile: then look again. */
std::optional<Fault> PartFile::openLocked()
{
    for (;;) {
        m_file = openNoFollow(m_path, O_RDWR | O_CREAT);
        if (m_file < 0)
            return fileFault(errno);
        // A file system without locks is no reason not to download.
        if (::flock(m_file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
            close();
            return permanent(Failure::FileInUse);
        }
        if (isSameFile(m_file, m_path))
            return std::nullopt;
        close();
    }
}

void PartFile::loadFacts()
{
    std::ifstream file(m_factsPath);
    std::string heading;
    PartFacts facts;
    std::getline(file, heading);
    std::getline(file, facts.key);
    std::getline(file, facts.validator);
    file >> facts.total;
    if (file && heading == factsHeading && facts.key == m_key)
        m_facts = facts;
}

bool PartFile::canContinue() const
{
    return m_size > 0 && !m_facts.validator.empty() && m_size <= m_facts.total;
}

std::optional<Fault> PartFile::restart()
{
    removeFacts();
    m_facts = {};
    if (::ftruncate(m_file, 0) != 0 || ::lseek(m_file, 0, SEEK_SET) != 0)
        return fileFault(errno);
    m_size = 0;
    return std::nullopt;
}

void PartFile::remember(std::int64_t total, const std::string &validator)
{
    removeFacts();
    m_facts = {m_key, total, validator};
}

/** Facts that cannot be saved only cost a later request its head start. */
void PartFile::saveFacts()
{
    if (m_factsSaved || m_facts.validator.empty() || m_facts.total < 0)
        return;
    m_factsSaved = true;
    ::unlink(m_factsPath.c_str());
    const std::string text = std::string(factsHeading) + "\n" + m_key + "\n" + m_facts.validator +
                             "\n" + std::to_string(m_facts.total) + "\n";
    const int file = openNoFollow(m_factsPath, O_WRONLY | O_CREAT | O_EXCL);
    if (file < 0)
        return;
    const bool written =
        ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    if (::close(file) != 0 || !written)
        ::unlink(m_factsPath.c_str());
}

void PartFile::removeFacts()
{
    if (m_factsSaved)
        ::unlink(m_factsPath.c_str());
    m_factsSaved = false;
}

std::optional<Fault> PartFile::append(const char *data, std::size_t length)
{
    while (length > 0) {
        const ssize_t written = ::write(m_file, data, length);
        if (written < 0 && errno != EINTR)
            return fileFault(errno);
        if (written <= 0)
            continue;
        data += written;
        length -= static_cast<std::size_t>(written);
        m_size += written;
    }
    return std::nullopt;
}

bool PartFile::hasSpaceFor(std::int64_t bytes) const
{
    struct statvfs system = {};
    if (bytes <= 0 || ::fstatvfs(m_file, &system) != 0 || system.f_blocks == 0)
        return true; // some network file systems do not say
    return static_cast<std::uint64_t>(bytes) / system.f_frsize <= system.f_bavail;
}

/** The copy of the descriptor holds the lock until the name has changed. */
std::optional<Fault> PartFile::commit(const std::string &target)
{
    const int lock = ::dup(m_file);
    if (lock < 0)
        return fileFault(errno);
    const int closed = ::close(m_file);
    m_file = lock;
    if (closed != 0)
        return fileFault(errno);
    if (std::rename(m_path.c_str(), target.c_str()) != 0)
        return fileFault(errno);
    removeFacts();
    close();
    return std::nullopt;
}

void PartFile::keep()
{
    if (!canContinue() || !isSameFile(m_file, m_path)) {
        discard();
        return;
    }
    saveFacts();
    close();
}

void PartFile::discard()
{
    if (m_file < 0)
        return;
    removeFacts();
    ::unlink(m_path.c_str());
    close();
}

void PartFile::close()
{
    if (m_file >= 0)
        ::close(m_file);
    m_file = -1;
}

} // namespace taskengine
