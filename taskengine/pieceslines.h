/** The lines in which the facts of a part file have its pieces. */
#ifndef VIDEODOWN_TASKENGINE_PIECESLINES_H
#define VIDEODOWN_TASKENGINE_PIECESLINES_H

#include "taskengine/pieceplan.h"

#include <cstdint>
#include <iosfwd>
#include <string>

namespace taskengine::pieceslines {

/** How long the bytes of a file are sure to be there. */
enum class Lasting {
    UntilReboot, ///< the system has them; when it goes down, they may be lost
    Always,      ///< they are on disk
};

/** @return a line to be added to the facts, with a line end before it */
std::string line(const PieceSet &pieces, Lasting lasting);

/**
 * @param file the facts behind their first lines
 * @param length of the part file
 * @return the newest pieces that can be trusted; none when the file does not have them
 */
PieceSet read(std::istream &file, std::int64_t length);

} // namespace taskengine::pieceslines

#endif
