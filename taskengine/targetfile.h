/** The file a download ends in. */
#ifndef VIDEODOWN_TASKENGINE_TARGETFILE_H
#define VIDEODOWN_TASKENGINE_TARGETFILE_H

#include "taskengine/fault.h"

#include <optional>
#include <string>

namespace taskengine {

/**
 * Holds the target's name from the request on, by an empty file: callers find unused names by
 * looking at the file system, and two equal titles would otherwise get one path. A file that is
 * there already is left alone until its successor is complete.
 */
class TargetFile
{
public:
    TargetFile() = default;
    TargetFile(const TargetFile &) = delete;
    TargetFile &operator=(const TargetFile &) = delete;
    ~TargetFile() { release(); }

    /** Creates the empty file unless the target exists. What fails is kept as `fault`. */
    void reserve(const char *path);

    const std::string &path() const { return m_path; }
    const std::optional<Fault> &fault() const { return m_fault; }

    /** Removes the empty file, if this object made it and nobody has filled it since. */
    void release();

    /** The name now belongs to the complete file. */
    void keep() { m_reserved = false; }

private:
    void checkExisting();

    std::string m_path;
    std::optional<Fault> m_fault;
    bool m_reserved = false;
};

} // namespace taskengine

#endif
