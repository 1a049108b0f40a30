#include "taskengine/responsehead.h"

#include "taskengine/address.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

namespace taskengine {

namespace {

/** A date counts as strong only when no change can have shared its second, clocks being unequal. */
constexpr time_t strongDateDistance = 60;

std::string header(CURL *easy, const char *name)
{
    curl_header *found = nullptr;
    if (curl_easy_header(easy, name, 0, CURLH_HEADER, -1, &found) != CURLHE_OK)
        return {};
    return found->value;
}

char lower(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A'))
                                                : character;
}

std::string mediaType(const std::string &contentType)
{
    std::string type = contentType.substr(0, contentType.find(';'));
    type.erase(std::remove(type.begin(), type.end(), ' '), type.end());
    std::transform(type.begin(), type.end(), type.begin(), lower);
    return type;
}

/** RFC 9110, sections 8.8.2.2 and 13.1.5: when a modification date may stand in If-Range. */
bool isStrongDate(const std::string &modified, const std::string &date)
{
    const time_t changed = curl_getdate(modified.c_str(), nullptr);
    const time_t answered = curl_getdate(date.c_str(), nullptr);
    return changed > 0 && answered > 0 && answered - changed >= strongDateDistance;
}

std::string strongValidator(CURL *easy)
{
    std::string tag = header(easy, "ETag");
    if (tag.size() > 2 && tag.front() == '"' && tag.back() == '"')
        return tag;
    if (!tag.empty()) // a weak tag says that the bytes may differ
        return {};
    const std::string modified = header(easy, "Last-Modified");
    return isStrongDate(modified, header(easy, "Date")) ? modified : std::string();
}

/** RFC 9112, section 6.3: then nobody knows where the body ends. */
bool hasSeveralLengths(CURL *easy)
{
    const std::string length = header(easy, "Content-Length");
    curl_header *other = nullptr;
    for (std::size_t i = 1;
         curl_easy_header(easy, "Content-Length", i, CURLH_HEADER, -1, &other) == CURLHE_OK; ++i) {
        if (other->value != length)
            return true;
    }
    return length.find(',') != std::string::npos;
}

bool isEncoded(CURL *easy)
{
    const std::string encoding = header(easy, "Content-Encoding");
    return !encoding.empty() && mediaType(encoding) != "identity";
}

/** Takes a number off the front, or "*" for -1. */
bool takeNumber(std::string_view &text, std::int64_t &number)
{
    if (!text.empty() && text.front() == '*') {
        text.remove_prefix(1);
        return true;
    }
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc() || number < 0)
        return false;
    text.remove_prefix(static_cast<std::size_t>(result.ptr - text.data()));
    return true;
}

bool takeText(std::string_view &text, std::string_view wanted)
{
    if (text.substr(0, wanted.size()) != wanted)
        return false;
    text.remove_prefix(wanted.size());
    return true;
}

bool beginsWith(const std::string &text, std::string_view start)
{
    return std::string_view(text).substr(0, start.size()) == start;
}

bool endsWith(const std::string &text, std::string_view end)
{
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

} // namespace

std::optional<ContentRange> parseContentRange(const std::string &text)
{
    ContentRange range;
    std::string_view rest = text;
    if (!takeText(rest, "bytes ") || !takeNumber(rest, range.first))
        return std::nullopt;
    const bool isSpan = range.first >= 0;
    if (isSpan && !(takeText(rest, "-") && takeNumber(rest, range.last)))
        return std::nullopt;
    if (!takeText(rest, "/") || !takeNumber(rest, range.total) || !rest.empty())
        return std::nullopt;
    const bool isOrdered =
        !isSpan || (range.first <= range.last && (range.total < 0 || range.last < range.total));
    return isOrdered ? std::optional<ContentRange>(range) : std::nullopt;
}

ResponseHead responseHead(CURL *easy)
{
    ResponseHead head;
    curl_off_t length = -1;
    curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &head.status);
    curl_easy_getinfo(easy, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
    head.length = length;
    const char *address = nullptr;
    curl_easy_getinfo(easy, CURLINFO_EFFECTIVE_URL, &address);
    head.host = address == nullptr ? std::string() : hostOf(address);
    head.mediaType = mediaType(header(easy, "Content-Type"));
    head.validator = strongValidator(easy);
    head.acceptsRanges = mediaType(header(easy, "Accept-Ranges")) == "bytes";
    head.encoded = isEncoded(easy);
    head.contradictory = hasSeveralLengths(easy);
    head.range = parseContentRange(header(easy, "Content-Range"));
    return head;
}

bool canBeVideo(const std::string &mediaType)
{
    static constexpr std::array<std::string_view, 6> texts{
        "application/json",      "application/javascript",
        "application/xml",       "application/x-www-form-urlencoded",
        "application/x-mpegurl", "application/vnd.apple.mpegurl"};
    return !beginsWith(mediaType, "text/") && !beginsWith(mediaType, "multipart/") &&
           !endsWith(mediaType, "+xml") && !endsWith(mediaType, "+json") &&
           std::find(texts.begin(), texts.end(), mediaType) == texts.end();
}

bool canBeImage(const std::string &mediaType)
{
    return mediaType.empty() || beginsWith(mediaType, "image/") ||
           mediaType == "application/octet-stream";
}

} // namespace taskengine
