/** `videodown get` */
#ifndef VIDEODOWN_CLI_GETCOMMAND_H
#define VIDEODOWN_CLI_GETCOMMAND_H

#include "commandline.h"
#include "exitstatus.h"

ExitStatus runGet(const CommandLine &line);

#endif
