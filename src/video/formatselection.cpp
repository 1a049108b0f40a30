#include "video/formatselection.h"

#include "video/formatentry.h"

#include <QMap>
#include <QMultiMap>

namespace formatselection {

namespace {

bool isMp4(const tagVideoInfo &format)
{
    return format.strExt.compare(QLatin1String("mp4"), Qt::CaseInsensitive) == 0;
}

// Who stands at the wanted area already gives way when it is an "mp4", whatever is wanted, or when
// the newcomer has the wanted extension.
bool givesWay(const tagVideoInfo &standing, const tagVideoInfo &next, const tagVideoInfo &want)
{
    return isMp4(standing) || next.strExt == want.strExt;
}

// The smallest format that is larger than the wanted one.
template <typename AreaMap>
bool nextLarger(const AreaMap &formats, const tagVideoInfo &want, tagVideoInfo &out)
{
    const auto larger = formats.upperBound(want.nArea);
    if (larger == formats.cend())
        return false;
    formatentry::copyVideoStruct(*larger, out);
    return true;
}

void copyMainGroup(const tagVideoInfo &src, tagVideoInfo &dst)
{
    dst.nFmt = src.nFmt;
    dst.strExt = src.strExt;
    dst.strSize = src.strSize;
    dst.nWidth = src.nWidth;
    dst.nHeight = src.nHeight;
    dst.nArea = src.nArea;
}

int preferredSource(const QString &fmtStreamMap)
{
    const QStringList entries = fmtStreamMap.split(u',');
    for (const int fmt : {35, 34}) {
        if (!formatentry::streamAddress(entries, fmt).isEmpty())
            return fmt;
    }
    return 5;
}

} // namespace

bool bestByProfile(const QString &fmtList, tagVideoInfo &want, tagVideoInfo &out)
{
    QMap<unsigned long long, tagVideoInfo> formats;
    bool first = true;
    for (const QString &entry : fmtList.split(u',')) {
        const auto format = formatentry::readFormat(entry);
        if (!format)
            continue;
        if (first)
            formatentry::copyToFallback(*format, out);
        first = false;
        const auto standing = formats.constFind(format->nArea);
        if (format->nArea != want.nArea || standing == formats.cend() ||
            givesWay(*standing, *format, want))
            formats.insert(format->nArea, *format);
    }
    const auto exact = formats.constFind(want.nArea);
    if (exact == formats.cend())
        return nextLarger(formats, want, out);
    want.nFmt = exact->nFmt;
    want.strExt = exact->strExt;
    formatentry::copyVideoStruct(want, out);
    return true;
}

void bestSource(const QString &fmtStreamMap, const QString &fmtList, tagVideoInfo &out)
{
    const QString wanted = QString::number(preferredSource(fmtStreamMap));
    for (const QString &entry : fmtList.split(u',')) {
        const auto format = formatentry::readFormat(entry);
        if (!format || QStringView(entry).first(entry.indexOf(u'/')) != wanted)
            continue;
        out.nFmt = format->nFmt;
        out.strSize = format->strSize;
        out.strExt = QStringLiteral("flv");
        out.nHeight = format->nHeight;
        out.nWidth = format->nWidth;
    }
}

bool equalOrLarger(const QString &fmtList, const tagVideoInfo &want, tagVideoInfo &out)
{
    // QMultiMap visits equal keys newest first, which the choice among equal areas relies on.
    QMultiMap<unsigned long long, tagVideoInfo> formats;
    for (const QString &entry : fmtList.split(u',')) {
        const auto format = formatentry::readFormat(entry);
        if (!format)
            continue;
        const auto newest = formats.constFind(format->nArea);
        if (format->nArea != want.nArea || newest == formats.cend() ||
            givesWay(*newest, *format, want))
            formats.insert(format->nArea, *format);
    }
    const auto exact = formats.constFind(want.nArea);
    for (auto it = formats.cbegin(); it != exact && it != formats.cend(); ++it) {
        if (isMp4(*it))
            copyMainGroup(*it, out);
    }
    if (exact == formats.cend())
        return nextLarger(formats, want, out);
    copyMainGroup(*exact, out);
    return true;
}

} // namespace formatselection
