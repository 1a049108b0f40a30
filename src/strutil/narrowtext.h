/** How narrow texts without a stated encoding become Qt strings and back. */
#ifndef VIDEODOWN_STRUTIL_NARROWTEXT_H
#define VIDEODOWN_STRUTIL_NARROWTEXT_H

#include "engine/visibility.h"

#include <QString>

#include <string>
#include <string_view>

/**
 * Used for the plain fields of a video-info response and, both ways, in file naming. Keys and paths
 * are local 8-bit and a response's title is UTF-8 whatever is set here.
 *
 * Threads: all functions may be called from any thread; `setCodec` belongs before the first task.
 */
namespace VIDEODOWN_PUBLIC narrowtext {

enum class Codec {
    Latin1, ///< one character per byte; what it cannot represent becomes "?"
    Utf8,   ///< what is not UTF-8 becomes U+FFFD; towards narrow, a lone surrogate becomes "?"
};

/** Sets the codec of the process; Latin-1 until then. */
void setCodec(Codec codec);
/** The codec in force. */
Codec codec();
/** Decodes every byte of `text`, NUL included. */
QString fromNarrow(std::string_view text);
/** Encodes `text`; never fails. */
std::string toNarrow(const QString &text);

} // namespace narrowtext

#endif
