/** Small services of the operating system and of its naming rules. */
#ifndef VIDEODOWN_SYSUTILITY_SYSUTILITY_H
#define VIDEODOWN_SYSUTILITY_SYSUTILITY_H

#include "engine/visibility.h"

#include <string>

/** All functions may be called from any thread. */
namespace VIDEODOWN_PUBLIC sysutility {

/** The operating system's identifier of this process. */
int GetCurrentPid();

/** Always the empty text; the flag is not consulted. */
std::string GetCurrentPath(bool flag);

/**
 * Cleans a text for use as a file name: trims spaces, tabs and line ends, then removes
 * `\ / : * ? " < > |` wherever they stand. Trimming is not repeated afterwards, no length is
 * enforced, and bytes outside ASCII pass unchanged. Blank and wholly forbidden names come out
 * empty.
 */
std::string MakeFileName(std::string szFileName);

} // namespace sysutility

#endif
