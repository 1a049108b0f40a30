#include "commandtexts.h"

#include <algorithm>
#include <array>
#include <iterator>

const char *const overviewText =
    "Usage: videodown COMMAND [options] [arguments]\n"
    "Downloads videos from video pages, and keeps a history of them.\n"
    "\n"
    "Commands:\n"
    "  get ADDRESS...          download the videos of these pages\n"
    "  formats ADDRESS...      show in which formats the site offers them\n"
    "  list                    show the tasks in the history\n"
    "  show TASK               show everything about a task\n"
    "  resume                  continue interrupted and stopped downloads\n"
    "  retry [TASK...]         try failed and stopped downloads again\n"
    "  upgrade TASK -f FORMAT  replace a finished video by a larger one\n"
    "  rename TASK NAME        rename the file of a finished task\n"
    "  remove TASK...          take tasks out of the history\n"
    "  help [COMMAND]          show this help, or that of a command\n"
    "A TASK is the address of a page, or the beginning of a key that \"list\" shows.\n"
    "\n"
    "Options:\n"
    "  -h, --help              show this help\n"
    "  -v, --version           show the version\n"
    "\n"
    "Exit status: 0 all tasks are finished or skipped; 1 a task failed or was stopped, there is "
    "no\n"
    "such TASK, or the results or the history could not be written; 2 wrong options or arguments;\n"
    "3 a folder or the log cannot be used; 4 the history cannot be used, for instance because\n"
    "another program is using it. With 2, 3 and 4, nothing was begun. An interrupted program ends "
    "by\n"
    "the signal (130 after Ctrl-C).\n";

namespace {

constexpr unsigned transfers = ConnectionOptions | ReportOptions | TransferOptions | HistoryOptions;

constexpr std::array commands{
    CommandText{
        Command::Get, "get", "videodown get [options] ADDRESS...",
        "Downloads the video of each page. Prints the path of each finished video on standard\n"
        "output, one per line; everything else goes to standard error. A name that is taken gets "
        "a\n"
        "number, if --on-conflict does not say otherwise. A video that is in the history, with "
        "its\n"
        "file still there, is not downloaded again. Ctrl-C stops the downloads, a second Ctrl-C "
        "quits\n"
        "at once; interrupted downloads resume where they ended.",
        transfers | FormatOptions | WishOptions | FolderOptions | ConvertOption | ConflictOption, 0,
        -1},
    CommandText{
        Command::Formats, "formats", "videodown formats [options] ADDRESS...",
        "Shows in which formats the site offers each video, and marks with \"*\" the one that\n"
        "\"get\" would download with the same options. Downloads nothing, and does not use the\n"
        "history.",
        ConnectionOptions | ReportOptions | FormatOptions | WishOptions, 0, -1},
    CommandText{
        Command::List, "list", "videodown list [options]",
        "Shows the tasks in the history, one per line: the beginning of the key, the state,\n"
        "the size, the date and the title.",
        HistoryOptions | JsonOption, 0, 0},
    CommandText{
        Command::Show, "show", "videodown show [options] TASK",
        "Shows every field of a task, and how its video would have to be converted to be in\n"
        "the wanted format.",
        HistoryOptions | JsonOption, 1, 1},
    CommandText{
        Command::Resume, "resume", "videodown resume [options]",
        "Continues the downloads that were interrupted or stopped, in their folders and under\n"
        "their names. Reports like \"get\".",
        transfers | ConvertOption | ConflictOption, 0, 0},
    CommandText{
        Command::Retry, "retry", "videodown retry [options] [TASK...]",
        "Tries these tasks again; without a TASK, all that failed or were stopped. Reports\n"
        "like \"get\".",
        transfers | ConvertOption | ConflictOption, 0, -1},
    CommandText{
        Command::Upgrade, "upgrade", "videodown upgrade -f EXT:WxH [options] TASK",
        "Replaces the video of a finished task by a larger one, if it is smaller than asked for\n"
        "and the site has a larger one. The old video stays until the new one is complete.",
        transfers | FormatOptions, 1, 1},
    CommandText{
        Command::Rename, "rename", "videodown rename [options] TASK NAME",
        "Renames the file of a finished task, and its copy. Characters that are not allowed\n"
        "in file names are left out; the extension stays. An existing file is never replaced.",
        HistoryOptions, 2, 2},
    CommandText{Command::Remove, "remove", "videodown remove [options] TASK...",
                "Takes tasks out of the history. Their files stay without --delete-files.",
                HistoryOptions | DeleteOption, 1, -1},
};

} // namespace

const CommandText *commandNamed(const QString &name)
{
    const auto *const found =
        std::find_if(commands.begin(), commands.end(), [&name](const CommandText &command) {
            return name == QLatin1String(command.name);
        });
    return found == commands.end() ? nullptr : found;
}

QList<const CommandText *> allCommands()
{
    QList<const CommandText *> all;
    for (const CommandText &command : commands)
        all << &command;
    return all;
}
