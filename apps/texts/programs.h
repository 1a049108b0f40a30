/** What the programs say of themselves: the source of manual pages and completions. */
#ifndef VIDEODOWN_TEXTS_PROGRAMS_H
#define VIDEODOWN_TEXTS_PROGRAMS_H

#include <QCommandLineOption>
#include <QList>
#include <QString>

namespace programs {

/** A command of videodown. */
struct CommandFacts
{
    QString name;
    QString usage;
    QString description;
    QList<QCommandLineOption> options;
    bool takesTasks = false; ///< its arguments name tasks of the history
};

QList<CommandFacts> commands();

/** "-f, --format EXT", for instance. */
QString termFor(const QCommandLineOption &option);

/** The first clause, without the stop that ends it. */
QString inShort(const QString &text);

/** Empty when there is no such program. */
QByteArray manualOf(const QString &program);

} // namespace programs

#endif
