/** The video-info command that comes with videodown. */
#ifndef VIDEODOWN_DRIVER_EXTRACTOR_H
#define VIDEODOWN_DRIVER_EXTRACTOR_H

#include <QString>

namespace extractor {

/**
 * Looks for `videodown-extract` beside this program, where a build puts it, and in PATH.
 * @return its path; empty when it is not there, or not the yt-dlp that it needs. Any thread.
 */
QString findProgram();

} // namespace extractor

#endif
