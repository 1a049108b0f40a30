/** `videodown formats` */
#ifndef VIDEODOWN_CLI_FORMATSCOMMAND_H
#define VIDEODOWN_CLI_FORMATSCOMMAND_H

#include "commandline.h"
#include "exitstatus.h"

ExitStatus runFormats(const CommandLine &line);

#endif
