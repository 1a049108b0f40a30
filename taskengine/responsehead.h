/** What the headers of an answer say about its body. */
#ifndef VIDEODOWN_TASKENGINE_RESPONSEHEAD_H
#define VIDEODOWN_TASKENGINE_RESPONSEHEAD_H

#include <cstdint>
#include <curl/curl.h>
#include <optional>
#include <string>

namespace taskengine {

/** A Content-Range field (RFC 9110, section 14.4); -1 for what it leaves open. */
struct ContentRange
{
    std::int64_t first = -1;
    std::int64_t last = -1;
    std::int64_t total = -1;
};

/** @return the range of "bytes 0-9/10", "bytes 0-9/\*" or "bytes *\/10"; nothing for other texts */
std::optional<ContentRange> parseContentRange(const std::string &text);

/** The headers of the final answer, after redirects. */
struct ResponseHead
{
    long status = 0;
    std::string host;           ///< that answers, see `hostOf`
    std::int64_t length = -1;   ///< bytes announced for the body, -1 when they are not
    std::string mediaType;      ///< lower case, without parameters; empty when not given
    std::string validator;      ///< for If-Range: strong, or empty
    bool acceptsRanges = false; ///< says that parts can be had
    bool encoded = false;       ///< the body is compressed, although nothing asked for that
    bool contradictory = false; ///< several lengths are announced
    std::optional<ContentRange> range;
};

/** @return the head of the answer that `easy` has received */
ResponseHead responseHead(CURL *easy);

/** @return whether a body of this type can be a video; texts, pages and playlists cannot */
bool canBeVideo(const std::string &mediaType);

/** @return whether a body of this type can be an image */
bool canBeImage(const std::string &mediaType);

} // namespace taskengine

#endif
