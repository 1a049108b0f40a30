#include "driver/videooffer.h"

#include "down/cdown.h"
#include "video/formatentry.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace {

qint64 areaOf(const OfferedFormat &format)
{
    return formatentry::frameArea(format.width, format.height);
}

QList<OfferedFormat> only(const QList<OfferedFormat> &formats,
                          const std::function<bool(const OfferedFormat &)> &wanted)
{
    QList<OfferedFormat> result;
    std::copy_if(formats.cbegin(), formats.cend(), std::back_inserter(result), wanted);
    return result.isEmpty() ? formats : result;
}

// Formats that cannot be fetched, or have another extension, count only when there are no others.
OfferedFormat largest(const QList<OfferedFormat> &formats, const QString &extension)
{
    const auto usable = only(formats, [](const OfferedFormat &f) { return f.hasStream; });
    const auto fitting =
        only(usable, [&](const OfferedFormat &f) { return f.extension == extension; });
    const auto smaller = [](const OfferedFormat &a, const OfferedFormat &b) {
        return areaOf(a) < areaOf(b);
    };
    return *std::max_element(fitting.cbegin(), fitting.cend(), smaller);
}

bool anyReaches(const QList<OfferedFormat> &formats, qint64 area)
{
    return std::any_of(formats.cbegin(), formats.cend(),
                       [area](const OfferedFormat &format) { return areaOf(format) >= area; });
}

Profile_Desc filledIn(Profile_Desc profile, const QList<OfferedFormat> &formats)
{
    const qint64 wanted = formatentry::frameArea(profile.vSize_Width, profile.vSize_Height);
    if (formats.isEmpty() || (wanted > 0 && anyReaches(formats, wanted)))
        return profile;
    const OfferedFormat best = largest(formats, profile.fileTypeExt);
    profile.vSize_Width = best.width;
    profile.vSize_Height = best.height;
    if (profile.fileTypeExt.isEmpty())
        profile.fileTypeExt = best.extension;
    return profile;
}

bool isOpen(const Profile_Desc &profile)
{
    return profile.fileTypeExt.isEmpty() && profile.vSize_Width == 0 && profile.vSize_Height == 0;
}

} // namespace

VideoOffer::VideoOffer(const QString &fmtList, const QString &fmtStreamMap)
    : m_fmtList(fmtList), m_fmtStreamMap(fmtStreamMap)
{
    const QStringList streams = fmtStreamMap.split(u',');
    for (const QString &entry : fmtList.split(u',')) {
        if (const auto format = formatentry::readFormat(entry))
            m_formats.append({format->nFmt, format->strExt, format->nWidth, format->nHeight,
                              !formatentry::streamAddress(streams, format->nFmt).isEmpty()});
    }
}

bool VideoOffer::sourceRuleFinds() const
{
    tagVideoInfo found{};
    CDown::getBestVideoSrcFmt(m_fmtStreamMap, m_fmtList, nullptr, &found);
    return found.nFmt != 0 &&
           !formatentry::streamAddress(m_fmtStreamMap.split(u','), found.nFmt).isEmpty();
}

FormatWish VideoOffer::settled(const Profile_Desc &wish, bool keepSource) const
{
    const bool bySource = keepSource && isOpen(wish) && sourceRuleFinds();
    return {filledIn(wish, m_formats), !bySource};
}

ChosenFormat VideoOffer::chosen(const FormatWish &wish) const
{
    tagVideoInfo want = formatentry::wantedFormat(wish.profile);
    tagVideoInfo found{};
    if (wish.byProfile)
        CDown::getBestVideoFmt(m_fmtList, &want, &found);
    else
        CDown::getBestVideoSrcFmt(m_fmtStreamMap, m_fmtList, nullptr, &found);
    return {found.nFmt, found.strExt, found.nWidth, found.nHeight};
}
