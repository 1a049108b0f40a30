#ifndef VIDEODOWN_SITE_FAULTOPTION_H
#define VIDEODOWN_SITE_FAULTOPTION_H

#include "site/videosite.h"

/** A decimal number and nothing else. @return nothing when it is none, or more than `most` */
std::optional<std::uint64_t> readNumber(const std::string &text, std::uint64_t most);

/**
 * Reads faults as the command line gives them: `prefix=/stream/,first=1,cut=1000`.
 * @return nothing when a name is unknown or a value cannot be used
 */
std::optional<Misbehaviour> readMisbehaviour(const std::string &text);

#endif
