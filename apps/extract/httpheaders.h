/** Header fields of HTTP requests, as yt-dlp names them. */
#ifndef VIDEODOWN_EXTRACT_HTTPHEADERS_H
#define VIDEODOWN_EXTRACT_HTTPHEADERS_H

#include <QByteArray>
#include <QList>
#include <QPair>

class QJsonObject;

/** Names and values, fit for a request each. */
using HttpHeaders = QList<QPair<QByteArray, QByteArray>>;

namespace httpheaders {

/**
 * The fields of a format: its "http_headers", and a Cookie made of its "cookies", which newer
 * versions list apart. What describes the connection or the range is the downloader's, and left
 * out, as is what does not fit on a line.
 * @param page has the fields where the format itself has none
 */
HttpHeaders of(const QJsonObject &format, const QJsonObject &page);

/** Whether they say who the user is, so that no other host may see them. */
bool areSecret(const HttpHeaders &headers);

} // namespace httpheaders

#endif
