/** What the program says of its commands, and which options each of them takes. */
#ifndef VIDEODOWN_CLI_COMMANDTEXTS_H
#define VIDEODOWN_CLI_COMMANDTEXTS_H

#include "commandline.h"

/** Groups of options that commands share. */
enum OptionGroup : unsigned {
    FormatOptions = 1U << 0U,     ///< --format
    WishOptions = 1U << 1U,       ///< --from, --keep-source
    ConnectionOptions = 1U << 2U, ///< --proxy, --retries, --video-info, ...
    ReportOptions = 1U << 3U,     ///< --json, --quiet, --verbose, --log
    TransferOptions = 1U << 4U,   ///< --jobs, --limit-rate, --no-thumbnails, ...
    FolderOptions = 1U << 5U,     ///< --output, --downloads, --again, --dry-run
    HistoryOptions = 1U << 6U,    ///< --history
    JsonOption = 1U << 7U,        ///< --json alone
    DeleteOption = 1U << 8U,      ///< --delete-files
    ConvertOption = 1U << 9U,     ///< --convert
    ConflictOption = 1U << 10U,   ///< --on-conflict
};

struct CommandText
{
    Command command;
    const char *name;
    const char *usage;
    const char *description;
    unsigned options;   ///< of OptionGroup
    int leastArguments; ///< fewer are an error
    int mostArguments;  ///< more are an error; -1: any number
};

/** The help on the whole program. */
extern const char *const overviewText;

/** Null when there is no such command. */
const CommandText *commandNamed(const QString &name);

/** In the order in which the help names them. */
QList<const CommandText *> allCommands();

#endif
