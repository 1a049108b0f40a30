#include "site/pages.h"

#include "site/catalogue.h"
#include "site/formencoding.h"

#include <utility>
#include <vector>

namespace {

// Stream addresses stand in a list that is split at commas and bars, so both occur in them encoded.
std::string streamAddress(const SiteVideo &video, int format, const std::string &base)
{
    return base + "/stream/" + video.id + '/' + std::to_string(format) +
           "?sparams=" + percentEncode("id,itag,source") +
           "&source=" + percentEncode("site|local") + "&expire=" + std::to_string(video.timestamp);
}

std::string streamMap(const SiteVideo &video, const std::string &base)
{
    std::string list;
    for (const int format : video.formats)
        list += (list.empty() ? "" : ",") + std::to_string(format) + '|' +
                streamAddress(video, format, base);
    return list;
}

std::string formatList(const SiteVideo &video)
{
    std::string list;
    for (const int format : video.formats) {
        const FormatDescription *const description = findFormat(format);
        if (description)
            list += (list.empty() ? "" : ",") + std::to_string(format) + '/' +
                    description->frameSize + '/' + description->requirements;
    }
    return list;
}

std::string failureInfo(const SiteVideo &video)
{
    return formEncode({{"status", "fail"},
                       {"errorcode", "150"},
                       {"reason", video.failure},
                       {"video_id", video.id}});
}

std::string htmlPage(const std::string &title, const std::string &body)
{
    return "<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>" + htmlEscape(title) +
           "</title></head>\n<body>\n<h1>" + htmlEscape(title) + "</h1>\n" + body +
           "</body></html>\n";
}

std::string link(const std::string &address, const std::string &text)
{
    return "<li><a href=\"" + htmlEscape(address) + "\">" + htmlEscape(text) + "</a></li>\n";
}

} // namespace

std::string thumbnailAddress(const SiteVideo &video, const std::string &base)
{
    return base + "/thumbnail/" + video.id + ".jpg";
}

std::string indexPage(const std::string &base)
{
    std::string list;
    for (const SiteVideo &video : siteCatalogue())
        list += link(base + "/watch?v=" + video.id, video.title);
    return htmlPage("Videos", "<ul>\n" + list + "</ul>\n");
}

std::string watchPage(const SiteVideo &video, const std::string &base)
{
    std::string streams;
    for (const int format : video.formats)
        streams += link(streamAddress(video, format, base), "Format " + std::to_string(format));
    return htmlPage(video.title, "<p>" + htmlEscape(video.author) + "</p>\n<p>" +
                                     htmlEscape(video.failure) + "</p>\n<img alt=\"\" src=\"" +
                                     thumbnailAddress(video, base) + "\">\n<ul>\n" + streams +
                                     "</ul>\n");
}

std::string videoInfo(const SiteVideo &video, const std::string &base)
{
    if (!video.failure.empty())
        return failureInfo(video);
    return formEncode({{"status", "ok"},
                       {"fexp", "905228,914501"},
                       {"allow_embed", "1"},
                       {"fmt_stream_map", streamMap(video, base)},
                       {"allow_ratings", "1"},
                       {"keywords", video.keywords},
                       {"fmt_list", formatList(video)},
                       {"author", video.author},
                       {"muted", "0"},
                       {"length_seconds", std::to_string(video.lengthSeconds)},
                       {"timestamp", std::to_string(video.timestamp)},
                       {"has_cc", "False"},
                       {"hl", "en_US"},
                       {"avg_rating", "4.75"},
                       {"video_id", video.id},
                       {"token", "vjVQa1PpcFO" + video.id + "="},
                       {"thumbnail_url", thumbnailAddress(video, base)},
                       {"title", video.title}});
}
