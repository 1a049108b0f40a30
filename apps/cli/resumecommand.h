/** The commands that go on with tasks of the history: "resume", "retry" and "upgrade". */
#ifndef VIDEODOWN_CLI_RESUMECOMMAND_H
#define VIDEODOWN_CLI_RESUMECOMMAND_H

#include "commandline.h"
#include "exitstatus.h"

ExitStatus runResume(const CommandLine &line);
ExitStatus runRetry(const CommandLine &line);
ExitStatus runUpgrade(const CommandLine &line);

#endif
