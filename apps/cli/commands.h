/** What the commands do, once their command line is read. */
#ifndef VIDEODOWN_CLI_COMMANDS_H
#define VIDEODOWN_CLI_COMMANDS_H

#include "commandline.h"
#include "exitstatus.h"

ExitStatus runGet(const CommandLine &line);
/** `get --dry-run`: asks the sites, and shows what would be downloaded. */
ExitStatus runDryRun(const CommandLine &line);
ExitStatus runFormats(const CommandLine &line);
ExitStatus runList(const CommandLine &line);
ExitStatus runShow(const CommandLine &line);
ExitStatus runResume(const CommandLine &line);
ExitStatus runRetry(const CommandLine &line);
ExitStatus runUpgrade(const CommandLine &line);
ExitStatus runRename(const CommandLine &line);
ExitStatus runRemove(const CommandLine &line);

#endif
