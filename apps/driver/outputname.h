/** Names for finished files that destroy nobody else's. */
#ifndef VIDEODOWN_DRIVER_OUTPUTNAME_H
#define VIDEODOWN_DRIVER_OUTPUTNAME_H

#include "driver/downloadtask.h"

#include <QString>

#include <optional>
#include <variant>

/** A title under which the library will write to free names only. */
struct OutputName
{
    QString title;        ///< to be set as the task's title
    QString reservedCopy; ///< empty file that keeps the copy's name free; empty when none is needed
    bool isOwn = false;   ///< the name the task had before; what is there may be overwritten
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
};

/**
 * The library makes names unique in the downloads folder, but copies over whatever has the same
 * name in the output folder. This finds a name (title, title_0, title_1, ...) that is free in both,
 * and reserves it in the latter, which also shows early whether that folder can be written.
 *
 * A name that the task had before comes first, if it suits and what is there may be replaced; if it
 * does not, the empty files that kept it free are removed.
 */
std::variant<OutputName, FailureReason> chooseOutputName(const OutputPlace &place);

/** What a finished task left on disk. */
struct FinishedFiles
{
    QString video; ///< path of the downloaded file
    QString copy;  ///< path of its copy; empty when none was to be made
};

/** What is not there: the library does not report errors of the copy. Nothing when all is well. */
std::optional<FailureReason> missingFile(const FinishedFiles &files);

#endif
