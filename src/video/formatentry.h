/** Reading the two format lists of a video-info response. Functions on values; no shared state. */
#ifndef VIDEODOWN_VIDEO_FORMATENTRY_H
#define VIDEODOWN_VIDEO_FORMATENTRY_H

#include "engine/visibility.h"
#include "history/cxmlprofile.h"
#include "video/videoformat.h"

#include <QStringList>

#include <optional>

namespace VIDEODOWN_PUBLIC formatentry {

/**
 * Width times height, in unsigned 32-bit arithmetic, taken as signed and widened: what a 32-bit
 * product gives, without the undefined overflow.
 */
qint64 frameArea(int width, int height);

/**
 * Reads an entry of `fmt_list`, "number/WIDTHxHEIGHT/...". The fallback group stays empty.
 * @return nothing when the entry has no "/" or its size no "x"
 */
std::optional<tagVideoInfo> readFormat(QStringView entry);

/** The format that a profile asks for; number 0. */
tagVideoInfo wantedFormat(const Profile_Desc &profile);

/** Copies the main group of `src` except its area into that of `dst`. */
void copyMainGroup(const tagVideoInfo &src, tagVideoInfo &dst);

/** Copies the main group of `src` except its area into both groups of `dst`. */
void copyVideoStruct(const tagVideoInfo &src, tagVideoInfo &dst);

/** Copies the main group of `src` except its area into the fallback group of `dst`. */
void copyToFallback(const tagVideoInfo &src, tagVideoInfo &dst);

/** The address of format `fmt` among entries "number|address|..."; empty when there is none. */
QString streamAddress(const QStringList &entries, int fmt);

/** The same for a whole list; the first entry's address, and `fallback` 1, when there is none. */
QString streamAddressOrFirst(const QString &fmtStreamMap, int fmt, int &fallback);

} // namespace formatentry

#endif
