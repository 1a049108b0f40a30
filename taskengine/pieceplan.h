/** Which bytes of a file are there, and what a further connection could fetch. */
#ifndef VIDEODOWN_TASKENGINE_PIECEPLAN_H
#define VIDEODOWN_TASKENGINE_PIECEPLAN_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace taskengine {

/** The bytes of a file from `first` up to, not including, `end`. */
struct Piece
{
    std::int64_t first = 0;
    std::int64_t end = 0;

    std::int64_t length() const { return end - first; }
};

/** Bytes of a file; each counts once, however often it was added. */
class PieceSet
{
public:
    void add(const Piece &piece);
    void clear() { m_pieces.clear(); }

    /** @return how many bytes there are */
    std::int64_t bytes() const;

    /** @return the first byte that is not there */
    std::int64_t firstMissing() const;

    /** @return where the bytes end */
    std::int64_t end() const { return m_pieces.empty() ? 0 : m_pieces.back().end; }

    /** @return what is not there of `whole`, in order */
    std::vector<Piece> missing(const Piece &whole) const;

    /** @return the pieces as "0-10 20-30" */
    std::string text() const;

    /** @return the set of such a text; nothing for other texts */
    static std::optional<PieceSet> parse(const std::string &text);

private:
    std::vector<Piece> m_pieces; ///< in order, none touches the next
};

/** What a further connection could fetch. */
struct Share
{
    Piece piece;
    std::optional<std::size_t> from; ///< number of the connection that leaves it the piece
};

/**
 * @param missing what is not there, in order
 * @param underWay what each connection is about to fetch
 * @param least no piece is divided into smaller ones, in bytes
 * @return the largest piece that nobody fetches, else half of the largest one that somebody does;
 * nothing when that is too small
 */
std::optional<Share> nextShare(const std::vector<Piece> &missing,
                               const std::vector<Piece> &underWay, std::int64_t least);

} // namespace taskengine

#endif
