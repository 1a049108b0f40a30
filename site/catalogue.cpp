#include "site/catalogue.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace {

constexpr std::array<FormatDescription, 5> formats = {{
    {5, "flv", "video/x-flv", "320x240", "7/0/0"},
    {34, "flv", "video/x-flv", "640x360", "9/0/115"},
    {35, "flv", "video/x-flv", "854x480", "9/0/115"},
    {18, "mp4", "video/mp4", "640x360", "9/0/115"},
    {22, "mp4", "video/mp4", "1280x720", "9/0/115"},
}};

constexpr std::int64_t smallTimestamp = 1300000000;

SiteVideo numberedVideo(const std::string &id, const std::string &title)
{
    return {id, title, "Generator", "small,generated", 1, smallTimestamp, "bars", {34, 18}, {}};
}

} // namespace

// Two videos share a title, so that their file names meet; one title is full of characters that
// file names forbid; one video is refused by the site.
const std::vector<SiteVideo> &siteCatalogue()
{
    static const std::vector<SiteVideo> videos = {
        {"dawnChorus1",
         "A dawn chorus in the orchard",
         "Field Notes",
         "birds,morning",
         3,
         1289304000,
         "bars",
         {35, 34, 18, 5},
         {}},
        {"nochNaVolge",
         "Ночь на Волге: огни и туман",
         "Речная хроника",
         "река,ночь",
         3,
         1290513600,
         "cells",
         {34, 5},
         {}},
        {"yunXiaShan0",
         "云下的山与海",
         "山海影像",
         "山,海",
         3,
         1291723200,
         "card",
         {22, 35, 34, 18, 5},
         {}},
        {"partyTime_8",
         "Fireworks 🎆 over the bay 🎉",
         "Harbour Cam",
         "fireworks,night",
         3,
         1292932800,
         "fractal",
         {18, 22},
         {}},
        {"hardTitle-9",
         R"(What? "Best" of <2010> \ part 1/2: A*B | C)",
         "Odd Names & Co.",
         "names,a=b&c",
         3,
         1294142400,
         "gradient",
         {34, 18},
         {}},
        {"sameTitleA1",
         "Same title, 100% different",
         "First Uploader",
         "twins",
         3,
         1295352000,
         "carpet",
         {18, 5},
         {}},
        {"sameTitleB2",
         "Same title, 100% different",
         "Second Uploader",
         "twins",
         3,
         1296561600,
         "colours",
         {18, 5},
         {}},
        {"cafeAuLait3",
         "Café au lait + croissant = matin d'été",
         "La Cuisine",
         "café,matin",
         3,
         1297771200,
         "life",
         {35, 34},
         {}},
        {"notAllowed4",
         "Not for everyone",
         "Rights Holder",
         "refused",
         3,
         1298980800,
         "bars",
         {},
         "This video contains content from Rights Holder, who has blocked it."},
    };
    return videos;
}

const FormatDescription *findFormat(int number)
{
    const auto fits = [number](const FormatDescription &format) { return format.number == number; };
    const auto *const found = std::find_if(formats.begin(), formats.end(), fits);
    return found == formats.end() ? nullptr : found;
}

std::string formatContentType(int format)
{
    const FormatDescription *const description = findFormat(format);
    return description ? description->contentType : std::string();
}

std::optional<unsigned> numberBehind(const std::string &prefix, const std::string &id)
{
    constexpr std::size_t maximumDigits = 9;
    const std::size_t digits = id.size() - prefix.size();
    if (id.compare(0, prefix.size(), prefix) != 0 || digits == 0 || digits > maximumDigits)
        return {};
    unsigned number = 0;
    const char *const end = id.data() + id.size();
    const auto result = std::from_chars(id.data() + prefix.size(), end, number);
    return result.ptr == end ? std::optional(number) : std::nullopt;
}

Catalogue::Catalogue()
{
    for (const SiteVideo &video : siteCatalogue())
        m_videos.emplace(video.id, video);
}

void Catalogue::add(const SiteVideo &video)
{
    const std::lock_guard lock(m_mutex);
    m_videos.insert_or_assign(video.id, video);
}

std::optional<SiteVideo> Catalogue::find(const std::string &id) const
{
    {
        const std::lock_guard lock(m_mutex);
        if (const auto found = m_videos.find(id); found != m_videos.end())
            return found->second;
    }
    if (const auto number = numberBehind("small-", id))
        return numberedVideo(id, "Small video " + std::to_string(*number));
    if (const auto number = numberBehind("failing-", id))
        return numberedVideo(id, "Failing video " + std::to_string(*number));
    return {};
}
