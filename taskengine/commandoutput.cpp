#include "taskengine/commandoutput.h"

#include "engine/taskengine.h"
#include "taskengine/address.h"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>

namespace taskengine {

namespace {

constexpr std::string_view blanks = " \t";
constexpr std::string_view digits = "0123456789";
constexpr std::size_t longestDetail = 80;
constexpr std::size_t mostSizeDigits = 5;

constexpr std::array<std::string_view, 11> keys = {
    "author", "fmt_list", "fmt_stream_map", "length_seconds", "reason",  "request_header",
    "status", "title",    "thumbnail_url",  "timestamp",      "video_id"};

/** Numbers that say in which container a format comes. */
constexpr std::array<std::string_view, 7> containers = {"5", "18", "22", "34", "35", "37", "38"};

template <typename List>
bool contains(const List &list, std::string_view text)
{
    return std::find(list.begin(), list.end(), text) != list.end();
}

bool isFreeText(std::string_view key)
{
    return key == "title" || key == "author" || key == "reason";
}

/** @return what stands before the separator; it and that are gone from `text` */
std::string_view cut(std::string_view &text, char separator)
{
    const std::string_view piece = text.substr(0, text.find(separator));
    text.remove_prefix(std::min(text.size(), piece.size() + 1));
    return piece;
}

bool isContinuation(char c)
{
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

/** @return bytes of the character that begins the text; 0 when it is none (RFC 3629, section 4) */
std::size_t characterLength(std::string_view text)
{
    const auto byteAt = [text](std::size_t at) -> unsigned char {
        return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
    };
    const unsigned first = byteAt(0);
    if (first < 0x80)
        return 1;
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    const unsigned pair = first << 8U | byteAt(1);
    const bool begins = (first >= 0xC2 && first <= 0xDF) || (pair >= 0xE0A0 && pair < 0xEDA0) ||
                        (pair >= 0xEE80 && pair < 0xF000) || (pair >= 0xF090 && pair < 0xF490);
    for (std::size_t at = 1; at < length; ++at) {
        if (!begins || at >= text.size() || !isContinuation(text[at]))
            return 0;
    }
    return length;
}

bool isUtf8(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

/** Whole characters, and no line ends or others that have a meaning to terminals. */
std::string detailOf(std::string_view text)
{
    std::size_t length = std::min(text.size(), longestDetail);
    while (length > 0 && length < text.size() && isContinuation(text[length]))
        --length;
    std::string detail(text.substr(0, length));
    std::replace_if(
        detail.begin(), detail.end(),
        [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }, ' ');
    return length < text.size() ? detail + "..." : detail;
}

bool isSide(std::string_view text)
{
    return !text.empty() && text.size() <= mostSizeDigits &&
           text.find_first_not_of(digits) == std::string_view::npos;
}

bool isFetchable(std::string_view address)
{
    return address.size() < sizeof(tagTaskInfo::szDownloadURL) &&
           !addressFault(std::string(address));
}

class OutputCheck
{
public:
    std::optional<Mistake> check(std::string_view output);

private:
    void checkLine(std::string_view line);
    void take(std::string_view key, std::string_view value);
    void checkFormats(std::string_view list);
    void checkStreams(std::string_view list);
    void checkStream(std::string_view entry);
    void checkNumber(std::string_view number, std::string_view entry, std::set<std::string> &to);
    void checkWhole();
    void checkPairs(const std::set<std::string> &these, const std::set<std::string> &those,
                    std::size_t line);
    void complain(const char *kind, std::string_view about, std::size_t line);
    void complain(const char *kind, std::string_view about) { complain(kind, about, m_line); }

    std::size_t m_line = 1;
    std::size_t m_formatsLine = 0; ///< 0: there is none
    std::size_t m_streamsLine = 0;
    std::set<std::string> m_formats;
    std::set<std::string> m_streams;
    bool m_hasTitle = false;
    bool m_refuses = false;
    std::optional<Mistake> m_mistake;
};

std::optional<Mistake> OutputCheck::check(std::string_view output)
{
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (output.substr(0, byteOrderMark.size()) == byteOrderMark)
        output.remove_prefix(byteOrderMark.size());
    for (; !output.empty() && !m_mistake; ++m_line) {
        std::string_view line = cut(output, '\n');
        if (!isUtf8(line))
            complain("encoding", {});
        while (!line.empty())
            checkLine(cut(line, '\r'));
    }
    checkWhole();
    return m_mistake;
}

void OutputCheck::checkLine(std::string_view line)
{
    const std::size_t begin = std::min(line.find_first_not_of(blanks), line.size());
    const std::size_t sign = line.find('=', begin);
    if (sign == std::string_view::npos)
        return;
    const std::string_view before = line.substr(begin, sign - begin);
    const std::string_view key = before.substr(0, before.find_first_of(blanks));
    const bool isKey = contains(keys, key) &&
                       before.find_first_not_of(blanks, key.size()) == std::string_view::npos;
    if (!isKey)
        return;
    const std::string_view value = line.substr(sign + 1);
    const bool beginsBlank = !value.empty() && blanks.find(value.front()) != std::string_view::npos;
    if (begin > 0 || key != before || (beginsBlank && !isFreeText(key)))
        complain("blanks", line);
    else if (!value.empty())
        take(key, value);
}

void OutputCheck::take(std::string_view key, std::string_view value)
{
    if (key == "title")
        m_hasTitle = value.find_first_not_of(blanks) != std::string_view::npos;
    else if (key == "reason" || (key == "status" && value == "fail"))
        m_refuses = true;
    else if (key == "fmt_list")
        checkFormats(value);
    else if (key == "fmt_stream_map")
        checkStreams(value);
}

void OutputCheck::checkNumber(std::string_view number, std::string_view entry,
                              std::set<std::string> &to)
{
    if (contains(containers, number))
        to.emplace(number);
    else
        complain("container", entry);
}

void OutputCheck::checkFormats(std::string_view list)
{
    m_formatsLine = m_line;
    m_formats.clear();
    while (!list.empty()) {
        const std::string_view entry = cut(list, ',');
        std::string_view rest = entry;
        const std::string_view number = cut(rest, '/');
        std::string_view size = cut(rest, '/');
        const std::string_view width = cut(size, 'x');
        if (number.empty() || !isSide(width) || !isSide(size))
            complain("size", entry);
        else
            checkNumber(number, entry, m_formats);
    }
}

void OutputCheck::checkStreams(std::string_view list)
{
    m_streamsLine = m_line;
    m_streams.clear();
    while (!list.empty())
        checkStream(cut(list, ','));
}

void OutputCheck::checkStream(std::string_view entry)
{
    std::string_view address = entry;
    const std::string_view number = cut(address, '|');
    const bool isNumber =
        !number.empty() && number.find_first_not_of(digits) == std::string_view::npos;
    if (!isNumber || number.size() == entry.size())
        complain("comma", entry);
    else if (address.find('|') != std::string_view::npos)
        complain("bar", entry);
    else if (!isFetchable(address))
        complain("address", entry);
    else
        checkNumber(number, entry, m_streams);
}

void OutputCheck::checkWhole()
{
    if (m_refuses)
        return;
    if (m_formatsLine == 0)
        complain("missing", "fmt_list", 0);
    if (m_streamsLine == 0)
        complain("missing", "fmt_stream_map", 0);
    checkPairs(m_formats, m_streams, m_formatsLine);
    checkPairs(m_streams, m_formats, m_streamsLine);
    if (!m_hasTitle)
        complain("missing", "title", 0);
}

void OutputCheck::checkPairs(const std::set<std::string> &these, const std::set<std::string> &those,
                             std::size_t line)
{
    for (const std::string &number : these) {
        if (those.count(number) == 0)
            complain("single", number, line);
    }
}

/** The first one counts: others may follow from it. */
void OutputCheck::complain(const char *kind, std::string_view about, std::size_t line)
{
    if (!m_mistake)
        m_mistake = Mistake{line, kind, detailOf(about)};
}

} // namespace

std::optional<Mistake> mistakeIn(const std::string &output)
{
    return OutputCheck().check(output);
}

/** The lists are there and empty, so that none of an earlier answer stays. */
std::string linesFor(const Mistake &mistake)
{
    return "fmt_list=\r\nfmt_stream_map=\r\ncommand_fault=" + std::to_string(mistake.line) + ' ' +
           mistake.kind + ' ' + mistake.detail + "\r\n";
}

std::string signedLines(std::string lines, const std::string &word)
{
    std::size_t at = lines.rfind("\nfmt_list="); // of several, the last one counts
    if (at == std::string::npos && lines.rfind("fmt_list=", 0) == 0)
        at = 0;
    if (at == std::string::npos)
        return lines;
    at = lines.find_first_of(",\r", at);
    return lines.insert(at, "/by=" + word);
}

} // namespace taskengine
