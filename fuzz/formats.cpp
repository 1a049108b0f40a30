// The two format lists of a response and a wish, through every selection that is made of them.
// Input: "EXT WIDTHxHEIGHT", the list of formats and the list of streams, a line each.
#include "expect.h"

#include "driver/videooffer.h"
#include "video/formatentry.h"
#include "video/formatselection.h"

#include <algorithm>

namespace {

QList<tagVideoInfo> readable(const QString &fmtList)
{
    QList<tagVideoInfo> formats;
    for (const QString &entry : fmtList.split(u',')) {
        if (const auto format = formatentry::readFormat(entry))
            formats.append(*format);
    }
    return formats;
}

bool has(const QList<tagVideoInfo> &formats, int number)
{
    return std::any_of(formats.cbegin(), formats.cend(),
                       [number](const auto &format) { return format.nFmt == number; });
}

// What both selections promise: the wanted area if it is on offer, else the next larger one.
void checkSelection(const QList<tagVideoInfo> &formats, const tagVideoInfo &want, bool found,
                    const tagVideoInfo &out)
{
    const tagVideoInfo *nearest = nullptr;
    for (const tagVideoInfo &format : formats) {
        if (format.nArea >= want.nArea && (nearest == nullptr || format.nArea < nearest->nArea))
            nearest = &format;
    }
    expect(found == (nearest != nullptr), "found is what is as large or larger");
    if (!found)
        return;
    expect(has(formats, out.nFmt), "what is chosen is on offer");
    const auto area =
        static_cast<unsigned long long>(formatentry::frameArea(out.nWidth, out.nHeight));
    expect(area == nearest->nArea, "what is chosen is the nearest");
}

void select(const Profile_Desc &profile, const QString &fmtList, const QString &streams)
{
    const QList<tagVideoInfo> formats = readable(fmtList);
    tagVideoInfo want = formatentry::wantedFormat(profile);
    tagVideoInfo out{};
    const bool isLarger = formatselection::equalOrLarger(fmtList, want, out);
    checkSelection(formats, want, isLarger, out);
    out = {};
    const bool isBest = formatselection::bestByProfile(fmtList, want, out);
    checkSelection(formats, want, isBest, out);
    expect(formats.isEmpty() || out.nFallbackFmt != 0 || has(formats, 0), "there is a fallback");

    int isFallback = 0;
    const QString address = formatentry::streamAddressOrFirst(streams, out.nFmt, isFallback);
    expect(streams.contains(address) && !address.contains(u'|') && !address.contains(u','),
           "an address is a piece of the list");
    out = {};
    formatselection::bestSource(streams, fmtList, out);
    expect(out.nFmt == 0 || out.nFmt == 35 || out.nFmt == 34 || out.nFmt == 5, "sources are FLV");
}

void choose(const Profile_Desc &profile, const QString &fmtList, const QString &streams)
{
    const VideoOffer offer(fmtList, streams);
    const QList<OfferedFormat> &offers = offer.formats();
    for (const bool keepSource : {false, true}) {
        const ChosenFormat chosen = offer.chosen(offer.settled(profile, keepSource));
        const auto isChosen = [&](const OfferedFormat &each) {
            return each.number == chosen.number;
        };
        expect(chosen.number == 0 || std::any_of(offers.cbegin(), offers.cend(), isChosen),
               "what is chosen is on offer");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString text = QString::fromLatin1(reinterpret_cast<const char *>(data), qsizetype(size));
    const QString wish = text.section(u'\n', 0, 0);
    Profile_Desc profile;
    profile.fileTypeExt = wish.section(u' ', 0, 0);
    profile.vSize_Width = wish.section(u' ', 1).section(u'x', 0, 0).toInt();
    profile.vSize_Height = wish.section(u' ', 1).section(u'x', 1).toInt();
    const QString fmtList = text.section(u'\n', 1, 1);
    const QString streams = text.section(u'\n', 2);
    select(profile, fmtList, streams);
    choose(profile, fmtList, streams);
    return 0;
}
