#include "site/headfault.h"

#include <sstream>
#include <string_view>

namespace {

constexpr std::string_view lengthField = "Content-Length: ";
constexpr std::string_view lineEnd = "\r\n";

bool isLength(const std::string &line)
{
    return line.compare(0, lengthField.size(), lengthField) == 0;
}

std::string field(std::uint64_t length)
{
    return std::string(lengthField) + std::to_string(length) + "\r\n";
}

// What stands in the place of the line that announces the length.
std::string lengthLines(const std::string &line, const Misbehaviour &fault)
{
    if (fault.unannounced)
        return "Connection: close\r\n";
    const std::uint64_t length =
        fault.announcedLength.value_or(std::stoull(line.substr(lengthField.size())));
    return fault.twoLengths ? field(length) + field(length / 2) : field(length);
}

std::string flood(std::size_t bytes)
{
    constexpr std::size_t lineSize = 1000;
    std::string lines;
    for (std::size_t number = 0; lines.size() < bytes; ++number)
        lines += "X-Flood-" + std::to_string(number) + ": " + std::string(lineSize, 'x') + "\r\n";
    return lines;
}

} // namespace

bool spoilsHead(const Misbehaviour &fault)
{
    return endsWithConnection(fault) || fault.headerBytes > 0 || fault.headerLatency.count() > 0;
}

bool endsWithConnection(const Misbehaviour &fault)
{
    return fault.unannounced || fault.twoLengths || fault.announcedLength;
}

std::string spoiltHead(const std::string &head, const Misbehaviour &fault)
{
    std::istringstream lines(head.substr(0, head.size() - lineEnd.size()));
    std::string result;
    for (std::string line; std::getline(lines, line); line.clear()) {
        line += '\n';
        result += isLength(line) ? lengthLines(line, fault) : line;
    }
    return result + flood(fault.headerBytes) + std::string(lineEnd);
}
