#include "taskengine/pieceslines.h"

#include <cstring>
#include <fstream>
#include <istream>
#include <optional>

namespace taskengine::pieceslines {

namespace {

constexpr const char *piecesKey = "pieces ";
constexpr const char *lineEnd = " .";
constexpr const char *onDisk = "disk"; ///< instead of a boot: these pieces outlast it

/** What the system had not written yet when it went down is lost, whatever the facts say. */
std::string readBoot()
{
    std::ifstream file("/proc/sys/kernel/random/boot_id");
    std::string boot;
    file >> boot;
    return boot.empty() ? "unknown" : boot;
}

const std::string &currentBoot()
{
    static const std::string boot = readBoot();
    return boot;
}

bool endsWith(const std::string &text, const std::string &end)
{
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

/** "pieces BOOT 0-10 20-30 ."; lines that a kill or a full disk cut off have no end. */
std::optional<PieceSet> parseLine(const std::string &text)
{
    const std::string key = piecesKey;
    if (text.compare(0, key.size(), key) != 0 || !endsWith(text, lineEnd))
        return std::nullopt;
    const std::size_t space = text.find(' ', key.size());
    const std::string boot = text.substr(key.size(), space - key.size());
    if (boot != onDisk && boot != currentBoot())
        return std::nullopt;
    return PieceSet::parse(text.substr(space, text.size() - space - std::strlen(lineEnd)));
}

} // namespace

std::string line(const PieceSet &pieces, Lasting lasting)
{
    const std::string where = lasting == Lasting::Always ? onDisk : currentBoot();
    return "\n" + std::string(piecesKey) + where + " " + pieces.text() + lineEnd;
}

PieceSet read(std::istream &file, std::int64_t length)
{
    PieceSet pieces;
    for (std::string text; std::getline(file, text);) {
        const auto parsed = parseLine(text);
        if (parsed && parsed->firstMissing() > 0)
            pieces = *parsed;
    }
    if (pieces.end() > length)
        pieces.clear();
    return pieces;
}

} // namespace taskengine::pieceslines
