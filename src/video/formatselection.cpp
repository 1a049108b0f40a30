#include "video/formatselection.h"

#include "video/formatentry.h"

#include <QStringTokenizer>

#include <optional>

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

// What a choice is made among. Areas are compared unsigned: an overflown one is larger than any.
struct Candidates
{
    std::optional<tagVideoInfo> first;
    std::optional<tagVideoInfo> exact;  // has the wanted area
    std::optional<tagVideoInfo> larger; // the next larger area; the last listed of that area
    std::optional<tagVideoInfo> mp4;    // the largest "mp4"; the first listed of that area

    void add(const tagVideoInfo &format, const tagVideoInfo &want)
    {
        if (!first)
            first = format;
        if (format.nArea == want.nArea && (!exact || givesWay(*exact, format, want)))
            exact = format;
        if (format.nArea > want.nArea && (!larger || format.nArea <= larger->nArea))
            larger = format;
        if (isMp4(format) && (!mp4 || format.nArea > mp4->nArea))
            mp4 = format;
    }
};

Candidates candidates(const QString &fmtList, const tagVideoInfo &want)
{
    Candidates found;
    for (const QStringView entry : qTokenize(fmtList, u',')) {
        if (const auto format = formatentry::readFormat(entry))
            found.add(*format, want);
    }
    return found;
}

bool takeLarger(const Candidates &found, tagVideoInfo &out)
{
    if (found.larger)
        formatentry::copyVideoStruct(*found.larger, out);
    return found.larger.has_value();
}

void copyWithArea(const tagVideoInfo &src, tagVideoInfo &dst)
{
    formatentry::copyMainGroup(src, dst);
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
    const Candidates found = candidates(fmtList, want);
    if (found.first)
        formatentry::copyToFallback(*found.first, out);
    if (!found.exact)
        return takeLarger(found, out);
    want.nFmt = found.exact->nFmt;
    want.strExt = found.exact->strExt;
    formatentry::copyVideoStruct(want, out);
    return true;
}

void bestSource(const QString &fmtStreamMap, const QString &fmtList, tagVideoInfo &out)
{
    const QString wanted = QString::number(preferredSource(fmtStreamMap));
    for (const QStringView entry : qTokenize(fmtList, u',')) {
        const auto format = formatentry::readFormat(entry);
        if (!format || entry.first(entry.indexOf(u'/')) != wanted)
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
    const Candidates found = candidates(fmtList, want);
    if (found.exact) {
        copyWithArea(*found.exact, out);
        return true;
    }
    if (found.mp4)
        copyWithArea(*found.mp4, out);
    return takeLarger(found, out);
}

} // namespace formatselection
