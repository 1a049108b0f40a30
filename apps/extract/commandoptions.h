/** The options of videodown-extract, and what they say. */
#ifndef VIDEODOWN_EXTRACT_COMMANDOPTIONS_H
#define VIDEODOWN_EXTRACT_COMMANDOPTIONS_H

#include <QCommandLineOption>
#include <QList>

namespace extractoptions {

extern const QCommandLineOption list;
extern const QCommandLineOption cookies;
extern const QCommandLineOption program;
extern const QCommandLineOption timeLimit;

QList<QCommandLineOption> all();

/** What the program does. */
QString description();

} // namespace extractoptions

#endif
