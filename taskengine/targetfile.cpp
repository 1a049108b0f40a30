#include "taskengine/targetfile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace taskengine {

void TargetFile::reserve(const char *path)
{
    m_path = path;
    const int file = ::open(path, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file >= 0) {
        m_reserved = true;
        ::close(file);
    } else if (errno == EEXIST) {
        checkExisting();
    } else {
        m_fault = fileFault(errno);
    }
}

/** Folders and devices are no targets: renaming over a device would replace it. */
void TargetFile::checkExisting()
{
    struct stat status = {};
    if (::stat(m_path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        m_fault = permanent(Failure::FileNotWritable);
}

void TargetFile::release()
{
    struct stat status = {};
    if (m_reserved && ::stat(m_path.c_str(), &status) == 0 && status.st_size == 0)
        ::unlink(m_path.c_str());
    m_reserved = false;
}

} // namespace taskengine
