#ifndef VIDEODOWN_SITE_VIDEOSITE_H
#define VIDEODOWN_SITE_VIDEOSITE_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/**
 * A small video site on the loopback interface, for the demo, the tests and the benchmarks.
 *
 * It answers, for every video of its catalogue:
 * - `/watch?v=ID`: the video's page, HTML;
 * - `/get_video_info?video_id=ID`: the video-info response, form-encoded;
 * - `/stream/ID/FORMAT`: the video in one format, with byte ranges, a strong ETag and If-Range;
 * - `/thumbnail/ID.jpg`: its thumbnail, JPEG;
 * - `/today/KIND/ID.html`: a page as sites write them today; todaysPage() lists the kinds;
 * - `/media/ID/FORMAT.mp4`: the stream of an MP4 format at an address that says so;
 * - `/guarded/ID/FORMAT.mp4`: the same, for those who come from the page of the kind "guarded" and
 *   bring its cookie; 403 for everybody else.
 *
 * Beside the catalogue there are videos that need no file: `small-N` for any number N (0 to
 * 999999999), with the formats 34 and 18 and the bytes of smallVideoBytes(), and `failing-N`, whose
 * page exists and whose video-info request is answered with 404 when N is even and with 500 when it
 * is odd.
 *
 * Addresses in the answers start with the Host header of the request, and with https when they
 * came over TLS.
 *
 * Faults are set with Misbehaviour. A Range header that cannot be read is answered by the HTTP
 * library underneath, with 416, before it is recorded here.
 */

/** A video of the catalogue. */
struct SiteVideo
{
    /** Identifier in the addresses: letters, digits, "-" and "_". */
    std::string id;
    /** Title, author and keywords (comma-separated), UTF-8. */
    std::string title;
    std::string author;
    std::string keywords;
    /** What the video-info response says of length (seconds) and time (seconds since 1970, UTC). */
    int lengthSeconds = 0;
    std::int64_t timestamp = 0;
    /** Name of the clip in the media folder: CLIP-FORMAT.flv, CLIP-FORMAT.mp4 and CLIP.jpg. */
    std::string clip;
    /** Offered formats in the order of the response's lists: 5, 34, 35, 18, 22. */
    std::vector<int> formats;
    /** When not empty, the video-info response is `status=fail` with this reason, without formats.
     */
    std::string failure;
};

/** A whole response, given instead of what the site would have answered. */
struct SiteAnswer
{
    /** HTTP status, 200 to 599. */
    int status = 200;
    std::string contentType = "text/html; charset=utf-8";
    /** Further header fields, for example `{{"Location", "/elsewhere"}}`. */
    std::map<std::string, std::string> headers;
    std::string body;
};

/** Faults of the requests whose address begins with a prefix. A default value means: not this
 * fault. */
struct Misbehaviour
{
    /** Prefix of the request's path and query as they stand in the request, "/" for every request.
     */
    std::string prefix = "/";
    /** Only the first so many requests with the prefix are met, later ones not; 0: all of them. */
    unsigned firstRequests = 0;
    /** Given instead of the resource. */
    std::optional<SiteAnswer> answer;
    /** Waited before anything is answered. */
    std::chrono::milliseconds latency{0};
    /** Upper bound of body bytes per second; 0: unbounded. */
    std::uint64_t bytesPerSecond = 0;
    /** The same for all bodies that meet this fault together; 0: unbounded. */
    std::uint64_t clientBytesPerSecond = 0;
    /** So many bodies are sent at a time; who asks for more gets `answer`, or status 503. 0: any.
     */
    unsigned mostAtOnce = 0;
    /** The connection is closed after so many body bytes, though the header promised them all. */
    std::optional<std::uint64_t> cutAfter;
    /** The body halts after so many bytes until VideoSite::release(). */
    std::optional<std::uint64_t> holdAfter;
    /** Range is ignored: always the whole resource with status 200. */
    bool ignoreRange = false;
    /** When not empty, the ETag of the resource, quotes included, as if it had changed. */
    std::string entityTag;
    /** An answer to a range begins so many bytes before what was asked for, and says so. */
    std::uint64_t earlierBy = 0;
    /** It ends so many bytes behind, or before, what was asked for, and says so. */
    std::uint64_t longerBy = 0;
    std::uint64_t shorterBy = 0;
    /** It says that the whole has so many bytes more. */
    std::uint64_t totalMore = 0;
    /** If-Range is not looked at. */
    bool ignoreCondition = false;
    /** The length is not announced; the end of the connection ends the body. */
    bool unannounced = false;
    /** Announced instead of the true length. */
    std::optional<std::uint64_t> announcedLength;
    /** A second Content-Length, half of the first, stands behind it. */
    bool twoLengths = false;
    /** The body comes in chunks and begins again whenever it is over. */
    bool endless = false;
    /** So many bytes of further header fields stand in the answer. */
    std::size_t headerBytes = 0;
    /** Waited before each line of the header. */
    std::chrono::milliseconds headerLatency{0};
};

/**
 * What a small answer becomes when it is unpacked: so many zero bytes, as an answer with
 * `Content-Encoding: gzip` (RFC 1952), for Misbehaviour::answer.
 */
SiteAnswer gzipBomb(std::size_t bytes);

/** One request as it arrived. Absent header fields are empty. */
struct SiteRequest
{
    std::string method;
    /** Path and query as they stood in the request. */
    std::string target;
    std::string range;
    std::string ifRange;
    std::string host;
    std::string referer;
    std::string cookie;
    /** Port of the client's end of the connection: the same number, the same connection. */
    int clientPort = 0;
};

/** The videos that the site has from the start, in the order of its index page. */
const std::vector<SiteVideo> &siteCatalogue();

/**
 * The bytes of the video `small-NUMBER` in a format: deterministic, different for each pair of
 * number and format, beginning with the signature of the container.
 * @param size length in bytes, as given to VideoSite::setSmallVideoSize(); at least 16.
 */
std::string smallVideoBytes(unsigned number, int format, std::size_t size);

/** Content type of a format: "video/x-flv", "video/mp4" or, for a format not known here, empty. */
std::string formatContentType(int format);

/**
 * The site. It listens on 127.0.0.1 only and serves on threads of its own.
 *
 * start() and stop() belong to one thread, every other member may be called on any thread at any
 * time, also while requests are served. Nothing is thrown but what the standard library throws when
 * memory runs out.
 */
class VideoSite
{
public:
    /** @param mediaFolder folder of the clips; empty: the folder in the source tree. */
    explicit VideoSite(std::string mediaFolder = {});
    /** Stops the site. */
    ~VideoSite();
    VideoSite(const VideoSite &) = delete;
    VideoSite &operator=(const VideoSite &) = delete;

    /**
     * Listens and serves until stop(). Once per object.
     * @param port 1 to 65535, or 0 for any free port.
     * @return false when the port cannot be bound.
     */
    bool start(int port = 0);
    /**
     * Serves over TLS too, on a port of its own, with a certificate for 127.0.0.1 made on the spot,
     * which nobody has a reason to trust. Once, after start().
     * @return false when there is no free port or no certificate could be made.
     */
    bool startTls();
    /**
     * Offers a proxy, HTTP and SOCKS5 on one port, through which every host name and port is this
     * site. Clients must show the user name and the password, unless both are empty. Once, after
     * start(). @return false when there is no free port.
     */
    bool startProxy(const std::string &user, const std::string &password);
    /** Closes every connection, halted ones included, and waits for the threads. May be repeated.
     */
    void stop();

    /** Port in use; 0 before start(). */
    int port() const;
    /** `http://127.0.0.1:PORT`, without a slash at the end. */
    std::string baseAddress() const;
    /** `https://127.0.0.1:PORT`, without a slash at the end; after startTls(). */
    std::string secureAddress() const;
    /** What vouches for secureAddress(): the certificate itself, PEM; after startTls(). */
    std::string certificate() const;
    /** Port of the proxy on 127.0.0.1; 0 before startProxy(). */
    int proxyPort() const;
    /** Address of a video's page; the video need not exist. */
    std::string pageAddress(const std::string &id) const;

    /** Adds a video, or replaces the one with the same id. Its clip must be in the media folder. */
    void addVideo(const SiteVideo &video);
    /** Length of the `small-N` videos in bytes, at least 16; 4096 at first. */
    void setSmallVideoSize(std::size_t bytes);

    /**
     * Adds a fault. Of the faults whose prefix fits a request, and that still have requests to
     * meet, the one added first is applied, alone.
     */
    void addMisbehaviour(const Misbehaviour &misbehaviour);
    /** Forgets every fault; requests being served keep theirs, and halted ones stay halted. */
    void clearMisbehaviours();
    /** Lets every body that is halted now go on. */
    void release();

    /** Every request so far, in the order of arrival. */
    std::vector<SiteRequest> requests() const;
    /** Number of requests whose path and query begin with a prefix. */
    std::size_t requestCount(const std::string &prefix) const;
    /**
     * Waits until so many bodies are halted at their `holdAfter`.
     * @return false when stop() or the time limit came first.
     */
    bool waitForHeld(std::size_t count, std::chrono::milliseconds limit) const;

private:
    class Private;
    std::unique_ptr<Private> m_d;
};

#endif
