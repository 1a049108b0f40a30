/** The commands "list" and "show". */
#ifndef VIDEODOWN_CLI_LISTCOMMAND_H
#define VIDEODOWN_CLI_LISTCOMMAND_H

#include "commandline.h"
#include "exitstatus.h"

ExitStatus runList(const CommandLine &line);
ExitStatus runShow(const CommandLine &line);

#endif
