#ifndef VIDEODOWN_SITE_OPTIONS_H
#define VIDEODOWN_SITE_OPTIONS_H

#include "site/videosite.h"

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/** What the program was asked for. */
struct Options
{
    int port = 0;
    std::string mediaFolder;
    std::chrono::seconds lifetime{600};
    bool untilEndOfInput = false;
    bool listPages = false;
    bool help = false;
    std::size_t smallVideoSize = 4096;
    std::vector<Misbehaviour> misbehaviours;
    /** Where the certificate of TLS goes; empty: no TLS. */
    std::string certificateFile;
    /** User name and password of the proxy; none: no proxy. */
    std::optional<std::pair<std::string, std::string>> proxyUser;
    /** When not empty, why the arguments cannot be used. */
    std::string error;
};

/** Reads the program's arguments. */
Options readOptions(int argc, char **argv);

/** The text of `--help`. */
const char *usage();

#endif
