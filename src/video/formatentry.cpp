#include "video/formatentry.h"

namespace formatentry {

namespace {

QString containerExtension(QStringView number)
{
    if (number == u"5" || number == u"34" || number == u"35")
        return QStringLiteral("flv");
    if (number == u"18" || number == u"22" || number == u"37" || number == u"38")
        return QStringLiteral("mp4");
    return QStringLiteral("no fmt");
}

// The part before the first separator, and the one between it and the next.
struct TwoFields
{
    QStringView first;
    QStringView second;
};

std::optional<TwoFields> firstTwoFields(QStringView text, QChar separator)
{
    const qsizetype at = text.indexOf(separator);
    if (at < 0)
        return std::nullopt;
    const QStringView rest = text.sliced(at + 1);
    const qsizetype end = rest.indexOf(separator);
    return TwoFields{text.first(at), end < 0 ? rest : rest.first(end)};
}

QString addressOf(QStringView entry)
{
    const auto fields = firstTwoFields(entry, u'|');
    return fields ? fields->second.toString() : QString();
}

} // namespace

qint64 frameArea(int width, int height)
{
    return static_cast<qint32>(static_cast<quint32>(width) * static_cast<quint32>(height));
}

std::optional<tagVideoInfo> readFormat(QStringView entry)
{
    const auto fields = firstTwoFields(entry, u'/');
    const auto size = fields ? firstTwoFields(fields->second, u'x') : std::nullopt;
    if (!size)
        return std::nullopt;
    tagVideoInfo format{};
    format.nFmt = fields->first.toInt();
    format.strExt = containerExtension(fields->first);
    format.strSize = fields->second.toString().replace(u'x', u'*');
    format.nWidth = size->first.toInt();
    format.nHeight = size->second.toInt();
    format.nArea = static_cast<unsigned long long>(frameArea(format.nWidth, format.nHeight));
    return format;
}

tagVideoInfo wantedFormat(const Profile_Desc &profile)
{
    tagVideoInfo want{};
    want.strExt = profile.fileTypeExt;
    want.strSize = QStringLiteral("%1*%2").arg(profile.vSize_Width).arg(profile.vSize_Height);
    want.nWidth = profile.vSize_Width;
    want.nHeight = profile.vSize_Height;
    want.nArea = static_cast<unsigned long long>(frameArea(want.nWidth, want.nHeight));
    return want;
}

void copyToFallback(const tagVideoInfo &src, tagVideoInfo &dst)
{
    dst.nFallbackFmt = src.nFmt;
    dst.strFallbackExt = src.strExt;
    dst.strFallbackSize = src.strSize;
    dst.nFallbackWidth = src.nWidth;
    dst.nFallbackHeight = src.nHeight;
}

void copyMainGroup(const tagVideoInfo &src, tagVideoInfo &dst)
{
    dst.nFmt = src.nFmt;
    dst.strExt = src.strExt;
    dst.strSize = src.strSize;
    dst.nWidth = src.nWidth;
    dst.nHeight = src.nHeight;
}

void copyVideoStruct(const tagVideoInfo &src, tagVideoInfo &dst)
{
    copyMainGroup(src, dst);
    copyToFallback(src, dst);
}

QString streamAddress(const QStringList &entries, int fmt)
{
    for (const QString &entry : entries) {
        const qsizetype bar = entry.indexOf(u'|');
        if (QStringView(entry).first(bar < 0 ? entry.size() : bar).toInt() == fmt)
            return addressOf(entry);
    }
    return {};
}

QString streamAddressOrFirst(const QString &fmtStreamMap, int fmt, int &fallback)
{
    const QStringList entries = fmtStreamMap.split(u',');
    QString address = streamAddress(entries, fmt);
    if (!address.isEmpty())
        return address;
    fallback = 1;
    return addressOf(entries.first());
}

} // namespace formatentry
