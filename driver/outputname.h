/** Names for finished files that destroy nobody else's. */
#ifndef VIDEODOWN_DRIVER_OUTPUTNAME_H
#define VIDEODOWN_DRIVER_OUTPUTNAME_H

#include "down/cdown.h"
#include "driver/downloadtask.h"
#include "driver/taskrecord.h"
#include "engine/visibility.h"

#include <QSet>
#include <QString>

#include <functional>
#include <optional>
#include <variant>

/** A title under which the library will write to the task's own files only. */
struct OutputName
{
    QString title;      ///< to be set as the task's title
    QString video;      ///< path of the downloaded file
    QString copy;       ///< path of its copy; empty when it needs no name of its own
    bool isOwn = false; ///< the names the task had before; what is there may be overwritten
};

/** What `chooseOutputName` needs to know. */
struct OutputPlace
{
    QString title;          ///< as the site gave it
    QString key;            ///< task key; names files whose title gives no name
    QString extension;      ///< without the dot
    QString downloadFolder; ///< where the engine writes
    QString copyFolder;     ///< where the library copies to; made when missing
    bool copies = false;    ///< whether the library will copy at all
    QString ownVideo;       ///< path that the task had before; empty for none
    QString ownCopy;        ///< its copy
    qint64 ownSize = 0;     ///< bytes of these files when they are complete
    QSet<QString> claimed;  ///< paths of videos that are about to be reserved
    UnfinishedFiles unfinished;
    /** Whether another task awaits this path, see `isAwaited`; may be empty. */
    std::function<bool(const QString &path)> isAwaited;
};

/**
 * Whether a task other than that of `key` would continue a download to `path`: it would lose what
 * has arrived if anything else got this name. Takes the controller lock.
 * @param unfinished which files the engine leaves of an unfinished download; may be empty
 *
 * Public for the command's dry run.
 */
VIDEODOWN_PUBLIC bool isAwaited(CDown &controller, const QString &key, const QString &path,
                                const UnfinishedFiles &unfinished);

/**
 * The library makes names unique in the downloads folder, but copies over whatever has the same
 * name in the output folder. This finds a name (title, title_0, title_1, ...) that is free in both,
 * but takes neither: see `reserve`. Makes the output folder.
 *
 * A name that the task had before comes first, if it suits and what is there may be replaced; if it
 * does not, what the task left under it is removed.
 */
std::variant<OutputName, FailureReason> chooseOutputName(const OutputPlace &place);

// The next three are public for the command's dry run.

/** The same, but makes and removes nothing. */
VIDEODOWN_PUBLIC OutputName plannedName(const OutputPlace &place);

/** The name that the video would have if no name were ever taken. */
VIDEODOWN_PUBLIC OutputName plainName(const OutputPlace &place);

/**
 * What stands in the place of the file that is finally wanted, and is not the task's own.
 * @return its path; empty when there is nothing
 */
VIDEODOWN_PUBLIC QString conflictWith(const OutputPlace &place);

/** What became of a name that was chosen. */
enum class Reservation {
    Done,  ///< it is the task's
    Taken, ///< somebody else was quicker: choose again
};

/**
 * Takes the name, by empty files where there are none. Where the downloaded file cannot be made,
 * that is left for the engine to tell.
 * @return the reason when the copy's file cannot be made
 */
std::variant<Reservation, FailureReason> reserve(const OutputName &name);

/** Removes the empty files. Others stay: nobody but their task fills them. */
void release(const OutputName &name);

/** What a finished task left on disk. */
struct FinishedFiles
{
    QString video; ///< path of the downloaded file
    QString copy;  ///< path of its copy; empty when none was to be made
};

/** What is not there: the library does not report errors of the copy. Nothing when all is well. */
std::optional<FailureReason> missingFile(const FinishedFiles &files);

#endif
