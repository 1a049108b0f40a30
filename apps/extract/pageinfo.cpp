#include "extract/pageinfo.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

#include <algorithm>
#include <cmath>

namespace {

/** More than any screen has; what is larger is no size. */
constexpr double mostPixels = 100000;
/** Playlists within playlists within channels. */
constexpr int mostLevels = 10;

QString textOf(const QJsonObject &object, const char *name)
{
    return object.value(QLatin1String(name)).toString();
}

int pixelsOf(const QJsonObject &object, const char *name)
{
    const double value = object.value(QLatin1String(name)).toDouble();
    return value >= 1 && value <= mostPixels ? int(value) : 0;
}

bool isHttp(const QUrl &address)
{
    return address.isValid() && !address.host().isEmpty() &&
           (address.scheme() == QLatin1String("http") ||
            address.scheme() == QLatin1String("https"));
}

// Encoded as it goes over the wire; empty when it is no address that can be fetched. What is
// encoded already stays so.
QByteArray addressOf(const QJsonObject &object, const char *name)
{
    const QUrl address(textOf(object, name));
    return isHttp(address) ? address.toEncoded(QUrl::FullyEncoded | QUrl::RemoveFragment)
                           : QByteArray();
}

bool isAbsent(const QJsonObject &format, const char *codec)
{
    return textOf(format, codec) == QLatin1String("none");
}

// A picture without sound, or the other way round, would need a second file.
bool isOneFile(const QJsonObject &format)
{
    const QString protocol = textOf(format, "protocol");
    return (protocol.isEmpty() || protocol == QLatin1String("http") ||
            protocol == QLatin1String("https")) &&
           !isAbsent(format, "vcodec") && !isAbsent(format, "acodec") &&
           !format.contains(QLatin1String("fragments")) &&
           !format.value(QLatin1String("has_drm")).toBool();
}

QString containerOf(const QJsonObject &format)
{
    const QString extension = textOf(format, "ext");
    return extension == QLatin1String("m4v") ? QStringLiteral("mp4") : extension;
}

// With the height alone, pictures are as wide as most.
void readSize(const QJsonObject &format, MediaFormat &result)
{
    result.width = pixelsOf(format, "width");
    result.height = pixelsOf(format, "height");
    if (result.width == 0 && result.height > 0)
        result.width = (result.height * 16 / 9 + 1) & ~1;
    if (result.height == 0 && result.width > 0)
        result.height = (result.width * 9 / 16 + 1) & ~1;
}

std::optional<MediaFormat> readFormat(const QJsonObject &format, const QJsonObject &page)
{
    MediaFormat result;
    result.extension = containerOf(format);
    result.address = addressOf(format, "url");
    const bool fits =
        result.extension == QLatin1String("mp4") || result.extension == QLatin1String("flv");
    if (!fits || result.address.isEmpty() || !isOneFile(format))
        return std::nullopt;
    readSize(format, result);
    result.headers = httpheaders::of(format, page);
    return result;
}

bool isList(const QJsonObject &page)
{
    const QString type = textOf(page, "_type");
    return type == QLatin1String("playlist") || type == QLatin1String("multi_video");
}

// Of a list the first video: with --no-playlist there is one, in as many lists as it likes.
QJsonObject videoIn(const QJsonObject &page, int level = 0)
{
    if (!isList(page) || level == mostLevels)
        return page;
    for (const auto &entry : page.value(QLatin1String("entries")).toArray()) {
        if (entry.isObject())
            return videoIn(entry.toObject(), level + 1);
    }
    return {};
}

QString obstacleTo(const QJsonObject &video, bool hasFormats)
{
    const QString liveStatus = textOf(video, "live_status");
    if (video.value(QLatin1String("is_live")).toBool() || liveStatus == QLatin1String("is_live"))
        return QStringLiteral("it is a live broadcast");
    if (liveStatus == QLatin1String("is_upcoming"))
        return QStringLiteral("it has not begun yet");
    if (video.value(QLatin1String("_has_drm")).toBool())
        return QStringLiteral("it is protected against copying");
    return hasFormats ? QStringLiteral("none of its formats comes as one MP4 or FLV file")
                      : QStringLiteral("there is no video on the page");
}

void readFormats(const QJsonObject &video, PageInfo &info)
{
    QJsonArray formats = video.value(QLatin1String("formats")).toArray();
    if (formats.isEmpty() && !textOf(video, "url").isEmpty())
        formats.append(video); // the one format of a direct address
    if (!video.value(QLatin1String("is_live")).toBool()) {
        for (const auto &format : formats) {
            if (auto read = readFormat(format.toObject(), video))
                info.formats.append(*std::move(read));
        }
    }
    if (info.formats.isEmpty())
        info.obstacle = obstacleTo(video, !formats.isEmpty());
}

// Every video that can be had has some name.
QString titleOf(const QJsonObject &video, bool hasFormats)
{
    for (const char *name : {"title", "fulltitle", "id"}) {
        QString title = textOf(video, name);
        if (!title.trimmed().isEmpty())
            return title;
    }
    return hasFormats ? QStringLiteral("video") : QString();
}

void collectPages(const QJsonObject &page, QStringList &pages, int level = 0)
{
    if (isList(page) && level < mostLevels) {
        for (const auto &entry : page.value(QLatin1String("entries")).toArray())
            collectPages(entry.toObject(), pages, level + 1);
        return;
    }
    for (const char *name : {"webpage_url", "url", "original_url"}) {
        const QByteArray address = addressOf(page, name);
        if (!address.isEmpty()) {
            pages.append(QString::fromLatin1(address));
            return;
        }
    }
}

std::optional<QJsonObject> objectIn(const QByteArray &json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    return document.isObject() ? std::optional(document.object()) : std::nullopt;
}

} // namespace

namespace pageinfo {

std::optional<PageInfo> read(const QByteArray &json)
{
    const auto page = objectIn(json);
    if (!page)
        return std::nullopt;
    const QJsonObject video = videoIn(*page);
    PageInfo info;
    info.author = textOf(video, "uploader");
    info.thumbnail = addressOf(video, "thumbnail");
    const double seconds = video.value(QLatin1String("duration")).toDouble();
    info.seconds = seconds > 0 && seconds < 1e9 ? std::llround(seconds) : 0;
    readFormats(video, info);
    info.title = titleOf(video, !info.formats.isEmpty());
    return info;
}

std::optional<QStringList> readList(const QByteArray &json)
{
    const auto page = objectIn(json);
    if (!page)
        return std::nullopt;
    QStringList pages;
    collectPages(*page, pages);
    pages.removeDuplicates();
    return pages;
}

} // namespace pageinfo
