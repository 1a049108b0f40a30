/** The video-info command that comes with videodown. */
#ifndef VIDEODOWN_DRIVER_EXTRACTOR_H
#define VIDEODOWN_DRIVER_EXTRACTOR_H

#include "driver/downloadtask.h"
#include "engine/visibility.h"

#include <QString>

namespace VIDEODOWN_PUBLIC extractor {

/**
 * Looks for `videodown-extract` beside this program, where a build puts it, and in PATH.
 * @return its path; empty when it is not there, or not the yt-dlp that it needs. Any thread.
 */
QString findProgram();

/** The first of these two that is not there; empty when both are. Any thread. */
QString missingProgram();

/**
 * Why a site's answer about a page is a failure, for people, where another program might have known
 * the page.
 * @param cause of the failure, to stand behind a colon
 * @param program that is missing
 */
FailureReason withoutProgram(const QString &cause, const QString &program);

} // namespace extractor

#endif
