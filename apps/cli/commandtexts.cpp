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
    "  resume                  go on with what was interrupted or stopped\n"
    "  retry [TASK...]         try failed and stopped tasks again\n"
    "  upgrade TASK -f FORMAT  fetch a larger picture of a finished task\n"
    "  rename TASK NAME        rename a finished task's file\n"
    "  remove TASK...          take tasks out of the history\n"
    "  help [COMMAND]          show this help, or a command's\n"
    "A TASK is a page's address, or the beginning of a key that \"list\" shows.\n"
    "\n"
    "Options:\n"
    "  -h, --help              show this help\n"
    "  -v, --version           show the version\n"
    "\n"
    "Exit status: 0 all tasks are done; 1 a task failed or was stopped, a TASK does not fit, or\n"
    "results or history could not be written; 2 wrong options or arguments; 3 a folder cannot be\n"
    "used; 4 the history cannot be used, for instance because another program uses it. With 2, 3\n"
    "and 4, nothing was begun. An interrupted program ends by the signal (130 after Ctrl-C).\n";

namespace {

constexpr unsigned transfers = ConnectionOptions | ReportOptions | TransferOptions | HistoryOptions;

constexpr std::array commands{
    CommandText{
        Command::Get, "get", "videodown get [options] ADDRESS...",
        "Downloads the video of each page. Prints the path of each finished video on standard\n"
        "output, one a line; everything else goes to standard error. Existing files are never\n"
        "overwritten: a name that is taken gets a number. A video that the history has, with its\n"
        "file still there, is not downloaded again. Ctrl-C stops the transfers, a second one ends\n"
        "at once; what was broken off goes on where it was when it is begun again.",
        transfers | FormatOptions | WishOptions | FolderOptions | ConvertOption, 0, -1},
    CommandText{
        Command::Formats, "formats", "videodown formats [options] ADDRESS...",
        "Shows in which formats the site offers each video, and marks with \"*\" the one "
        "that\n\"get\" would fetch with the same options. Downloads nothing, and leaves the "
        "history alone.",
        ConnectionOptions | ReportOptions | FormatOptions | WishOptions, 0, -1},
    CommandText{Command::List, "list", "videodown list [options]",
                "Shows the tasks in the history, one a line: the beginning of the key, the state, "
                "the\nsize, the date and the title.",
                HistoryOptions | JsonOption, 0, 0},
    CommandText{Command::Show, "show", "videodown show [options] TASK",
                "Shows every field of a task, and how its video would have to be converted to be "
                "what\nwas wanted.",
                HistoryOptions | JsonOption, 1, 1},
    CommandText{Command::Resume, "resume", "videodown resume [options]",
                "Goes on with the tasks that an interrupted program left and with those that were\n"
                "stopped, in their folders and under their names. Reports like \"get\".",
                transfers | ConvertOption, 0, 0},
    CommandText{Command::Retry, "retry", "videodown retry [options] [TASK...]",
                "Tries these tasks again, or all that failed when none is named. Reports like "
                "\"get\".",
                transfers | ConvertOption, 0, -1},
    CommandText{
        Command::Upgrade, "upgrade", "videodown upgrade -f EXT:WxH [options] TASK",
        "Downloads a larger picture of a finished task, if it has a smaller one than this "
        "and\nthe site has a larger one. The old video stays until the new one is complete.",
        transfers | FormatOptions, 1, 1},
    CommandText{Command::Rename, "rename", "videodown rename [options] TASK NAME",
                "Renames the file of a finished task, and its copy. Characters that file names do "
                "not\ntake are left out; the extension stays. An existing file is never replaced.",
                HistoryOptions, 2, 2},
    CommandText{Command::Remove, "remove", "videodown remove [options] TASK...",
                "Takes tasks out of the history. Their files stay, unless --delete-files is given.",
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
