/** The command line, understood. */
#ifndef VIDEODOWN_CLI_COMMANDLINE_H
#define VIDEODOWN_CLI_COMMANDLINE_H

#include "driver/downloadtask.h"
#include "engine/taskengine.h"
#include "progressview.h"

#include <QCommandLineOption>
#include <QStringList>

#include <optional>
#include <variant>

struct CommandText;

enum class Command { Get, Formats, List, Show, Resume, Retry, Upgrade, Rename, Remove };

/** What is to be done; folders are as they were typed. */
struct CommandLine
{
    Command command = Command::Get;
    int jobs = 3;
    int retries = -1;    ///< -1: as usual
    int connections = 0; ///< most for each video; 0: as usual
    ProgressMode progress = ProgressMode::Auto;
    OnConflict onConflict = OnConflict::Rename;
    QStringList arguments;        ///< page addresses, or what names tasks
    QString newName;              ///< to rename to
    QString outputFolder;         ///< empty: the current folder
    QString downloadFolder;       ///< empty: the output folder
    Profile_Desc profile;         ///< open where the user left it open
    QString historyFile;          ///< empty: the usual one
    QString logFile;              ///< empty: none
    QString userAgent;            ///< empty: the engine's own
    qint64 limitRate = 0;         ///< bytes per second; 0: no limit
    QStringList videoInfoCommand; ///< empty: the site is asked itself
    std::optional<tagProxyParam> proxy;
    bool proxyFromEnvironment = false;
    bool useExtractor = true; ///< where the site has no video info
    bool keepSource = false;
    bool thumbnails = true;
    bool json = false;
    bool quiet = false;
    bool verbose = false;
    bool again = false;       ///< also what is there already
    bool dryRun = false;      ///< only show what would be done
    bool deleteFiles = false; ///< of removed tasks
    bool convert = false;     ///< what is not in the wanted form
};

/** A text that answers the command line already: help, the version, or what is wrong. */
struct Answer
{
    QString text;
    bool isError = false;
};

/** @param arguments the program's, its name included */
std::variant<CommandLine, Answer> readCommandLine(const QStringList &arguments);

/** The options that a command takes. */
QList<QCommandLineOption> optionsOf(const CommandText &command);

#endif
