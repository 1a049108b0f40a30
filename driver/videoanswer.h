/** Who has said what a page offers, and why an answer offers nothing. */
#ifndef VIDEODOWN_DRIVER_VIDEOANSWER_H
#define VIDEODOWN_DRIVER_VIDEOANSWER_H

#include "driver/downloadtask.h"
#include "engine/visibility.h"
#include "history/cxmlinfo.h"

#include <QString>

/** Who has said what a task's page offers. */
enum class AnswerSource {
    Unknown,   ///< nobody has yet
    Site,      ///< the site itself
    Command,   ///< the video-info command that the user has named
    Extractor, ///< the one that is asked where the site has no answer
};

/**
 * Who has answered for a task, as long as the task is kept: the default engine notes it behind the
 * first format in `fmt_list`, where the library passes over it. The caller holds the controller
 * lock.
 */
VIDEODOWN_PUBLIC AnswerSource answerSourceOf(const CXMLInfo &record);
/** The same from the list itself. */
VIDEODOWN_PUBLIC AnswerSource answerSourceOf(const QString &fmtList);

/** The source in one English word: "site", "command", "extractor"; empty for an unknown one. */
VIDEODOWN_PUBLIC QString answerSourceName(AnswerSource source);

/**
 * Why an answer without formats has none, for people.
 * @param videoInfoText the record's field of this name
 * @param advice for a page that offers nothing
 */
VIDEODOWN_PUBLIC FailureReason nothingOffered(const QString &videoInfoText, const QString &advice);

#endif
