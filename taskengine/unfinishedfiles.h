/** What an unfinished download leaves on disk. */
#ifndef VIDEODOWN_TASKENGINE_UNFINISHEDFILES_H
#define VIDEODOWN_TASKENGINE_UNFINISHEDFILES_H

#include "engine/visibility.h"

#include <string>

namespace VIDEODOWN_PUBLIC taskengine {

/** The files beside a target that a later request for the same target resumes from. */
struct UnfinishedFiles
{
    std::string part;  ///< path of what has arrived so far
    std::string facts; ///< path of what must still hold for it to be resumed
};

/**
 * @param target path that a request was sent with; need not exist
 * @return the paths that the default engine uses for it. Names that leave no room for a suffix are
 * shortened, which depends on the file system: so this function, not a rule of thumb, says which
 * files belong to a target.
 * Thread-safe. Opens and changes nothing.
 */
UnfinishedFiles unfinishedFiles(const std::string &target);

} // namespace taskengine

#endif
