#include "taskengine/videoinfosource.h"

#include "taskengine/address.h"

#include <algorithm>
#include <string_view>

namespace taskengine {

namespace {

int hexDigit(char character)
{
    if (character >= '0' && character <= '9')
        return character - '0';
    const char letter = static_cast<char>(character | 0x20);
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

/** @return the byte that "%XX" at `at` stands for, or -1 when nothing of that form is there */
int encodedByte(std::string_view text, std::size_t at)
{
    if (text[at] != '%' || at + 2 >= text.size())
        return -1;
    const int high = hexDigit(text[at + 1]);
    const int low = hexDigit(text[at + 2]);
    return high < 0 || low < 0 ? -1 : high * 16 + low;
}

enum class Plus { IsSpace, IsPlus };

std::string decoded(std::string_view text, Plus plus)
{
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const int byte = encodedByte(text, at);
        if (byte >= 0)
            at += 2;
        const bool isSpace = plus == Plus::IsSpace && text[at] == '+';
        const char plain = isSpace ? ' ' : text[at];
        result += byte >= 0 ? static_cast<char>(byte) : plain;
    }
    return result;
}

std::string encoded(const std::string &text)
{
    static constexpr std::string_view digits = "0123456789ABCDEF";
    static constexpr std::string_view plain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
    std::string result;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (plain.find(character) != std::string_view::npos)
            result += character;
        else
            result += {'%', digits[byte / 16U], digits[byte % 16U]};
    }
    return result;
}

/** Calls `use` with every piece of `text` between separators. */
template <typename Use>
void forEachPiece(std::string_view text, std::string_view separators, Use use)
{
    for (std::size_t from = 0; from <= text.size();) {
        const std::size_t to = std::min(text.find_first_of(separators, from), text.size());
        use(text.substr(from, to - from));
        from = to + 1;
    }
}

std::string videoId(const Address &page)
{
    std::string id;
    bool hasParameter = false;
    forEachPiece(addressPart(page, CURLUPART_QUERY), "&", [&](std::string_view field) {
        if (hasParameter || field.substr(0, 2) != "v=")
            return;
        hasParameter = true;
        id = decoded(field.substr(2), Plus::IsSpace);
    });
    if (hasParameter)
        return id;
    forEachPiece(addressPart(page, CURLUPART_PATH), "/", [&id](std::string_view segment) {
        if (!segment.empty())
            id = decoded(segment, Plus::IsPlus);
    });
    return id == "watch" ? std::string() : id;
}

bool isKeyCharacter(char character)
{
    const char letter = static_cast<char>(character | 0x20);
    return (letter >= 'a' && letter <= 'z') || (character >= '0' && character <= '9') ||
           std::string_view("_-.[]").find(character) != std::string_view::npos;
}

/** Lines that the engine writes itself. */
bool isOwnKey(std::string_view key)
{
    return key == "answered_by" || key == "command_fault";
}

/** Takes only what has the form of a field, so that the text of a page yields no line. */
void appendLine(std::string &lines, std::string line)
{
    const std::size_t keyLength = line.find('=');
    if (keyLength == std::string::npos || keyLength == 0 ||
        isOwnKey(std::string_view(line).substr(0, keyLength)) ||
        !std::all_of(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(keyLength),
                     isKeyCharacter))
        return;
    const auto endsText = [](char character) {
        return character == '\r' || character == '\n' || character == '\0';
    };
    std::replace_if(line.begin(), line.end(), endsText, ' ');
    lines += line;
    lines += "\r\n";
}

} // namespace

std::string VideoInfoSource::infoAddress(const std::string &pageAddress) const
{
    const Address address = parsedAddress(pageAddress);
    const std::string id = address ? videoId(address) : std::string();
    if (id.empty())
        return {};
    curl_url_set(address.get(), CURLUPART_PATH, "/get_video_info", 0);
    curl_url_set(address.get(), CURLUPART_QUERY, nullptr, 0);
    curl_url_set(address.get(), CURLUPART_FRAGMENT, nullptr, 0);
    return addressPart(address, CURLUPART_URL) + "?video_id=" + encoded(id);
}

std::string VideoInfoSource::lines(const std::string &answer) const
{
    std::string result;
    result.reserve(answer.size());
    forEachPiece(answer, "&", [&result](std::string_view field) {
        appendLine(result, decoded(field, Plus::IsSpace));
    });
    return result;
}

std::string linesOfCommand(const std::string &output)
{
    std::string result;
    result.reserve(output.size());
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    std::string_view text = output;
    if (text.substr(0, byteOrderMark.size()) == byteOrderMark)
        text.remove_prefix(byteOrderMark.size());
    forEachPiece(text, "\r\n",
                 [&result](std::string_view line) { appendLine(result, std::string(line)); });
    return result;
}

} // namespace taskengine
