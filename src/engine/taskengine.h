/**
 * The boundary between the download library and a task engine.
 *
 * The library performs no transfer itself. An engine is any library that defines the nine functions
 * below; it reports back through the two callbacks that travel in every request.
 *
 * Conventions of the boundary:
 *
 *  1. Texts are NUL-terminated narrow strings in the local 8-bit encoding. A text that does not fit
 *     its field is never cut: the library then treats the request as refused, without sending it.
 *  2. Functions return 32-bit integers. A request returns -1 when it is refused; any other value
 *     means that it was accepted (0 by convention) and that exactly one terminal event follows: see
 *     `isTerminal`.
 *  3. `tagTaskInfo` is passed by value. It has a destructor, so both sides are compiled as C++; the
 *     engine copies whatever it keeps beyond the call.
 *  4. Sizes, offsets and values are fixed. They are asserted at the end of this file: 3572 bytes
 *     with 4-byte pointers, the layout that binary engines share, and 3584 bytes with 8-byte ones.
 *  5. The library calls request and stop functions with its controller lock held, and may do so
 * from inside a callback. An engine therefore only queues: it neither waits for a transfer nor for
 * a callback, and holds no lock of its own while it calls back.
 *  6. Callbacks may come on any thread. Events of one request come one after the other.
 *  7. The size of a video is reported before its complete file gets the name `szSavePath`, and the
 * file gets it only after that callback has returned. So an application that notes the size there
 *     can tell after a sudden end whether a file of this name is the complete video.
 */
#ifndef VIDEODOWN_ENGINE_TASKENGINE_H
#define VIDEODOWN_ENGINE_TASKENGINE_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

/** The kind of file a download concerns. */
enum FILE_TYPE : std::int32_t {
    FILE_TYPE_VIDEO = 0, ///< the video file of a task
    FILE_TYPE_IMAGE = 1, ///< the thumbnail image of a task
};

/**
 * The events an engine reports. Codes outside the list are passed on to the application unchanged.
 * The text in quotes is the code's label.
 */
enum tagDownloadStateCode : std::int32_t {
    DOWN_STATE_NONE = -1,             ///< "NONE": no state
    DOWN_STATE_START_PARSE = 0,       ///< "start parse": fetching the video-info response began
    DOWN_STATE_PARSE_SUCCESS = 1,     ///< "parse success": the response, to the video-info callback
    DOWN_STATE_START_DOWNLOAD = 2,    ///< "start download": a download started
    DOWN_STATE_DOWNLOAD_FINISH = 3,   ///< the file is complete in `szSavePath`
    DOWN_STATE_DOWNLOAD_PROGRESS = 4, ///< "download progress": value is engine-defined
    DOWN_STATE_DOWNLOAD_SPEED = 5,    ///< "download speed": value is engine-defined
    DOWN_STATE_PARSE_FAIL = 6,        ///< "parse fail": the response could not be fetched
    DOWN_STATE_DOWNLOAD_FAIL = 7,     ///< "download fail": a download failed
    DOWN_STATE_USER_STOP = 8,         ///< "user Manually stop the download": `StopDownload` took
    DOWN_STATE_RESERVED_9 = 9,        ///< no meaning in the library
    DOWN_STATE_FILE_SIZE = 10,        ///< "return file size": value is the size in bytes
    DOWN_STATE_RETRY_DOWNLOAD = 11,   ///< "retry download (次数)": the engine tries again
    DOWN_STATE_NO_RESUME = 12,     ///< "不支持断点续传的警告": resuming is not supported
    DOWN_STATE_RESTART = 13,       ///< "restart parse and download"
    DOWN_STATE_DISK_NO_SPACE = 14, ///< "disk no space": the disk is full
    DOWN_STATE_TASK_EXISTS = 15,   ///< "task is exists": the task already exists
    DOWN_STATE_UNUSED = 16,        ///< "Unused"
};

/** Whether an event with this code is the last one of its request. */
constexpr bool isTerminal(tagDownloadStateCode code)
{
    return code == DOWN_STATE_PARSE_SUCCESS || code == DOWN_STATE_PARSE_FAIL ||
           code == DOWN_STATE_DOWNLOAD_FINISH || code == DOWN_STATE_DOWNLOAD_FAIL ||
           code == DOWN_STATE_USER_STOP;
}

/**
 * Proxy settings, filled by the application and read by the engine; the library only stores and
 * copies them. The meaning of the fields is agreed between application and engine (for the default
 * engine see taskengine/options.h). Texts hold at most 127 bytes and a NUL.
 */
struct tagProxyParam
{
    char szProxyText1[128];
    std::int32_t nProxyValue1;
    std::int32_t nProxyValue2;
    char szProxyText2[128];
    char szProxyText3[128];
};

/**
 * State callback of the engine and, with the same signature, of the application.
 *
 * @param user   the request's `pUserData` (towards the application: its own `pUserData`)
 * @param key    the request's `szTaskKey`; valid during the call only
 * @param code   the event
 * @param value  depends on the code; bytes for DOWN_STATE_FILE_SIZE, otherwise the engine's own
 * @param type   the request's `nFileType` for downloads; without meaning for parses
 */
using StateCallbackFunction = int (*)(void *user, const char *key, tagDownloadStateCode code,
                                      double value, FILE_TYPE type);

/**
 * Video-info callback of the engine and of the application: for DOWN_STATE_PARSE_SUCCESS, `data` is
 * the NUL-terminated response (key=value lines) and `length` its bytes; valid during the call only.
 */
using VideoInfoCallbackFunction = int (*)(void *user, const char *key, tagDownloadStateCode code,
                                          char *data, unsigned long length);

/** One request, of any kind. All text fields are zero-filled behind their text. */
struct tagTaskInfo
{
    char szTaskKey[64];         ///< task key, or image key of a thumbnail request
    char szPageURL[1024];       ///< address of the video page
    char szDownloadURL[1024];   ///< address to fetch; empty for parses
    std::int32_t nTaskType;     ///< 0 parse, 1 download
    std::int32_t nFileType;     ///< `FILE_TYPE` of a download; -1 for parses
    std::int32_t nReserved1;    ///< -1, not set by the library
    std::int32_t nReserved2;    ///< -1, not set by the library
    tagProxyParam proxyParam;   ///< all zero unless `nProxySet` is 1
    std::int32_t nProxySet;     ///< 1: the proxy is used
    std::int32_t nEngineParam1; ///< 3 in every request
    char szSavePath[1024];      ///< file the engine writes; empty for parses
    std::int32_t nEngineParam2; ///< 5 in every request
    std::int32_t nEngineParam3; ///< 500 in every request
    void *pUserData;            ///< handed back as the callbacks' first argument
    VideoInfoCallbackFunction pfnVideoInfoCallback; ///< set for parse requests only
    StateCallbackFunction pfnStateCallback;         ///< set in every request

    /** @param key at most 63 bytes; null counts as empty. Every other field gets its empty value.
     */
    explicit tagTaskInfo(const char *key)
    {
        reset();
        if (key != nullptr)
            std::memcpy(szTaskKey, key, strnlen(key, sizeof szTaskKey - 1));
    }

    tagTaskInfo(const tagTaskInfo &) = default;
    tagTaskInfo &operator=(const tagTaskInfo &) = default;

    /** Clears the record, so that no proxy password stays behind in freed memory. */
    ~tagTaskInfo()
    {
        reset();
        keepStores();
    }

private:
    void reset()
    {
        std::memset(szTaskKey, 0, sizeof szTaskKey);
        std::memset(szPageURL, 0, sizeof szPageURL);
        std::memset(szDownloadURL, 0, sizeof szDownloadURL);
        nTaskType = -1;
        nFileType = -1;
        nReserved1 = -1;
        nReserved2 = -1;
        std::memset(&proxyParam, 0, sizeof proxyParam);
        nProxySet = 0;
        nEngineParam1 = 0;
        std::memset(szSavePath, 0, sizeof szSavePath);
        nEngineParam2 = -1;
        nEngineParam3 = -1;
        pUserData = nullptr;
        pfnVideoInfoCallback = nullptr;
        pfnStateCallback = nullptr;
    }

    /** Stores to an object about to die are dead to the optimiser unless something may read them.
     */
    void keepStores()
    {
#if defined(__GNUC__)
        __asm__ __volatile__("" : : "r"(this) : "memory");
#else
        for (volatile char *byte = reinterpret_cast<volatile char *>(&proxyParam);
             byte != reinterpret_cast<volatile char *>(&proxyParam + 1); ++byte)
            *byte = 0;
#endif
    }
};

#pragma GCC visibility push(default)
extern "C" {

/** Starts the engine. May be called again after `DownloadCleanup`. @return 0, or -1 on failure */
int DownloadInit();

/** Releases what `DownloadInit` and the transfers took. @return 0, or -1 when it was not started */
int DownloadCleanup();

/** Stops every request and ends the engine's work; no callback comes after it has returned. */
int Quit();

/** Tells the engine a folder for its own files. @return engine-defined */
int SetProductAppDataPath(const char *path);

/** Fetches the video-info response for `szPageURL`. @return -1 refused, otherwise accepted */
int ParseVideoInfo(tagTaskInfo request);

/** Downloads `szDownloadURL` to `szSavePath`. @return -1 refused, otherwise accepted */
int DownloadVideo(tagTaskInfo request);

/** The same for a thumbnail, under its image key. @return -1 refused, otherwise accepted */
int DownloadImage(tagTaskInfo request);

/** Stops the request of this key; DOWN_STATE_USER_STOP follows. @return engine-defined */
int StopDownload(const char *key);

/** Pauses the request of this key, or lets a paused one go on. @return engine-defined */
int SuspendedDownload(const char *key);

} // extern "C"
#pragma GCC visibility pop

static_assert(sizeof(tagProxyParam) == 392 && std::is_trivially_copyable<tagProxyParam>::value,
              "the proxy record is copied byte for byte");
static_assert(offsetof(tagProxyParam, szProxyText1) == 0, "engine layout");
static_assert(offsetof(tagProxyParam, nProxyValue1) == 128, "engine layout");
static_assert(offsetof(tagProxyParam, nProxyValue2) == 132, "engine layout");
static_assert(offsetof(tagProxyParam, szProxyText2) == 136, "engine layout");
static_assert(offsetof(tagProxyParam, szProxyText3) == 264, "engine layout");

static_assert(std::is_standard_layout<tagTaskInfo>::value, "offsets must be defined");
static_assert(offsetof(tagTaskInfo, szTaskKey) == 0, "engine layout");
static_assert(offsetof(tagTaskInfo, szPageURL) == 64, "engine layout");
static_assert(offsetof(tagTaskInfo, szDownloadURL) == 1088, "engine layout");
static_assert(offsetof(tagTaskInfo, nTaskType) == 2112, "engine layout");
static_assert(offsetof(tagTaskInfo, nFileType) == 2116, "engine layout");
static_assert(offsetof(tagTaskInfo, nReserved1) == 2120, "engine layout");
static_assert(offsetof(tagTaskInfo, nReserved2) == 2124, "engine layout");
static_assert(offsetof(tagTaskInfo, proxyParam) == 2128, "engine layout");
static_assert(offsetof(tagTaskInfo, nProxySet) == 2520, "engine layout");
static_assert(offsetof(tagTaskInfo, nEngineParam1) == 2524, "engine layout");
static_assert(offsetof(tagTaskInfo, szSavePath) == 2528, "engine layout");
static_assert(offsetof(tagTaskInfo, nEngineParam2) == 3552, "engine layout");
static_assert(offsetof(tagTaskInfo, nEngineParam3) == 3556, "engine layout");
static_assert(offsetof(tagTaskInfo, pUserData) == 3560, "engine layout");
static_assert(offsetof(tagTaskInfo, pfnVideoInfoCallback) == 3560 + sizeof(void *),
              "engine layout");
static_assert(offsetof(tagTaskInfo, pfnStateCallback) == 3560 + 2 * sizeof(void *),
              "engine layout");
static_assert(sizeof(tagTaskInfo) == 3560 + 3 * sizeof(void *), "3572 or 3584 bytes, no padding");

#endif
