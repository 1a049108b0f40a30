#include "site/byterange.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

namespace {

std::optional<std::uint64_t> readNumber(std::string_view text)
{
    std::uint64_t number = 0;
    const char *const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    const bool whole = result.ec == std::errc() && result.ptr == end;
    return whole ? std::optional(number) : std::nullopt;
}

ByteSpan lastBytes(std::uint64_t count, std::uint64_t size)
{
    const std::uint64_t length = std::min(count, size);
    return length == 0 ? ByteSpan{416, 0, 0} : ByteSpan{206, size - length, length};
}

} // namespace

ByteSpan selectSpan(const std::string &range, std::uint64_t size)
{
    constexpr std::string_view unit = "bytes=";
    const ByteSpan everything{200, 0, size};
    const std::string_view text(range);
    const std::size_t dash = text.find('-');
    if (text.compare(0, unit.size(), unit) != 0 || dash == std::string_view::npos)
        return everything;
    const std::string_view firstText = text.substr(unit.size(), dash - unit.size());
    const std::string_view lastText = text.substr(dash + 1);
    const auto first = readNumber(firstText);
    const auto last = readNumber(lastText);
    if ((!first && !firstText.empty()) || (!last && !lastText.empty()) || (!first && !last))
        return everything;
    if (!first)
        return lastBytes(*last, size);
    if (last && *last < *first)
        return everything;
    if (*first >= size)
        return {416, 0, 0};
    const std::uint64_t end = last ? std::min(*last, size - 1) : size - 1;
    return {206, *first, end - *first + 1};
}
