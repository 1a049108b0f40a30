/**
 * The download controller: the one object through which an application drives the library.
 *
 * Threads: every operation may be called from any thread, also from inside the application's
 * callbacks; one re-entrant lock (down/controllerlock.h) serialises them. Callbacks run on the
 * engine's threads without that lock. Operations on a task handle do not check it: it must point at
 * a record that lives.
 *
 * Results: -1 from an operation that sends a request means that it was refused, and that no event
 * follows. A text that does not fit the engine's record counts as a refusal. 0 from the queueing
 * operations also says that nothing was sent (yet).
 *
 * Keys: a task key is 32 upper-case hexadecimal digits made from the page address (`GetURLToMD5`);
 * an image key, the task key followed by "1", names the task's thumbnail.
 */
#ifndef VIDEODOWN_DOWN_CDOWN_H
#define VIDEODOWN_DOWN_CDOWN_H

#include "down/controllerlock.h"
#include "engine/taskengine.h"
#include "engine/visibility.h"
#include "history/cxmlhistory.h"
#include "video/videoformat.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>

/** Tells the application what a better-video check found: 1 a better format, 0 none. */
using BetterVideoCallbackFunction = void (*)(void *user, const char *key, int better);

/** What an application hands the constructor; read during construction only. */
struct tagDownInfo
{
    /** The application's context, handed back to its callbacks. While null, no state or video-info
     * callback is made. */
    void *pUserData = nullptr;
    /** Called after the library handled a video-info event; may be null. Runs without the lock. */
    VideoInfoCallbackFunction pfnVideoInfoCallback = nullptr;
    /** Called after the library handled a state event; may be null. Runs without the lock. */
    StateCallbackFunction pfnStateCallback = nullptr;
    /** Choose formats by the task's profile even for tasks that keep their source video. */
    bool bUseProfileFmt = false;
    /** Only tested for emptiness, by `AutoSaveXmlFile`. */
    QString strXmlFile;
    /** Folder into which the engine writes; it must exist. */
    QString strDownloadPath;
    /** Called by the better-video check with the lock released; may be null. */
    BetterVideoCallbackFunction pfnBetterVideoCallback = nullptr;
    /** How many videos may be downloaded at once. */
    int nThreadNum = 0;
};

/** What a converter needs to know of a finished task; filled by `CDown::getConvertInfo`. */
struct tagConvertInfo
{
    std::int32_t nConvert = 0; ///< 1: convert; 0: nothing to do, and the other fields are untouched
    QString strSrcFile;        ///< the downloaded file
    QString strDstFile;        ///< the file to make
    Profile_Desc ProfileDesc;  ///< how to make it
};

// State shared by the process, protected by the controller lock.
#pragma GCC visibility push(default)
extern int DOWN_THREADNUM_MAX VIDEODOWN_GUARDED;        ///< download thread limit; 0 at start
extern bool g_bApplicationExit VIDEODOWN_GUARDED;       ///< user stops start nothing; true at start
extern bool g_bStopAll VIDEODOWN_GUARDED;               ///< a stop-all is in force; false at start
extern QStringList m_DownLoadingList VIDEODOWN_GUARDED; ///< keys of videos at the engine
extern QStringList m_DownloadAllTask VIDEODOWN_GUARDED; ///< keys of all requests at the engine
extern QStringList m_ConverterList VIDEODOWN_GUARDED;   ///< keys parsed again for a conversion
extern QStringList m_ReDownLoadList VIDEODOWN_GUARDED;  ///< keys parsed again by `ReDownLoad`
#pragma GCC visibility pop

/**
 * Copies a file's bytes; an existing destination is replaced. A source that cannot be opened leaves
 * the destination untouched, and a file copied onto itself stays as it is. Takes no lock.
 * @return false when a file could not be opened; errors while copying are not detected
 */
VIDEODOWN_PUBLIC bool CopyFileC(char *source, char *destination);

/** One controller exists per process at a time. */
class VIDEODOWN_PUBLIC CDown
{
public:
    // ---- Life cycle and configuration (lifecycle.cpp)

    /** @param info read during the call; null counts as an empty record */
    explicit CDown(tagDownInfo *info);
    /**
     * Empties the lists and deletes the task list with its records. Does not call the engine: stop
     * requests and shut the engine down first, so that no event finds the controller gone.
     */
    ~CDown();
    CDown(const CDown &) = delete;
    CDown &operator=(const CDown &) = delete;

    /** Initialises the engine. Takes no lock. */
    static void Downinit();
    /** Releases the engine. Takes no lock. @return the engine's result */
    static int DownUninit();
    /** Ends the engine's work: no event comes after it. Takes no lock. @return the engine's result
     */
    static int Quit();
    /** Passes `path` to the engine. @return the engine's result */
    static int SetProductAppDataPath(const char *path);

    /**
     * Sets the thread limit and, when it changes, all `n` slots free. The limit on requests at the
     * engine stays as constructed (thread limit + 3).
     */
    void setDownThreadNum(int n);
    /** 1: requests use the proxy set by `setProxyInfo`. */
    void setProxySet(int flag);
    /** Copies the record; its texts are NUL-terminated. Null changes nothing. */
    void setProxyInfo(tagProxyParam *param);
    /** Whether a history file was named at construction. Saves nothing. */
    bool AutoSaveXmlFile();
    /** Reserved; does nothing. @return 0 */
    static int Start(const QString &key);
    /** Reserved; does nothing. @return 0 */
    static int ParsePause(const QString &key);

    // ---- Parsing (parsequeue.cpp): at most three parses and thumbnails at once

    /**
     * Makes the task for `url`, replacing one with the same key, and starts or queues its parse.
     * @param saveAsPath  output folder
     * @param profile     copied; null leaves the new task's profile empty
     * @param isOrgVideo  keep the video as downloaded
     * @return 0 when an argument is empty or the parse waits or could not be sent, else the
     * engine's
     */
    int DoParseVideo(const QString &url, const QString &saveAsPath, Profile_Desc *profile,
                     bool isOrgVideo);
    /** Takes a parse slot, or queues the key. @return whether a slot was taken */
    bool ParseLock(const QString &key);
    /** Sends a parse; the caller holds a slot. @return the engine's result, 0 when nothing was sent
     */
    int PaseVideoInfo(const QString &url, const QString &key);
    /** Starts the parse of an existing task. @return whether the engine's result was not 0 */
    bool ParseStart(const QString &key);
    /** Ends a parse and starts the oldest waiting one. @return `ParseStart` of that one, or false
     */
    bool ParseUnlock(const QString &key);
    /** Parses an existing task again; unless that has to wait, its next download keeps the file
     * name.
     * @return as for a parse, 0 when it waits
     */
    int ReDownLoad(const QString &url, const QString &key);
    /** Parses an existing task again for a conversion. @return whether the parse returned 0 */
    bool ConverterParse(const QString &url, const QString &key);
    /**
     * Gives the task the profile and, when that wants a larger picture than the task has, parses it
     * again. @param profile null keeps the task's own. @return whether that parse was asked for,
     * sent or not
     */
    bool IsReDownLoadVideo(const QString &key, Profile_Desc *profile);

    // ---- Download queue (downloadqueue.cpp): at most DOWN_THREADNUM_MAX videos at once

    /**
     * Downloads a parsed task's thumbnail and, with `withVideo`, its video, after the better-video
     * check. @return the last request's result: -1 refused, 0 also when it waits or was not sent
     */
    int DoDownloadVideo(const QString &key, bool withVideo);
    /** Takes a download slot (or queues the key) and sends the video. @return see `DoDownloadVideo`
     */
    int DownloadVideo(const QString &key);
    /** Takes a download slot, or queues the key. @return whether a slot was taken */
    bool DownloadLock(const QString &key);
    /** Starts the oldest waiting video; `reset` is not used. @return whether that returned 0 */
    bool QueueDownload(bool reset);
    /** Takes a parse slot (or queues the image key) and sends the thumbnail. */
    int DownloadImage(const QString &imageKey);
    /** Takes a thumbnail slot, or queues the image key. @return whether a slot was taken */
    bool ImageLock(const QString &imageKey);
    /** Gives a thumbnail slot back. @return 0 */
    int ImageUnlock(const QString &imageKey);
    /** Completes and sends a thumbnail request that `DownloadRun` prepared. */
    int DownloadImageRun(const QString &imageKey, CXMLInfo *record, tagTaskInfo request);
    /**
     * Ends a download: gives its slots back and starts waiting work of the same type.
     * @param reset  the task must be parsed again: its parse state becomes -1
     * @return whether the last attempt to start something returned 0; false also when nothing more
     * waited
     */
    bool DownloadUnlock(const QString &key, FILE_TYPE type, bool reset);
    /** Ends a request and gives its slots back without starting anything. */
    void ReleaseLock(const QString &key);

    // ---- Download run (downloadrun.cpp)

    /**
     * Chooses the format, names the file, records both in the task and sends the request; the
     * caller holds a slot. @param isVideo false: `key` is an image key
     */
    int DownloadRun(const QString &key, bool isVideo);

    // ---- Stop and pause (stop.cpp)

    /** Stops one task: running work ends by an event, waiting work leaves its list at once. */
    int Stop(const QString &key, bool flag);
    /** The same for each task at shut-down: until the next parse, nothing new starts. */
    int StopAll(const QString &key);
    /** Pauses the task's running request, or lets it go on. @return the engine's result */
    int Pause(const QString &key);

    // ---- Formats (formats.cpp); see video/formatentry.h and video/formatselection.h

    /** The stream address of format `fmt` among entries "number|address"; empty when none. */
    static QString getHttp(const QStringList &entries, int fmt);
    /** The same for a whole list; the first stream, and `fallback` 1, when there is none. */
    static QString getDownLoadHttp(const QString &fmtStreamMap, int fmt, int &fallback);
    /** Copies `src`'s main group, but not its area, into both groups of `dst`. */
    static void CopyVideoStruct(tagVideoInfo *src, tagVideoInfo *dst);
    /**
     * Chooses by the wanted picture: the same area, else the next larger one.
     * @param want gets the number and extension of a format of its exact area
     * @return false when every format is smaller; `out`'s fallback group is then the first format
     */
    static bool getBestVideoFmt(const QString &fmtList, tagVideoInfo *want, tagVideoInfo *out);
    /** Chooses the best FLV format that has a stream. `want` is not read. @return false always */
    static bool getBestVideoSrcFmt(const QString &fmtStreamMap, const QString &fmtList,
                                   tagVideoInfo *want, tagVideoInfo *out);
    /** Like `getBestVideoFmt`, but falls back to the largest "mp4" format, returning false. */
    static bool FindVideSizeToEqual(const QString &fmtList, tagVideoInfo *want, tagVideoInfo *out);

    // ---- Better-video check (bettervideo.cpp)

    /**
     * For a task parsed again for a conversion: whether the site offers a larger picture than the
     * one on disk. If so, the old files are deleted. Tells the application either way.
     * @return false when the download must not take place
     */
    bool IsBetterVideo(const QString &key);

    // ---- Output naming (naming.cpp)

    /** The path for a task's video: made unique, unless the key was parsed by `ReDownLoad`. */
    QString getVideoFileName(const QString &folder, const QString &title, const QString &extension,
                             const QString &key);
    /** folder/name+extension; `makeUnique` tries name_0, name_1, ... until no such file exists. */
    static QString CustomVideoName(const QString &folder, const QString &name,
                                   const QString &extension, bool makeUnique);
    /** The path's name without folder and extension; "" and `extension` unchanged without a "/". */
    static QString GetFileBaseName(const QString &path, QString &extension);
    /**
     * Renames the downloaded file and its copy in the output folder. Files are renamed without the
     * lock. @return false when one was not renamed: with the first, nothing changes; with the
     * second, the record has the new names
     */
    bool setSaveAsFileName(const QString &key, const QString &newFilePath,
                           const QString &newBaseName);
    /** Stores the two texts; renames nothing. @return `AutoSaveXmlFile`, false without such a task
     */
    bool ReNameSaveAsFileName(const QString &key, const QString &saveAsFileName,
                              const QString &saveAsExt);
    /** The path of the copy in the output folder. */
    static QString getSaveAsFileName(void *handle);
    /** The same by key; "" without such a task. */
    QString getSaveAsFileName(const QString &key);
    /** The output extension; the profile's when the record has none. */
    static QString getSaveAsExt(void *handle);
    /** "flv" for a task that keeps its source video, else the profile's extension. */
    static QString getProFileExt(void *handle);

    // ---- Finished files (finishedfiles.cpp)

    /**
     * Copies the finished video of a task that keeps its source into the output folder. The copy
     * runs without the lock. @return true for keys that are not 32 characters long
     */
    bool CopyVideo(const QString &key);
    /** Tells whether and how a task's video is to be converted. @return false without such a task
     */
    bool getConvertInfo(const QString &key, tagConvertInfo *info);

    // ---- Removal (removal.cpp): sends nothing to the engine, leaves all waiting lists alone

    /** Deletes the video and the thumbnail. @return whether both were deleted */
    bool DeleteVideoFile(int position);
    /** The same by key; false without such a task. */
    bool DeleteVideoFile(const QString &key);
    /** Takes the record out of the list; it is the caller's from then on. */
    void remove(int position, bool deleteFiles);
    /** The same by key. */
    void remove(const QString &key, bool deleteFiles);
    /** Deletes every record; all handles become invalid. */
    void removeAll(bool deleteFiles);

    // ---- Task keys (taskkey.cpp)

    /** The task key of a page address, hashed exactly as given; "" for an empty one. */
    static QString GetURLToMD5(const QString &url);

    // ---- Profiles and accessors (accessors.cpp): single reads and writes of record fields

    /** Copies all 26 fields. */
    static void CopyProFile(Profile_Desc *dst, Profile_Desc *src);
    /** Copies `profile` into the task's own. */
    static void setProfileDesc(void *handle, Profile_Desc *profile);
    /** Copies the task's own profile into `profile`. */
    static void getProfileDesc(void *handle, Profile_Desc *profile);
    /** Copies `profile` into the task's own; nothing without such a task. */
    void SaveProfile(const QString &key, Profile_Desc *profile);

    static qint64 getVideoSize(void *handle);            ///< `FileSize`, bytes
    static void setVideoSize(void *handle, qint64 size); ///< `FileSize`, bytes
    bool setVideoSize(const QString &key, qint64 size);  ///< false without such a task
    static int getDuration(void *handle);                ///< `Duration`, seconds
    static int getState(void *handle);                   ///< `State`
    static void setState(void *handle, int state);       ///< `State`
    static int getProgress(void *handle);                ///< `Progress`
    int getProgress(const QString &key);                 ///< `Progress`; -1 without such a task
    void setProgress(const QString &key, int progress);  ///< nothing without such a task
    int getDownState(const QString &key);                ///< `DownState`; -1 without such a task
    void setDownState(const QString &key, int state);    ///< nothing without such a task
    int getParseState(const QString &key);               ///< `ParseState`; -1 without such a task
    void setParseState(const QString &key, int state);   ///< nothing without such a task
    static QDateTime getDownLoadDate(void *handle);      ///< `DownLoadDate`
    static QString getTitle(void *handle);               ///< `Title`
    static QString getOrgWebSite(void *handle);          ///< `OrgWebSite`
    static QString getDownLoadURL(void *handle);         ///< `DownLoadURL`
    static QString getVideoID(void *handle);             ///< `VideoID`
    static QString getMD5(void *handle);                 ///< `MD5Code`, the task key
    static QString getFileName(void *handle);            ///< `FileName`
    static QString getBaseName(void *handle);            ///< `BaseName`
    static QString getSaveAsPath(void *handle);          ///< `SaveAsPath`
    static QString getImagePath(void *handle);           ///< `ImagePath`

    CXMLInfo *getXMLInfo(const QString &key); ///< the record, or null
    CXMLInfo *item(int position);             ///< the record; position from 0 to count()-1
    int count();                              ///< number of tasks
    int getIndex(const QString &key);         ///< list position, or -1
    bool TaskExist(const QString &key);       ///< whether a task has the key

    // ---- History file (lifecycle.cpp); see CXMLHistory

    /** Adds the tasks stored in `path`. The lock is not held while a missing file is announced. */
    void LoadFromFile(const QString &path);
    /** Writes all tasks to `path`, in place. */
    void SaveToFile(const QString &path);

    // ---- Fields, all protected by the controller lock

    void *m_pUserData VIDEODOWN_GUARDED;       ///< the application's context
    CXMLHistory *m_pHistory VIDEODOWN_GUARDED; ///< the task list, owned
    VideoInfoCallbackFunction m_pfnVideoInfoCallback VIDEODOWN_GUARDED;     ///< may be null
    StateCallbackFunction m_pfnStateCallback VIDEODOWN_GUARDED;             ///< may be null
    BetterVideoCallbackFunction m_pfnBetterVideoCallback VIDEODOWN_GUARDED; ///< may be null
    CDown *m_pSelf VIDEODOWN_GUARDED;              ///< user pointer of download requests
    tagProxyParam m_ProxyParam VIDEODOWN_GUARDED;  ///< zeroed until set
    int m_nProxySet VIDEODOWN_GUARDED;             ///< 1: requests carry the proxy
    int m_nParseFree VIDEODOWN_GUARDED;            ///< free parse and thumbnail slots, 0 to 3
    int m_nDownFree VIDEODOWN_GUARDED;             ///< free video slots, 0 to DOWN_THREADNUM_MAX
    int m_nEngineTaskMax VIDEODOWN_GUARDED;        ///< most keys in m_DownloadAllTask
    bool m_bUseProfileFmt VIDEODOWN_GUARDED;       ///< see tagDownInfo
    QString m_strXmlFile VIDEODOWN_GUARDED;        ///< see tagDownInfo
    QString m_strDownloadPath VIDEODOWN_GUARDED;   ///< see tagDownInfo
    QStringList m_ParseWaitList VIDEODOWN_GUARDED; ///< task keys waiting to be parsed, oldest first
    QStringList m_DownloadWaitList VIDEODOWN_GUARDED; ///< task keys waiting for a video slot
    QStringList m_ImageWaitList VIDEODOWN_GUARDED;    ///< image keys waiting for a slot

private:
    // The release chains run as loops (a chain of refusals would exhaust the stack as calls), so
    // the senders below report a refusal instead of releasing what it took.
    int sendParse(const QString &url, const QString &key) VIDEODOWN_NEEDS_LOCK;
    void endParse(const QString &key) VIDEODOWN_NEEDS_LOCK;
    int startVideo(const QString &key, std::optional<QString> &refused) VIDEODOWN_NEEDS_LOCK;
    int sendVideo(const QString &key, std::optional<QString> &refused) VIDEODOWN_NEEDS_LOCK;
    bool startWaitingVideo(std::optional<QString> &refused) VIDEODOWN_NEEDS_LOCK;
    bool startWaitingVideos(std::optional<QString> &refused) VIDEODOWN_NEEDS_LOCK;
    bool startWaitingImage() VIDEODOWN_NEEDS_LOCK;
    void endDownload(const QString &key, bool reset) VIDEODOWN_NEEDS_LOCK;
    void freeDownloadSlot() VIDEODOWN_NEEDS_LOCK;
    void freeParseSlot() VIDEODOWN_NEEDS_LOCK;
    bool takeImageSlot(const QString &imageKey) VIDEODOWN_NEEDS_LOCK;
    bool engineHasRoomFor(const QString &key) const VIDEODOWN_NEEDS_LOCK;
    int stopAtEngine(const QString &key) VIDEODOWN_NEEDS_LOCK;
    tagVideoInfo chooseFormat(const CXMLInfo &record) const VIDEODOWN_NEEDS_LOCK;
    void prepareVideo(CXMLInfo &record) VIDEODOWN_NEEDS_LOCK;
    tagTaskInfo downloadRequest(const CXMLInfo &record) const VIDEODOWN_NEEDS_LOCK;
    std::optional<bool> replaceByBetterVideo(const QString &key) VIDEODOWN_NEEDS_LOCK;
    void announceBetterVideo(const QString &key, bool better);
};

#endif
