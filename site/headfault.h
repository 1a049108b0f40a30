#ifndef VIDEODOWN_SITE_HEADFAULT_H
#define VIDEODOWN_SITE_HEADFAULT_H

#include "site/videosite.h"

/** Whether anything in the header block is not as it should be. */
bool spoilsHead(const Misbehaviour &fault);

/** Whether the end of the body can only be recognised by the end of the connection. */
bool endsWithConnection(const Misbehaviour &fault);

/**
 * The header block of an answer with the faults that concern it.
 * @param head as it would have been sent, from the status line to the empty line.
 */
std::string spoiltHead(const std::string &head, const Misbehaviour &fault);

#endif
