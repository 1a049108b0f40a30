/**
 * The history file, in steps, so that a controller can keep its lock for the short ones only: the
 * file itself is read, written and missed without it. Internal to the library.
 */
#ifndef VIDEODOWN_HISTORY_HISTORYFILE_H
#define VIDEODOWN_HISTORY_HISTORYFILE_H

#include "engine/visibility.h"
#include "history/cxmlhistory.h"

#include <QByteArray>
#include <QString>

namespace VIDEODOWN_PUBLIC historyfile {

/** Whether a file exists at `path`. */
bool exists(const QString &path);
/** Shows the box that says the file is missing, where one can be shown; waits until it is closed.
 */
void announceMissing();

/** What was read of a history. */
struct Loaded
{
    QList<CXMLInfo *> tasks; ///< new records, the caller's
    bool isPlain;            ///< the file is of the form that `serialize` gives: nothing is wrong
                             ///< with it. Else it may still be well-formed
};
/** Reads the file, once; for any other than a plain one its tasks are those up to the first syntax
 * error. `history` is what the records are made for. No failure is reported. */
Loaded load(const QString &path, CXMLHistory *history);

/** What a file holds, free of everything that would end its parsing before its first real error. */
struct Content
{
    QByteArray utf8; ///< the file's bytes, when they were free of it; else empty
    QString text;    ///< else the text, with replacements
};

Content contentOf(const QByteArray &bytes);
/** The tasks in it, up to the first syntax error: new records, the caller's, made for `history`. */
QList<CXMLInfo *> tasks(const Content &content, CXMLHistory *history);

/** The whole file for the list as it stands. */
QByteArray serialize(const CXMLHistory &history);
/** Replaces the file's content. Failures go unreported. */
void write(const QString &path, const QByteArray &content);

} // namespace historyfile

#endif
