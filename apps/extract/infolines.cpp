#include "extract/infolines.h"

#include "engine/taskengine.h"

#include <QUrl>

#include <algorithm>

namespace {

// The numbers that stand for each container, in the order of picture sizes.
const QList<int> mp4Numbers{18, 22, 37, 38};
const QList<int> flvNumbers{5, 34, 35};

/** For a page that tells no size at all. */
constexpr int usualWidth = 640;
constexpr int usualHeight = 360;

struct NumberedFormat
{
    int number;
    MediaFormat format;
};

qint64 areaOf(const MediaFormat &format)
{
    return qint64{format.width} * format.height;
}

void line(QByteArray &text, const char *name, QByteArray value)
{
    for (char &c : value) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f)
            c = ' ';
    }
    text += name + QByteArray("=") + value.trimmed() + '\n';
}

// The lists are split at commas and bars.
QByteArray inList(QByteArray address)
{
    return address.replace(',', "%2C").replace('|', "%7C");
}

QString hostOf(const MediaFormat &format)
{
    return QUrl::fromEncoded(format.address).authority();
}

// A little larger than the one before, as the order says; the first, smaller than the one after.
void fillSizes(QList<MediaFormat> &formats)
{
    for (qsizetype i = 0; i < formats.size(); ++i) {
        MediaFormat &format = formats[i];
        if (format.width > 0)
            continue;
        const auto next = std::find_if(formats.cbegin() + i, formats.cend(),
                                       [](const MediaFormat &other) { return other.width > 0; });
        if (i > 0) {
            format.width = formats[i - 1].width + 2;
            format.height = formats[i - 1].height + 2;
        } else if (next != formats.cend()) {
            format.width = std::max(2, next->width / 2);
            format.height = std::max(2, next->height / 2);
        } else {
            format.width = usualWidth;
            format.height = usualHeight;
        }
    }
}

// Of equal size the later one is better: yt-dlp lists the worst first.
QList<MediaFormat> largest(const QList<MediaFormat> &formats, const QString &extension,
                           qsizetype most)
{
    QList<MediaFormat> result;
    for (const MediaFormat &format : formats) {
        if (format.extension != extension)
            continue;
        const auto same = std::find_if(result.begin(), result.end(), [&](const MediaFormat &other) {
            return areaOf(other) == areaOf(format);
        });
        if (same == result.end())
            result.append(format);
        else
            *same = format;
    }
    std::stable_sort(result.begin(), result.end(), [](const MediaFormat &a, const MediaFormat &b) {
        return areaOf(a) < areaOf(b);
    });
    return result.mid(std::max<qsizetype>(0, result.size() - most));
}

QList<NumberedFormat> numbered(const QList<MediaFormat> &formats)
{
    QList<NumberedFormat> result;
    for (const auto &[extension, numbers] : {std::pair(QStringLiteral("mp4"), mp4Numbers),
                                             std::pair(QStringLiteral("flv"), flvNumbers)}) {
        const QList<MediaFormat> chosen = largest(formats, extension, numbers.size());
        for (qsizetype i = 0; i < chosen.size(); ++i)
            result.append({numbers[i], chosen[i]});
    }
    std::stable_sort(result.begin(), result.end(),
                     [](const NumberedFormat &a, const NumberedFormat &b) {
                         return areaOf(a.format) > areaOf(b.format);
                     });
    return result;
}

void removeLong(QList<MediaFormat> &formats, QStringList &remarks)
{
    constexpr qsizetype most = sizeof(tagTaskInfo::szDownloadURL) - 1;
    const auto count = formats.removeIf(
        [](const MediaFormat &format) { return inList(format.address).size() > most; });
    if (count > 0)
        remarks << QStringLiteral("%1 of the formats left out: addresses of more than %2 bytes")
                       .arg(count)
                       .arg(most);
}

// Cookies go with the largest format's address; the other hosts must not see them.
void removeForeign(QList<MediaFormat> &formats, QStringList &remarks)
{
    const auto best = std::max_element(
        formats.cbegin(), formats.cend(),
        [](const MediaFormat &a, const MediaFormat &b) { return areaOf(a) < areaOf(b); });
    if (best == formats.cend() || !httpheaders::areSecret(best->headers))
        return;
    const QString host = hostOf(*best);
    const auto count =
        formats.removeIf([&host](const MediaFormat &format) { return hostOf(format) != host; });
    if (count > 0)
        remarks << QStringLiteral(
                       "%1 of the formats left out: not on %2, for which the cookies are")
                       .arg(count)
                       .arg(host);
}

void formatLines(const QList<NumberedFormat> &formats, QByteArray &text)
{
    QByteArrayList sizes;
    QByteArrayList streams;
    for (const auto &[number, format] : formats) {
        const QByteArray name = QByteArray::number(number);
        sizes << name + '/' + QByteArray::number(format.width) + 'x' +
                     QByteArray::number(format.height);
        streams << name + '|' + inList(format.address);
    }
    line(text, "fmt_list", sizes.join(','));
    line(text, "fmt_stream_map", streams.join(','));
    for (const auto &[name, value] : formats.first().format.headers)
        line(text, "request_header", name + ": " + value);
}

} // namespace

namespace infolines {

Lines of(PageInfo info)
{
    Lines result;
    fillSizes(info.formats);
    removeLong(info.formats, result.remarks);
    removeForeign(info.formats, result.remarks);
    const QList<NumberedFormat> formats = numbered(info.formats);
    if (!info.title.isEmpty())
        line(result.text, "title", info.title.toUtf8());
    if (!info.author.isEmpty())
        line(result.text, "author", info.author.toUtf8());
    if (info.seconds > 0)
        line(result.text, "length_seconds", QByteArray::number(info.seconds));
    if (!info.thumbnail.isEmpty() &&
        info.thumbnail.size() < qsizetype(sizeof(tagTaskInfo::szDownloadURL)))
        line(result.text, "thumbnail_url", info.thumbnail);
    if (!formats.isEmpty())
        formatLines(formats, result.text);
    else
        result.text += refusal(info.obstacle.isEmpty()
                                   ? QStringLiteral("the addresses of its formats are too long")
                                   : info.obstacle);
    return result;
}

QByteArray refusal(const QString &reason)
{
    QByteArray text;
    line(text, "status", "fail");
    line(text, "reason", reason.toUtf8());
    return text;
}

} // namespace infolines
