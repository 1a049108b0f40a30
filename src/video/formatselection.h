/** Choosing among offered formats. Functions on values; no shared state. */
#ifndef VIDEODOWN_VIDEO_FORMATSELECTION_H
#define VIDEODOWN_VIDEO_FORMATSELECTION_H

#include "video/videoformat.h"

/**
 * Formats are compared by frame area. Malformed entries of a list are skipped. See the members of
 * `CDown` of the same names for what the arguments receive.
 */
namespace formatselection {

/** The format of the wanted area, else the next larger one. @return whether there is one */
bool bestByProfile(const QString &fmtList, tagVideoInfo &want, tagVideoInfo &out);

/** The best of the FLV formats 35, 34 and 5 that has a stream; `out` untouched without an entry. */
void bestSource(const QString &fmtStreamMap, const QString &fmtList, tagVideoInfo &out);

/** Like `bestByProfile`, but `out` becomes the largest "mp4" format when it returns false. */
bool equalOrLarger(const QString &fmtList, const tagVideoInfo &want, tagVideoInfo &out);

} // namespace formatselection

#endif
