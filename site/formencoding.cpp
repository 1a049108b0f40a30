#include "site/formencoding.h"

#include <string_view>

namespace {

bool isUnreserved(char c)
{
    constexpr std::string_view unreserved = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                            "0123456789-_.~";
    return unreserved.find(c) != std::string_view::npos;
}

void appendEscape(std::string &text, char c)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(c);
    text += '%';
    text += digits[byte >> 4U];
    text += digits[byte & 0xFU];
}

} // namespace

std::string percentEncode(const std::string &text, bool plus)
{
    std::string encoded;
    for (const char c : text) {
        if (isUnreserved(c))
            encoded += c;
        else if (plus && c == ' ')
            encoded += '+';
        else
            appendEscape(encoded, c);
    }
    return encoded;
}

std::string formEncode(const std::vector<std::pair<std::string, std::string>> &fields)
{
    std::string form;
    for (const auto &[name, value] : fields)
        form += (form.empty() ? "" : "&") + name + '=' + percentEncode(value, true);
    return form;
}

std::string htmlEscape(const std::string &text)
{
    std::string escaped;
    for (const char c : text) {
        switch (c) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}
