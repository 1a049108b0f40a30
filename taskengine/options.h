/**
 * What an application may set in, and read out of, the default task engine beyond the nine
 * functions of engine/taskengine.h.
 *
 * Fields of a request as this engine reads them:
 *
 *  - `nEngineParam2`: tries in all, 1 to 100 (smaller counts as 1, greater as 100);
 *    `Options::tries` comes first.
 *  - `nEngineParam3`: milliseconds before the second try; doubles with each further one, at most
 *    30 s. A site's Retry-After takes its place when it is longer, with the same limit.
 *  - `nEngineParam1`: most connections that a video may have, 1 to 8 (smaller counts as 1, greater
 *    as 8); `Options::connections` comes first.
 *  - `nReserved1`, `nReserved2`, `nTaskType`: not read. What kind of request it is is decided by
 * the function that takes it.
 *  - `nProxySet`: 1 sends the request through the proxy of `proxyParam`; anything else sends it
 *    directly, unless `Options::proxyFromEnvironment` is set.
 *  - `proxyParam.szProxyText1`: host name or address, without scheme and port.
 *  - `proxyParam.nProxyValue1`: port, 1 to 65535.
 *  - `proxyParam.nProxyValue2`: a `ProxyType`.
 *  - `proxyParam.szProxyText2`, `szProxyText3`: user and password, empty for none.
 *
 * Values of the events:
 *
 *  - DOWN_STATE_FILE_SIZE: bytes of the whole file; videos only.
 *  - DOWN_STATE_DOWNLOAD_PROGRESS: bytes of the file that are on disk, those of an earlier try or
 *    request included. Sent at most four times a second; the last one precedes the finish event.
 *  - DOWN_STATE_DOWNLOAD_SPEED: bytes per second since the previous one; once a second.
 *  - DOWN_STATE_DOWNLOAD_FINISH: bytes of the file.
 *  - DOWN_STATE_RETRY_DOWNLOAD: number of the try that follows after the delay, 2 or more.
 *  - DOWN_STATE_NO_RESUME: 0; what was fetched before is fetched again.
 *  - DOWN_STATE_PARSE_FAIL, DOWN_STATE_DOWNLOAD_FAIL: the cause, see failure.h.
 *  - DOWN_STATE_DISK_NO_SPACE: 0; DOWN_STATE_DOWNLOAD_FAIL with `Failure::DiskFull` follows.
 *
 * Files of a download: the data goes to "NAME.part" beside the target "NAME" (visible, because it
 * may be large and is the user's to delete), and to ".NAME.part-info" what is needed to continue
 * it, once the transfer has lasted a quarter of a second: what is killed before that starts anew.
 * Both are gone after success, and for images always. Those of a video stay after a user stop,
 * `Quit` and every failure but 404, when the site gave its size and a strong validator; a later
 * request with the same key and target then continues where they end, if the site confirms that it
 * still has the same file. A part file that several connections fill has the space of the whole
 * file, and the ".part-info" says twice a second which pieces are there: what is killed has lost no
 * more than that. Names that would become too long are shortened.
 *
 * Refused (-1) are requests while the engine does not run, with an empty or unterminated text where
 * one is needed, without callback, and with a key that another request still has. A key is free
 * again when the terminal event of its request is delivered.
 *
 * `SetProductAppDataPath` returns 0 and has no effect, because this engine keeps no files but those
 * beside the targets; -1 for null.
 *
 * `StopDownload` and `SuspendedDownload` return 0 when a request has the key and -1 otherwise.
 * `Quit` returns 0. Called from inside a callback it cannot wait for that callback, and does not
 * wait for others (they might be waiting for it): those in flight end on their own, none begins.
 * Callbacks must not throw.
 */
#ifndef VIDEODOWN_TASKENGINE_OPTIONS_H
#define VIDEODOWN_TASKENGINE_OPTIONS_H

#include "engine/visibility.h"

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace VIDEODOWN_PUBLIC taskengine {

/** Kinds of proxy, the values of `tagProxyParam::nProxyValue2`. */
enum class ProxyType {
    Http = 0,             ///< HTTP; HTTPS addresses are tunnelled through it
    Socks5 = 1,           ///< SOCKS5, host names looked up on this machine
    Socks5RemoteNames = 2 ///< SOCKS5, host names looked up by the proxy
};

/** Settings that hold for the whole engine. A duration of 0 turns a limit off. */
struct Options
{
    /**
     * Program and arguments of a command that prints the video-info response of a page as
     * "key=value" lines; the page address is added as last argument. Run without a shell, with
     * nothing on standard input, in a process group of its own that is killed with it. Empty: the
     * site is asked itself.
     *
     * What it prints is judged before anybody relies on it. The lines that are delivered say in
     * "answered_by=command" who has answered, as does a further field, "by=command", of the first
     * entry in "fmt_list=". In the place of output that would have the wrong file fetched, or none,
     * come empty lists and the line "command_fault=LINE KIND DETAIL": where the first mistake is
     * (0: something is missing), one of these words, and the text that it is about.
     *
     *  - encoding: the line is not UTF-8
     *  - blanks: there are blanks before the key, or around the equals sign
     *  - size: the entry of "fmt_list" is not of the form N/WIDTHxHEIGHT
     *  - container: the number of the entry stands for no container
     *  - comma: the entry of "fmt_stream_map" does not begin with a number and a bar
     *  - bar: the entry has more than one bar
     *  - address: the entry has no address of HTTP or HTTPS, or one that is too long
     *  - single: the number is only in one of the two lists
     *  - missing: there is no line with this key; not where "status=fail" or a reason stands
     */
    std::vector<std::string> videoInfoCommand;
    /**
     * A command of the same kind for pages whose site has no video-info response: its answer is
     * refused (4xx), empty, too large, or without any field, or the page's address names no video.
     * When the command knows streams, the host is not asked again while the engine runs. Its lines
     * are treated as those of `videoInfoCommand`, with the word "fallback" instead of
     * "command". Empty: there is none. Not used beside `videoInfoCommand`.
     */
    std::vector<std::string> fallbackCommand;
    /** How long a command may run, pauses not counted. */
    std::chrono::milliseconds commandTimeLimit{60000};
    /**
     * Most connections that a video may have, 1 to 8; 0: as many as `nEngineParam1` says. Further
     * ones are opened one by one, while each makes the whole faster and `rateLimit` holds nothing
     * back, for videos of which the site gives ranges, the size and a strong validator. One host
     * gets at most 8 from all requests together, beyond which each has its first one only. With 1
     * the engine asks for nothing but what the first connection brings.
     */
    int connections = 0;
    /** Fewest bytes of which a further connection is asked for half, in each half. */
    std::size_t leastPiece = std::size_t{1} << 20;
    /** How long it may take to look a host up and connect to it; 0 leaves it to libcurl (300 s). */
    std::chrono::milliseconds connectTimeLimit{30000};
    /** Fewer bytes per second than this, on the average of `lowSpeedTime`, time a transfer out. */
    std::size_t lowSpeedLimit = 64;
    /** Length of the stretches in which the speed is judged; pauses are not counted. */
    std::chrono::milliseconds lowSpeedTime{60000};
    /**
     * Most bytes per second that all transfers together receive, 0 for no limit. In force within a
     * second, for what is already under way too. Transfers that have data take turns; the time
     * that one is held back does not count as slow.
     */
    std::size_t rateLimit = 0;
    /** Most bytes of a video-info response, from site or command. */
    std::size_t responseLimit = std::size_t{2} << 20;
    /** Most bytes of an image. */
    std::size_t imageLimit = std::size_t{32} << 20;
    /** Tries of every request in all, 1 to 100; 0: as many as its `nEngineParam2` says. */
    int tries = 0;
    /**
     * User-Agent of all requests; empty for none. Requests for streams and images also have the
     * page as Referer. A `request_header` line of a video-info command overrules both.
     */
    std::string userAgent = "Mozilla/5.0 (compatible; videodown/0.1)";
    /**
     * Sends requests without a proxy of their own through those that `http_proxy`, `https_proxy`
     * and `all_proxy` name, but for the hosts in `no_proxy`, as libcurl understands them.
     */
    bool proxyFromEnvironment = false;
    /** PEM file of the authorities to trust instead of the system's; empty for those. */
    std::string caFile;
};

/** Sets the options of all requests sent from now on, and the rate limit of all. Any thread, engine
 * running or not. */
void setOptions(const Options &options);

/** @return a copy of the options in force. Any thread. */
Options options();

/** @return what the engine transfers with, as in "libcurl 7.88.1". Any thread. */
std::string transferLibrary();

} // namespace taskengine

#endif
