/** Puts in order what a program that ended suddenly left of its tasks' files. */
#ifndef VIDEODOWN_DRIVER_LEFTOVERS_H
#define VIDEODOWN_DRIVER_LEFTOVERS_H

#include "driver/taskrecord.h"

#include <QString>
#include <QStringList>

/** The files of a finished task that is to have a larger picture. */
struct UpgradeFiles
{
    struct Pair
    {
        QString path;  ///< where the file belongs
        QString aside; ///< where it is kept until its successor is complete
    };
    QList<Pair> old;      ///< the video, and its copy if it has one
    QStringList fresh;    ///< the names that the new files will have
    qint64 freshSize = 0; ///< bytes of the new video; 0 while that is not known
};

/** The complete files of a task that take the place of others. */
struct MovedFiles
{
    struct Move
    {
        QString from;
        QString to;
    };
    QList<Move> moves; ///< in their order: of the copy if there is one, then of the video
    qint64 size = 0;   ///< bytes of each of them
};

namespace leftovers {

/** What a task may have left. Collected under the controller lock, removed without it. */
struct Names
{
    QStringList reserved;   ///< empty files that held a name
    QStringList unfinished; ///< files that nobody resumes
    QStringList folders;    ///< where a conversion may have been under way
    QString conversion;     ///< how the name of its file began; empty: there was none
};

/** How the name of the file begins that a task's video is being converted to. */
QString conversionPrefix(const QString &key);

/** What is left of this task's last run. The caller holds the controller lock. */
Names of(const CXMLInfo &record, const UnfinishedFiles &unfinished);

/** Removes what is there of them. */
void remove(const Names &names);

/**
 * Puts the old files of an upgrade that never ended back in their places, and removes what there is
 * of the new ones. A file that is neither stays, and the old one then stays aside.
 */
void undo(const UpgradeFiles &upgrade, const UnfinishedFiles &unfinished);

/** Has the record name its files as they are called now, however many were moved. The caller holds
 * the controller lock. */
void follow(CXMLInfo &record, const MovedFiles &files);

} // namespace leftovers

#endif
