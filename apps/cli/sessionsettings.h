/** What a command line means for the engine and for the driver. */
#ifndef VIDEODOWN_CLI_SESSIONSETTINGS_H
#define VIDEODOWN_CLI_SESSIONSETTINGS_H

#include "commandline.h"
#include "driver/downloaddriver.h"

namespace sessionsettings {

void configureEngine(const CommandLine &line);

/** @param downloadFolder absolute path of a folder that exists */
DownloadDriver::Settings forDriver(const CommandLine &line, const QString &downloadFolder);

} // namespace sessionsettings

#endif
