/** The commands "remove" and "rename". */
#ifndef VIDEODOWN_CLI_EDITCOMMAND_H
#define VIDEODOWN_CLI_EDITCOMMAND_H

#include "commandline.h"
#include "exitstatus.h"

ExitStatus runRemove(const CommandLine &line);
ExitStatus runRename(const CommandLine &line);

#endif
