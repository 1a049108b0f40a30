#include "taskengine/pieceplan.h"

#include <algorithm>
#include <charconv>
#include <sstream>

namespace taskengine {

namespace {

bool isShorter(const Piece &one, const Piece &other)
{
    return one.length() < other.length();
}

std::optional<Piece> parsePiece(const std::string &text)
{
    Piece piece;
    const char *const end = text.data() + text.size();
    const auto first = std::from_chars(text.data(), end, piece.first);
    if (first.ec != std::errc() || first.ptr == end || *first.ptr != '-')
        return std::nullopt;
    const auto last = std::from_chars(first.ptr + 1, end, piece.end);
    if (last.ec != std::errc() || last.ptr != end || piece.first < 0 || piece.length() <= 0)
        return std::nullopt;
    return piece;
}

} // namespace

void PieceSet::add(const Piece &piece)
{
    if (piece.length() <= 0)
        return;
    const auto from = std::find_if(m_pieces.begin(), m_pieces.end(),
                                   [&piece](const Piece &one) { return one.end >= piece.first; });
    const auto to = std::find_if(from, m_pieces.end(),
                                 [&piece](const Piece &one) { return one.first > piece.end; });
    Piece whole = piece;
    if (from != to) {
        whole.first = std::min(whole.first, from->first);
        whole.end = std::max(whole.end, std::prev(to)->end);
    }
    m_pieces.insert(m_pieces.erase(from, to), whole);
}

std::int64_t PieceSet::bytes() const
{
    std::int64_t sum = 0;
    for (const Piece &piece : m_pieces)
        sum += piece.length();
    return sum;
}

std::int64_t PieceSet::firstMissing() const
{
    return m_pieces.empty() || m_pieces.front().first > 0 ? 0 : m_pieces.front().end;
}

std::vector<Piece> PieceSet::missing(const Piece &whole) const
{
    std::vector<Piece> gaps;
    std::int64_t at = whole.first;
    const auto addUpTo = [&](std::int64_t end) {
        if (at < std::min(end, whole.end))
            gaps.push_back({at, std::min(end, whole.end)});
    };
    for (const Piece &piece : m_pieces) {
        addUpTo(piece.first);
        at = std::max(at, piece.end);
    }
    addUpTo(whole.end);
    return gaps;
}

std::string PieceSet::text() const
{
    std::string text;
    for (const Piece &piece : m_pieces) {
        text += text.empty() ? "" : " ";
        text += std::to_string(piece.first) + "-" + std::to_string(piece.end);
    }
    return text;
}

std::optional<PieceSet> PieceSet::parse(const std::string &text)
{
    PieceSet set;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        const auto piece = parsePiece(word);
        if (!piece || (!set.m_pieces.empty() && piece->first <= set.end()))
            return std::nullopt;
        set.m_pieces.push_back(*piece);
    }
    return set;
}

std::optional<Share> nextShare(const std::vector<Piece> &missing,
                               const std::vector<Piece> &underWay, std::int64_t least)
{
    PieceSet taken;
    for (const Piece &piece : underWay)
        taken.add(piece);
    std::vector<Piece> untouched;
    for (const Piece &gap : missing) {
        const std::vector<Piece> rest = taken.missing(gap);
        untouched.insert(untouched.end(), rest.begin(), rest.end());
    }
    if (!untouched.empty())
        return Share{*std::max_element(untouched.begin(), untouched.end(), isShorter), {}};
    const auto largest = std::max_element(underWay.begin(), underWay.end(), isShorter);
    if (largest == underWay.end() || largest->length() < 2 * least)
        return std::nullopt;
    const Piece half{largest->first + (largest->length() + 1) / 2, largest->end};
    return Share{half, static_cast<std::size_t>(largest - underWay.begin())};
}

} // namespace taskengine
