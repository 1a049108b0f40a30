#include "extract/commandoptions.h"

namespace extractoptions {

const QCommandLineOption list(QStringLiteral("list"),
                              QStringLiteral("Print the addresses of the pages in a playlist "
                                             "or channel, one per line."));
const QCommandLineOption cookies(QStringLiteral("cookies"),
                                 QStringLiteral("Read cookies from a file in Netscape's "
                                                "format, as browsers export it."),
                                 QStringLiteral("file"));
const QCommandLineOption program(QStringLiteral("program"),
                                 QStringLiteral("Run this instead of yt-dlp."),
                                 QStringLiteral("program"));
const QCommandLineOption timeLimit(QStringLiteral("time-limit"),
                                   QStringLiteral("Give up after so many seconds, 1 to 3600; "
                                                  "without this option: 50."),
                                   QStringLiteral("seconds"));

QList<QCommandLineOption> all()
{
    return {list, cookies, program, timeLimit};
}

QString description()
{
    return QStringLiteral(
        "Asks yt-dlp about a video page and prints the formats that come as one file "
        "over HTTP, as the lines of a video-info response.");
}

} // namespace extractoptions
