#ifndef VIDEODOWN_SITE_BYTERANGE_H
#define VIDEODOWN_SITE_BYTERANGE_H

#include <cstdint>
#include <string>

/** The part of a resource that answers a Range header. */
struct ByteSpan
{
    /** 200: everything; 206: the part from `offset`; 416: nothing of what was asked for exists. */
    int status;
    std::uint64_t offset;
    std::uint64_t length;
};

/**
 * Reads a Range header for a resource of `size` bytes. A header that is empty, malformed or names
 * several ranges asks for everything. A range that reaches past the end is cut at the end.
 */
ByteSpan selectSpan(const std::string &range, std::uint64_t size);

#endif
