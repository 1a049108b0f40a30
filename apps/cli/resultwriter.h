/** Results of transfers on standard output, as paths or as JSON Lines. */
#ifndef VIDEODOWN_CLI_RESULTWRITER_H
#define VIDEODOWN_CLI_RESULTWRITER_H

#include "session.h"

namespace resultwriter {

/** From now on, writes each result of the session's tasks as the command line wants it. */
void attach(Session &session, const CommandLine &line);

} // namespace resultwriter

#endif
