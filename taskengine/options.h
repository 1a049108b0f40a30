/**
 * What an application may set in, and read out of, the default task engine beyond the nine
 * functions of engine/taskengine.h.
 *
 * Fields of a request as this engine reads them:
 *
 *  - `nEngineParam2`: tries in all, 1 to 100 (smaller counts as 1, greater as 100).
 *  - `nEngineParam3`: milliseconds before the second try; doubles with each further one, at most
 *    30 s. A site's Retry-After takes its place when it is longer, with the same limit.
 *  - `nEngineParam1`, `nReserved1`, `nReserved2`, `nTaskType`: not read. What kind of request it is
 *    is decided by the function that takes it.
 *  - `nProxySet`: 1 sends the request through the proxy of `proxyParam`; anything else sends it
 *    directly. Proxies named in the environment are never used.
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
 *  - DOWN_STATE_PARSE_FAIL, DOWN_STATE_DOWNLOAD_FAIL: the cause, see `Failure`.
 *  - DOWN_STATE_DISK_NO_SPACE: 0; DOWN_STATE_DOWNLOAD_FAIL with `Failure::DiskFull` follows.
 *
 * Files of a download: the data goes to "NAME.part" beside the target "NAME" (visible, because it
 * may be large and is the user's to delete), and to ".NAME.part-info" what is needed to continue
 * it, once the transfer has lasted a quarter of a second: what is killed before that starts anew.
 * Both are gone after success, and for images always. Those of a video stay after a user stop,
 * `Quit` and every failure but 404, when the site gave its size and a strong validator; a later
 * request with the same key and target then continues where they end, if the site confirms that it
 * still has the same file. Names that would become too long are shortened.
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

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace taskengine {

/** Kinds of proxy, the values of `tagProxyParam::nProxyValue2`. */
enum class ProxyType {
    Http = 0,             ///< HTTP; HTTPS addresses are tunnelled through it
    Socks5 = 1,           ///< SOCKS5, host names looked up on this machine
    Socks5RemoteNames = 2 ///< SOCKS5, host names looked up by the proxy
};

/**
 * Why a request failed, as the value of its failure event. Values from 100 to 599 are the HTTP
 * status with which the site refused; the others are these.
 */
enum class Failure {
    BadAddress = 1000,        ///< not an address, or a page address without a video in it
    ForbiddenProtocol = 1001, ///< neither HTTP nor HTTPS, also as the target of a redirect
    UnknownHost = 1002,       ///< the host's name has no address
    ConnectionFailed = 1003,  ///< refused or unreachable
    TlsFailed = 1004,         ///< no trustworthy encrypted connection
    ProxyFailed = 1005,       ///< proxy settings incomplete, or the proxy did not serve
    TimedOut = 1006,          ///< no connection in time, or too little data for too long
    ConnectionLost = 1007,    ///< ended in the middle of an answer
    ShortBody = 1008,         ///< less data than announced
    TooManyRedirects = 1009,  ///< more than ten
    EmptyResponse = 1010,     ///< no data at all
    MalformedResponse = 1011, ///< not HTTP, contradictory, or a video-info text without a line
    ResponseTooLarge = 1012,  ///< beyond the limits of `Options`
    NotMedia = 1013,          ///< a page or text in the place of a video or image
    RangeMismatch = 1014,     ///< the site continued at another place than asked
    FolderMissing = 1015,     ///< the target's folder does not exist
    NameTooLong = 1016,       ///< the file system does not take the target's name
    FileNotWritable = 1017,   ///< the target or its part file cannot be written
    FileInUse = 1018,         ///< another request is writing this target
    DiskFull = 1019,          ///< no space, or less than the video will need
    CommandNotFound = 1020,   ///< the video-info command cannot be started
    CommandFailed = 1021,     ///< the video-info command ended with an error
    Internal = 1022,          ///< none of the others, for instance out of memory
    TooManyFiles = 1023,      ///< the program or the system has too many files open
    DiskError = 1024,         ///< the disk cannot be read or written
    UnusableOutput = 1025,    ///< the video-info command printed no field, or too much
    FileTooLarge = 1026,      ///< beyond what the file system or the process may write
};

/** Settings that hold for the whole engine. A duration of 0 turns a limit off. */
struct Options
{
    /**
     * Program and arguments of a command that prints the video-info response of a page as
     * "key=value" lines; the page address is added as last argument. Run without a shell, with
     * nothing on standard input, in a process group of its own that is killed with it. Empty: the
     * site is asked itself.
     */
    std::vector<std::string> videoInfoCommand;
    /** How long the command may run, pauses not counted. */
    std::chrono::milliseconds commandTimeLimit{60000};
    /** How long it may take to look a host up and connect to it; 0 leaves it to libcurl (300 s). */
    std::chrono::milliseconds connectTimeLimit{30000};
    /** Fewer bytes per second than this, on the average of `lowSpeedTime`, time a transfer out. */
    std::size_t lowSpeedLimit = 64;
    /** Length of the stretches in which the speed is judged; pauses are not counted. */
    std::chrono::milliseconds lowSpeedTime{60000};
    /** Most bytes of a video-info response, from site or command. */
    std::size_t responseLimit = std::size_t{2} << 20;
    /** Most bytes of an image. */
    std::size_t imageLimit = std::size_t{32} << 20;
    /** PEM file of the authorities to trust in the place of the system's; empty for those. */
    std::string caFile;
};

/** Sets the options of all requests sent from now on. Any thread, engine running or not. */
void setOptions(const Options &options);

/** @return a copy of the options in force. Any thread. */
Options options();

/**
 * @param value the value of a failure event
 * @return its cause in English, to stand behind a colon: "the site answered 404 Not Found"
 */
std::string failureText(double value);

/** @return what the user can do about it, a sentence in English; empty when nothing is known */
std::string failureAdvice(double value);

} // namespace taskengine

#endif
