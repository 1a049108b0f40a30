/** The format entry that the format operations of the controller exchange. */
#ifndef VIDEODOWN_VIDEO_VIDEOFORMAT_H
#define VIDEODOWN_VIDEO_VIDEOFORMAT_H

#include <QString>

/**
 * One offered, wanted or chosen format. A plain record without a constructor: whoever makes one
 * sets every field (`tagVideoInfo()` zeroes them all).
 *
 * The main group is the format itself. The fallback group is the format whose facts a download
 * records when the chosen format has no stream address and the first stream is fetched instead.
 */
struct tagVideoInfo
{
    int nFmt;                 ///< the site's format number
    QString strExt;           ///< container extension without dot: "flv", "mp4" or "no fmt"
    QString strSize;          ///< frame size as width*height, for example 640*360
    int nWidth;               ///< frame width, pixels
    int nHeight;              ///< frame height, pixels
    unsigned long long nArea; ///< width times height, formed in 32 bits and widened with its sign

    int nFallbackFmt;        ///< fallback group: format number
    QString strFallbackExt;  ///< fallback group: container extension
    QString strFallbackSize; ///< fallback group: frame size
    int nFallbackWidth;      ///< fallback group: frame width
    int nFallbackHeight;     ///< fallback group: frame height
};

#endif
