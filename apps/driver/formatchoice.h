/** What a site offers, and which of it the library would fetch. Functions on values. */
#ifndef VIDEODOWN_DRIVER_FORMATCHOICE_H
#define VIDEODOWN_DRIVER_FORMATCHOICE_H

#include "driver/downloadtask.h"

#include <QList>
#include <QString>

/** One format on offer. */
struct OfferedFormat
{
    int number = 0;         ///< the site's number of the format
    QString extension;      ///< container, without the dot
    int width = 0;          ///< pixels
    int height = 0;         ///< pixels
    bool hasStream = false; ///< the site gave an address for it
};

/** How a task's format is to be chosen. */
struct FormatWish
{
    Profile_Desc profile;  ///< with extension and size filled in
    bool byProfile = true; ///< false: by the library's rule for kept sources
};

/** What the library would fetch. */
struct ChosenFormat
{
    int number = 0; ///< 0: the first stream, whatever it is
    QString extension;
    int width = 0;
    int height = 0;
};

namespace formatchoice {

/** The readable entries of a response's two lists, in the order of `fmtList`. */
QList<OfferedFormat> offered(const QString &fmtList, const QString &fmtStreamMap);

/**
 * What a request's wish comes to, given the offer. The library would take the smallest format for a
 * wish without a size, and a nameless one for a wish beyond the offer: so the size is set to the
 * largest format's of the wanted extension, or of all, where the wish is open or too large. A kept
 * source without a wish goes by the library's own rule, if that finds something.
 */
FormatWish settled(const DownloadRequest &request, const QString &fmtList,
                   const QString &fmtStreamMap);

/** The format that the library will fetch for the wish. */
ChosenFormat chosen(const FormatWish &wish, const QString &fmtList, const QString &fmtStreamMap);

} // namespace formatchoice

#endif
