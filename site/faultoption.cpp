#include "site/faultoption.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <sstream>

namespace {

constexpr std::uint64_t mostBytes = std::numeric_limits<std::int64_t>::max();
constexpr std::uint64_t mostMilliseconds = 600000;
constexpr std::uint64_t mostMemory = std::uint64_t(1) << 30U;

SiteAnswer &answerOf(Misbehaviour &fault)
{
    if (!fault.answer)
        fault.answer = SiteAnswer{
            200, "text/html; charset=utf-8", {}, "<!DOCTYPE html>\n<title>Error</title>\n"};
    return *fault.answer;
}

std::chrono::milliseconds milliseconds(std::uint64_t number)
{
    return std::chrono::milliseconds(number);
}

struct NumberFault
{
    const char *name;
    std::uint64_t least;
    std::uint64_t most;
    void (*set)(Misbehaviour &fault, std::uint64_t number);
};

using Fault = Misbehaviour;
using Number = std::uint64_t;

constexpr NumberFault numberFaults[] = {
    {"first", 0, 1000000,
     [](Fault &fault, Number number) { fault.firstRequests = static_cast<unsigned>(number); }},
    {"latency", 0, mostMilliseconds,
     [](Fault &fault, Number number) { fault.latency = milliseconds(number); }},
    {"header-latency", 0, mostMilliseconds,
     [](Fault &fault, Number number) { fault.headerLatency = milliseconds(number); }},
    {"header-flood", 0, mostMemory,
     [](Fault &fault, Number number) { fault.headerBytes = static_cast<std::size_t>(number); }},
    {"rate", 0, mostBytes, [](Fault &fault, Number number) { fault.bytesPerSecond = number; }},
    {"client-rate", 0, mostBytes,
     [](Fault &fault, Number number) { fault.clientBytesPerSecond = number; }},
    {"at-once", 0, 1000000,
     [](Fault &fault, Number number) { fault.mostAtOnce = static_cast<unsigned>(number); }},
    {"cut", 0, mostBytes, [](Fault &fault, Number number) { fault.cutAfter = number; }},
    {"stall", 0, mostBytes, [](Fault &fault, Number number) { fault.holdAfter = number; }},
    {"length", 0, mostBytes, [](Fault &fault, Number number) { fault.announcedLength = number; }},
    {"earlier", 0, mostBytes, [](Fault &fault, Number number) { fault.earlierBy = number; }},
    {"longer", 0, mostBytes, [](Fault &fault, Number number) { fault.longerBy = number; }},
    {"shorter", 0, mostBytes, [](Fault &fault, Number number) { fault.shorterBy = number; }},
    {"total-more", 0, mostBytes, [](Fault &fault, Number number) { fault.totalMore = number; }},
    {"status", 200, 599,
     [](Fault &fault, Number number) { answerOf(fault).status = static_cast<int>(number); }},
    {"gzip-bomb", 0, mostMemory,
     [](Fault &fault, Number number) {
         fault.answer = gzipBomb(static_cast<std::size_t>(number));
     }},
};

struct TextFault
{
    const char *name;
    void (*set)(Misbehaviour &fault, const std::string &text);
};

constexpr TextFault textFaults[] = {
    {"prefix", [](Fault &fault, const std::string &text) { fault.prefix = text; }},
    {"etag", [](Fault &fault, const std::string &text) { fault.entityTag = '"' + text + '"'; }},
    {"retry-after",
     [](Fault &fault, const std::string &text) { answerOf(fault).headers["Retry-After"] = text; }},
    {"redirect",
     [](Fault &fault, const std::string &text) {
         answerOf(fault).status = 302;
         answerOf(fault).headers["Location"] = text;
     }},
};

struct Switch
{
    const char *name;
    bool Misbehaviour::*value;
};

constexpr Switch switches[] = {
    {"unannounced", &Misbehaviour::unannounced},
    {"two-lengths", &Misbehaviour::twoLengths},
    {"endless", &Misbehaviour::endless},
    {"ignore-range", &Misbehaviour::ignoreRange},
    {"ignore-if-range", &Misbehaviour::ignoreCondition},
};

template <typename Table>
auto findIn(const Table &table, const std::string &name)
{
    const auto found = std::find_if(std::begin(table), std::end(table),
                                    [&name](const auto &entry) { return name == entry.name; });
    return found == std::end(table) ? nullptr : found;
}

bool setNumber(Misbehaviour &fault, const std::string &name, const std::string &value)
{
    const NumberFault *const entry = findIn(numberFaults, name);
    const auto number = entry ? readNumber(value, entry->most) : std::nullopt;
    if (!number || *number < entry->least)
        return false;
    entry->set(fault, *number);
    return true;
}

bool setFault(Misbehaviour &fault, const std::string &item)
{
    const std::size_t equals = item.find('=');
    const std::string name = item.substr(0, equals);
    if (equals == std::string::npos) {
        const Switch *const entry = findIn(switches, name);
        return entry && (fault.*entry->value = true);
    }
    const std::string value = item.substr(equals + 1);
    if (const TextFault *const entry = findIn(textFaults, name)) {
        entry->set(fault, value);
        return true;
    }
    return setNumber(fault, name, value);
}

} // namespace

std::optional<std::uint64_t> readNumber(const std::string &text, std::uint64_t most)
{
    std::uint64_t number = 0;
    const char *const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    const bool usable = result.ec == std::errc() && result.ptr == end && number <= most;
    return usable ? std::optional(number) : std::nullopt;
}

std::optional<Misbehaviour> readMisbehaviour(const std::string &text)
{
    Misbehaviour fault;
    std::istringstream items(text);
    for (std::string item; std::getline(items, item, ',');) {
        if (!setFault(fault, item))
            return std::nullopt;
    }
    return fault;
}
