#include "site/todayspages.h"

#include "site/catalogue.h"
#include "site/formencoding.h"
#include "site/pages.h"

#include <algorithm>
#include <cstring>

namespace {

std::string attribute(const std::string &name, const std::string &value)
{
    return ' ' + name + "=\"" + htmlEscape(value) + '"';
}

std::string page(const std::string &head, const std::string &body)
{
    return "<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\">\n" + head + "</head>\n<body>\n" +
           body + "</body></html>\n";
}

std::string titled(const SiteVideo &video)
{
    return "<title>" + htmlEscape(video.title) + "</title>\n";
}

bool isMp4(int format)
{
    const FormatDescription *const description = findFormat(format);
    return description != nullptr && std::strcmp(description->extension, "mp4") == 0;
}

std::string heightOf(int format)
{
    const std::string size = findFormat(format)->frameSize;
    return size.substr(size.find('x') + 1);
}

std::string mediaAddress(const SiteVideo &video, int format, const std::string &folder)
{
    return folder + '/' + video.id + '/' + std::to_string(format) + ".mp4";
}

/** The largest MP4 format. */
std::string bestAddress(const SiteVideo &video, const std::string &base)
{
    int best = 0;
    for (const int format : video.formats)
        best = isMp4(format) ? std::max(best, format) : best;
    return mediaAddress(video, best, base + "/media");
}

std::string videoElement(const SiteVideo &video, const std::string &base, const std::string &folder)
{
    std::string sources;
    for (const int format : video.formats) {
        if (isMp4(format))
            sources += "<source type=\"video/mp4\"" +
                       attribute("src", mediaAddress(video, format, folder)) +
                       attribute("label", heightOf(format) + 'p') + ">\n";
    }
    return page(titled(video), "<video controls" +
                                   attribute("poster", thumbnailAddress(video, base)) + ">\n" +
                                   sources + "</video>\n");
}

std::string openGraph(const SiteVideo &video, const std::string &base)
{
    const auto field = [](const std::string &name, const std::string &value) {
        return "<meta" + attribute("property", "og:" + name) + attribute("content", value) + ">\n";
    };
    return page(field("type", "video.other") + field("title", video.title) +
                    field("image", thumbnailAddress(video, base)) +
                    field("video", bestAddress(video, base)) + field("video:type", "video/mp4"),
                "");
}

std::string jsonText(const std::string &text)
{
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\' || c == '<')
            result += c == '<' ? std::string("\\u003c") : std::string{'\\', c};
        else
            result += c;
    }
    return result + '"';
}

std::string linkedData(const SiteVideo &video, const std::string &base)
{
    const std::string object =
        R"({"@context": "https://schema.org", "@type": "VideoObject", "name": )" +
        jsonText(video.title) + R"(, "contentUrl": )" + jsonText(bestAddress(video, base)) +
        R"(, "thumbnailUrl": )" + jsonText(thumbnailAddress(video, base)) + R"(, "duration": "PT)" +
        std::to_string(video.lengthSeconds) + R"(S"})";
    return page(titled(video) + R"(<script type="application/ld+json">)" + object + "</script>\n",
                "");
}

std::string inPieces(const SiteVideo &video, const std::string &base)
{
    return page(titled(video), "<video><source type=\"application/x-mpegURL\"" +
                                   attribute("src", base + "/pieces.m3u8") + "></video>\n");
}

} // namespace

std::string todaysPage(const std::string &kind, const SiteVideo &video, const std::string &base)
{
    if (kind == "video")
        return videoElement(video, base, base + "/media");
    if (kind == "guarded")
        return videoElement(video, base, base + "/guarded");
    if (kind == "opengraph")
        return openGraph(video, base);
    if (kind == "jsonld")
        return linkedData(video, base);
    return kind == "pieces" ? inPieces(video, base) : std::string();
}

std::string playlist()
{
    return "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:4\n#EXTINF:4,\npiece.ts\n"
           "#EXT-X-ENDLIST\n";
}
