/** What an application asks of the driver for one video, and what it hears back. Plain values. */
#ifndef VIDEODOWN_DRIVER_DOWNLOADTASK_H
#define VIDEODOWN_DRIVER_DOWNLOADTASK_H

#include "driver/videooffer.h"
#include "history/cxmlprofile.h"

#include <QString>

/** More videos than this are never downloaded at once. */
constexpr int maxVideoLimit = 100;

/** What is to be done when a file with the video's name is there, and is not the task's own. */
enum class OnConflict {
    Rename, ///< the video gets a number
    Skip,   ///< it is not downloaded
    /** It has a number until it is complete, and then takes the place of the file. Not of a file of
     * another task of the list, nor under the name of an unfinished download: then it keeps its
     * number. */
    Overwrite,
};

/** One video to fetch. */
struct DownloadRequest
{
    QString address;      ///< of the video page; http or https, at most 1023 bytes
    QString outputFolder; ///< absolute; made when it is missing; empty: the downloads folder
    /** Where the engine writes: absolute; exists. Empty: as in the settings. */
    QString downloadFolder;
    /**
     * The file that is finally wanted. An empty extension or a size of 0 leaves that to what the
     * site offers; the task's own profile then says what was chosen.
     */
    Profile_Desc profile;
    bool keepSource = false;  ///< deliver the video as downloaded, in the output folder
    bool inspectOnly = false; ///< only ask the site what it offers; fetch and note nothing
    bool again = false;       ///< also when the task's file is there already
    /** A finished task with its file: fetch a larger picture, of the profile's size, in its place.
     */
    bool upgrade = false;
    OnConflict onConflict = OnConflict::Rename; ///< not of upgrades, which keep their name
};

/** How a task ended. */
enum class DownloadOutcome {
    Finished, ///< the file exists (for inspections: the site offers formats)
    Failed,   ///< see the cause
    Stopped,  ///< the application stopped it
    Skipped,  ///< a file with its name is there: the list is as if it had not been asked for
};

/** What a finished task found. */
enum class Finding {
    Downloaded,     ///< the site's video, which is here now
    AlreadyThere,   ///< the file of an earlier run; nothing was fetched
    AlreadyAsLarge, ///< an upgrade that asks for no larger picture than there is
    NoneLarger,     ///< an upgrade for which the site has no larger picture
};

/** Pixels of a picture. */
struct PictureSize
{
    int width = 0;
    int height = 0;
};

/** Why something failed, and what the user can do about it. */
struct FailureReason
{
    QString cause;  ///< to stand behind a colon: "the site answered 404 Not Found"
    QString advice; ///< a sentence; may be empty
};

/** A task's end; announced exactly once for each task. */
struct DownloadResult
{
    QString key;     ///< task key
    QString address; ///< as in the request
    QString title;   ///< as the site gave it; empty when that is not known
    DownloadOutcome outcome = DownloadOutcome::Failed;
    QString path; ///< absolute path of the finished video, or of what had a skipped one's name
    FailureReason failure;                 ///< of a failed task
    Finding finding = Finding::Downloaded; ///< of a finished task
    PictureSize former;                    ///< of an upgrade: the picture before it
    PictureSize picture;                   ///< of an upgrade: the picture now
    VideoOffer offer;                      ///< of a finished inspection
    int seconds = 0;                       ///< of a finished inspection: the video's length
    bool overwrote = false;                ///< it has taken the place of another file
    QString notOverwritten; ///< why it has not, for people; empty when it did not try
};

/** How far a running video is. */
struct DownloadProgress
{
    QString key;               ///< task key
    QString title;             ///< as the site gave it
    qint64 received = 0;       ///< bytes so far
    qint64 total = 0;          ///< bytes in all; 0 while that is not known
    qint64 bytesPerSecond = 0; ///< 0 while that is not known
    bool paused = false;       ///< until it is continued, no byte comes
};

/** What all tasks of a driver come to at a moment. */
struct DownloadTotals
{
    int waiting = 0;           ///< tasks that are not at the engine
    int parsing = 0;           ///< tasks whose site is being asked
    int downloading = 0;       ///< tasks whose video is on its way, the paused ones too
    int paused = 0;            ///< those of them that are paused
    qint64 received = 0;       ///< bytes of the videos that are on their way
    qint64 total = 0;          ///< their bytes in all, as far as that is known
    qint64 bytesPerSecond = 0; ///< of all of them together
};

#endif
