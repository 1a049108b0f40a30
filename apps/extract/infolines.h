/** A page's video as the lines of a video-info response. */
#ifndef VIDEODOWN_EXTRACT_INFOLINES_H
#define VIDEODOWN_EXTRACT_INFOLINES_H

#include "extract/pageinfo.h"

namespace infolines {

struct Lines
{
    QByteArray text;     ///< each line ended by a line feed, UTF-8
    QStringList remarks; ///< what was left out, for people
};

/**
 * MP4 formats get the numbers 18, 22, 37 and 38, FLV formats 5, 34 and 35, in ascending size; of
 * more than that, the largest. The lists begin with the largest: the first is what is taken when
 * nothing fits the user's wish. When headers say who the user is, formats on other hosts than the
 * largest format's are left out.
 */
Lines of(PageInfo info);

/** The lines of a page that has nothing to download. @param reason for people */
QByteArray refusal(const QString &reason);

} // namespace infolines

#endif
