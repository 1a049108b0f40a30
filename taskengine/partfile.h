/** The unfinished file of a download, and what is known about it. */
#ifndef VIDEODOWN_TASKENGINE_PARTFILE_H
#define VIDEODOWN_TASKENGINE_PARTFILE_H

#include "taskengine/fault.h"
#include "taskengine/pieceplan.h"
#include "taskengine/pieceslines.h"

#include <cstdint>
#include <optional>
#include <string>

namespace taskengine {

/** What must still hold for a part file to be continued. */
struct PartFacts
{
    std::string key;         ///< key of the request; names the video, whatever its address is now
    std::int64_t total = -1; ///< bytes of the whole file
    std::string validator;   ///< strong validator of the site for exactly this file
};

/**
 * A file beside the target that becomes the target when it is complete. Locked while it is open, so
 * that two requests (or processes) never write the same one.
 *
 * At first the file's length says what is there of it. One that is filled in any order has its
 * pieces in its facts; these are added as lines of which the last whole one counts, so that a kill
 * at any moment leaves the one or the other.
 */
class PartFile
{
public:
    PartFile() = default;
    PartFile(const PartFile &) = delete;
    PartFile &operator=(const PartFile &) = delete;
    ~PartFile();

    /**
     * Opens or creates the part file of `target`. Unless its facts are of `key`, and allow to
     * continue it, it starts out empty.
     */
    std::optional<Fault> open(const std::string &target, const std::string &key);

    bool isOpen() const { return m_file >= 0; }
    /** @return how many of its bytes are there */
    std::int64_t size() const { return m_pieces.bytes(); }
    const PieceSet &pieces() const { return m_pieces; }
    const PartFacts &facts() const { return m_facts; }

    /** @return whether the site can be asked for the rest */
    bool canContinue() const;

    /** Empties the file and forgets what is known about it. */
    std::optional<Fault> restart();

    /** Sets the facts, for this request and, once they are saved, later ones. */
    void remember(std::int64_t total, const std::string &validator);

    /** Writes the facts beside the file, unless that is done or they allow nothing. */
    void saveFacts();

    /**
     * Reserves the space of the whole file and notes its pieces, so that `write` may leave gaps.
     * Does nothing where that is impossible; see `hasPieces`.
     * @return a fault when there is not the space
     */
    std::optional<Fault> allowPieces();

    /** @return whether there may be gaps */
    bool hasPieces() const { return m_hasPieces; }

    /** Notes the pieces, if there may be gaps. */
    void savePieces();

    /** Writes at `offset`; leaves no gap unless there may be some. */
    std::optional<Fault> write(std::int64_t offset, const char *data, std::size_t length);

    /** @return whether the file system has the space for what is missing of `total` bytes */
    bool hasSpaceFor(std::int64_t total) const;

    /** Makes the file the target. */
    std::optional<Fault> commit(const std::string &target);

    /** Closes the file and leaves it for a later request, if one could continue it. */
    void keep();

    /** Closes and removes the file. */
    void discard();

private:
    std::optional<Fault> openLocked();
    void loadFacts(std::int64_t length);
    bool addPiecesLine(pieceslines::Lasting lasting) const;
    bool markPieces() const;
    void removeFacts();
    void close();

    std::string m_path;
    std::string m_factsPath;
    PartFacts m_facts;
    std::string m_key;
    PieceSet m_pieces;
    int m_file = -1;
    bool m_hasPieces = false;  ///< as its facts say
    std::int64_t m_noted = -1; ///< bytes of the pieces that were noted last
    bool m_factsSaved = false; ///< the facts are in their file
};

} // namespace taskengine

#endif
