/** Runs yt-dlp. */
#ifndef VIDEODOWN_EXTRACT_EXTRACTOR_H
#define VIDEODOWN_EXTRACT_EXTRACTOR_H

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <chrono>

namespace extractor {

struct Options
{
    QString program = QStringLiteral("yt-dlp"); ///< looked for in PATH unless it is a path
    QString cookieFile;                         ///< in Netscape's format; empty: none
    std::chrono::seconds timeLimit{50};
    qsizetype outputLimit = qsizetype{64} << 20; ///< bytes
};

struct Answer
{
    QByteArray json;
    QString problem; ///< why there is none, for people; empty on success
};

/**
 * Asks for one page, or a whole list of pages. Without a shell, any configuration file, a cache or
 * a download; the program ends with this one.
 */
Answer ask(const QString &address, bool asList, const Options &options);

} // namespace extractor

#endif
