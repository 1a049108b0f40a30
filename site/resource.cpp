#include "site/resource.h"

#include "site/pages.h"
#include "site/todayspages.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <ctime>
#include <fstream>
#include <iterator>
#include <utility>

namespace {

constexpr const char *html = "text/html; charset=utf-8";
constexpr const char *form = "application/x-www-form-urlencoded";

Resource failure(int status, const std::string &text)
{
    return {
        status, html, "<!DOCTYPE html>\n<title>" + text + "</title><p>" + text + "</p>\n", {}, {}};
}

Resource notFound()
{
    return failure(404, "Not Found");
}

std::string httpDate(std::int64_t seconds)
{
    const auto time = static_cast<std::time_t>(seconds);
    std::tm parts{};
    gmtime_r(&time, &parts);
    std::array<char, 64> text{};
    const std::size_t length =
        std::strftime(text.data(), text.size(), "%a, %d %b %Y %H:%M:%S GMT", &parts);
    return {text.data(), length};
}

// FNV-1a: equal bytes give equal tags in every run, so that a download can be resumed after a
// restart.
std::string strongTag(const std::string &bytes)
{
    std::uint64_t hash = 14695981039346656037ULL;
    for (const char c : bytes)
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ULL;
    std::array<char, 16> digits{};
    const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), hash, 16);
    return '"' + std::string(digits.data(), result.ptr) + '"';
}

Resource media(std::string bytes, const char *contentType, const SiteVideo &video)
{
    const std::string tag = strongTag(bytes);
    return {200, contentType, std::move(bytes), tag, httpDate(video.timestamp)};
}

bool startsWith(const std::string &text, const std::string &prefix)
{
    return text.compare(0, prefix.size(), prefix) == 0;
}

bool endsWith(const std::string &text, const std::string &end)
{
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

} // namespace

Resources::Resources(std::string mediaFolder) : m_mediaFolder(std::move(mediaFolder)) {}

Resource Resources::find(const std::string &path, const std::string &videoId,
                         const std::string &base) const
{
    const std::string stream = "/stream/";
    const std::string thumbnail = "/thumbnail/";
    const std::string today = "/today/";
    const std::string page = ".html";
    const std::string mp4 = ".mp4";
    if (path == "/")
        return {200, html, indexPage(base), {}, {}};
    if (path == "/watch")
        return pageOf(videoId, base);
    if (path == "/get_video_info")
        return infoOf(videoId, base);
    if (startsWith(path, stream))
        return streamAt(path.substr(stream.size()));
    if (startsWith(path, thumbnail))
        return thumbnailAt(path.substr(thumbnail.size()));
    if (startsWith(path, today) && endsWith(path, page))
        return todayAt(path.substr(today.size(), path.size() - today.size() - page.size()), base);
    for (const std::string folder : {"/media/", "/guarded/"}) {
        if (startsWith(path, folder) && endsWith(path, mp4))
            return streamAt(path.substr(folder.size(), path.size() - folder.size() - mp4.size()));
    }
    if (path == "/pieces.m3u8")
        return {200, "application/vnd.apple.mpegurl", playlist(), {}, {}};
    return notFound();
}

Resource Resources::todayAt(const std::string &kindAndId, const std::string &base) const
{
    const std::size_t slash = std::min(kindAndId.find('/'), kindAndId.size());
    const auto video = m_catalogue.find(kindAndId.substr(std::min(slash + 1, kindAndId.size())));
    const std::string page =
        video ? todaysPage(kindAndId.substr(0, slash), *video, base) : std::string();
    return page.empty() ? notFound() : Resource{200, html, page, {}, {}};
}

Resource Resources::pageOf(const std::string &id, const std::string &base) const
{
    const auto video = m_catalogue.find(id);
    return video ? Resource{200, html, watchPage(*video, base), {}, {}} : notFound();
}

Resource Resources::infoOf(const std::string &id, const std::string &base) const
{
    if (const auto number = numberBehind("failing-", id))
        return *number % 2 == 0 ? notFound() : failure(500, "Internal Server Error");
    const auto video = m_catalogue.find(id);
    return video ? Resource{200, form, videoInfo(*video, base), {}, {}} : notFound();
}

Resource Resources::streamAt(const std::string &idAndFormat) const
{
    const std::size_t slash = idAndFormat.find('/');
    const auto video = m_catalogue.find(idAndFormat.substr(0, slash));
    const auto number = slash == std::string::npos
                            ? std::optional<unsigned>()
                            : numberBehind({}, idAndFormat.substr(slash + 1));
    if (!video || !number)
        return notFound();
    const auto format = static_cast<int>(*number);
    const FormatDescription *const description = findFormat(format);
    const auto &offered = video->formats;
    if (!description || std::find(offered.begin(), offered.end(), format) == offered.end())
        return notFound();
    if (const auto small = numberBehind("small-", video->id))
        return smallVideo(*small, format, *video);
    const std::string name =
        video->clip + '-' + std::to_string(format) + '.' + description->extension;
    return mediaFile(name, description->contentType, *video);
}

Resource Resources::smallVideo(unsigned number, int format, const SiteVideo &video) const
{
    constexpr std::size_t large = 1000000;
    constexpr std::size_t mostKept = 4;
    const std::size_t size = m_smallSize;
    const auto make = [&] {
        return media(smallVideoBytes(number, format, size), findFormat(format)->contentType, video);
    };
    if (size < large)
        return make();
    const std::lock_guard lock(m_mutex);
    const auto isIt = [&](const LargeVideo &kept) {
        return kept.number == number && kept.format == format && kept.resource.body->size() == size;
    };
    const auto found = std::find_if(m_large.begin(), m_large.end(), isIt);
    if (found != m_large.end())
        return found->resource;
    if (m_large.size() >= mostKept)
        m_large.erase(m_large.begin());
    m_large.push_back({number, format, make()});
    return m_large.back().resource;
}

Resource Resources::thumbnailAt(const std::string &fileName) const
{
    const std::string extension = ".jpg";
    const std::string id = fileName.substr(0, fileName.rfind(extension));
    const auto video = m_catalogue.find(id);
    if (!video || fileName != id + extension)
        return notFound();
    return mediaFile(video->clip + extension, "image/jpeg", *video);
}

Resource Resources::mediaFile(const std::string &name, const char *contentType,
                              const SiteVideo &video) const
{
    std::ifstream file(m_mediaFolder + '/' + name, std::ios::binary);
    if (!file)
        return notFound();
    std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    return media(std::move(bytes), contentType, video);
}
