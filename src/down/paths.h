/** Path rules shared by the files of src/down. Internal. */
#ifndef VIDEODOWN_DOWN_PATHS_H
#define VIDEODOWN_DOWN_PATHS_H

#include <QByteArray>
#include <QString>

/** "/", whatever the platform: the separator of every path the library makes. */
extern const QChar g_BackSlash;

/** The path with every backslash turned into "/". */
inline QString withForwardSlashes(QString path)
{
    return path.replace(u'\\', g_BackSlash);
}

/** A path's or key's form at the engine boundary and in file functions. */
inline QByteArray localForm(const QString &text)
{
    return text.toLocal8Bit();
}

#endif
