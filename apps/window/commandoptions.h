/** The options of videodown-window, and what they say. */
#ifndef VIDEODOWN_WINDOW_COMMANDOPTIONS_H
#define VIDEODOWN_WINDOW_COMMANDOPTIONS_H

#include <QCommandLineOption>
#include <QCoreApplication>

namespace windowoptions {

inline QCommandLineOption history()
{
    return {QStringLiteral("history"), QCoreApplication::translate("main", "The history file."),
            QStringLiteral("file")};
}

/** What the program does. */
inline QString description()
{
    return QCoreApplication::translate(
        "main", "Shows the videos of the history and downloads those of the pages that are added: "
                "pasted, dropped, or named on the command line. A second start hands its addresses "
                "to the window that is open.");
}

} // namespace windowoptions

#endif
