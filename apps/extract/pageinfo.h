/** What yt-dlp says about a page, as far as it can be used here. */
#ifndef VIDEODOWN_EXTRACT_PAGEINFO_H
#define VIDEODOWN_EXTRACT_PAGEINFO_H

#include "extract/httpheaders.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/** A format that comes over HTTP as one file with picture and sound. */
struct MediaFormat
{
    QString extension;   ///< "mp4" or "flv"
    QByteArray address;  ///< absolute, encoded
    int width = 0;       ///< pixels; 0: unknown
    int height = 0;      ///< the same
    HttpHeaders headers; ///< those that the site wants
};

/** One video. */
struct PageInfo
{
    QString title;
    QString author;
    qint64 seconds = 0;         ///< 0: unknown
    QByteArray thumbnail;       ///< address; may be empty
    QList<MediaFormat> formats; ///< in yt-dlp's order: the worst first
    QString obstacle;           ///< why there are no formats, for people
};

namespace pageinfo {

/**
 * @param json what `yt-dlp --dump-single-json` printed, whole or not
 * @return nothing when that is no JSON object
 */
std::optional<PageInfo> read(const QByteArray &json);

/**
 * The addresses of the pages in a playlist, each once, also of playlists within it; of a page that
 * is none, its own. @return nothing when that is no JSON object
 */
std::optional<QStringList> readList(const QByteArray &json);

} // namespace pageinfo

#endif
