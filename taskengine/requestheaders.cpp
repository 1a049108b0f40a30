#include "taskengine/requestheaders.h"

#include "taskengine/address.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <strings.h>
#include <utility>

namespace taskengine {

namespace {

constexpr std::string_view headerKey = "request_header=";
constexpr std::string_view streamsKey = "fmt_stream_map=";
constexpr std::string_view lineEnd = "\r\n";

constexpr std::size_t mostFields = 50;
constexpr std::size_t mostFieldBytes = 16384;
constexpr std::size_t mostTasks = 10000; ///< of which fields are kept

/** Fields that say what is asked for and how it comes: those are the engine's. */
constexpr std::array<std::string_view, 10> ownFields = {
    "Accept-Encoding", "Connection", "Content-Length",    "Expect", "Host", "If-Range",
    "Range",           "TE",         "Transfer-Encoding", "Upgrade"};

bool isTokenCharacter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           (c != '\0' && std::strchr("!#$%&'*+-.^_`|~", c) != nullptr);
}

bool isControl(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return (byte < 0x20 && c != '\t') || byte == 0x7f;
}

bool isUsable(std::string_view field)
{
    const std::size_t colon = field.find(':');
    if (colon == std::string_view::npos || colon == 0 || field.size() > mostFieldBytes)
        return false;
    const std::string_view name = field.substr(0, colon);
    const std::string_view value = field.substr(colon + 1);
    return std::all_of(name.begin(), name.end(), isTokenCharacter) &&
           std::none_of(value.begin(), value.end(), isControl) &&
           value.find_first_not_of(" \t") != std::string_view::npos &&
           std::none_of(ownFields.begin(), ownFields.end(), [name](std::string_view own) {
               return own.size() == name.size() &&
                      strncasecmp(own.data(), name.data(), name.size()) == 0;
           });
}

bool begins(std::string_view line, std::string_view with)
{
    return line.substr(0, with.size()) == with;
}

/** The address of every entry "N|ADDRESS" of a list split at commas. */
std::vector<std::string> streamsIn(std::string_view list)
{
    std::vector<std::string> streams;
    while (!list.empty()) {
        const std::string_view entry = list.substr(0, list.find(','));
        list.remove_prefix(std::min(list.size(), entry.size() + 1));
        const std::size_t bar = entry.find('|');
        if (bar != std::string_view::npos)
            streams.emplace_back(entry.substr(bar + 1));
    }
    return streams;
}

struct Origin
{
    std::string host;
    std::string port; ///< empty: the usual one
    bool isSecure;
};

Origin originOf(const std::string &text)
{
    const Address address = parsedAddress(text);
    if (!address)
        return {};
    const bool isSecure = addressPart(address, CURLUPART_SCHEME) == "https";
    std::string port = addressPart(address, CURLUPART_PORT);
    if (port == (isSecure ? "443" : "80"))
        port.clear();
    return {addressPart(address, CURLUPART_HOST), std::move(port), isSecure};
}

} // namespace

void RequestHeaders::take(const std::string &key, std::string &lines)
{
    Entry entry;
    std::string others;
    others.reserve(lines.size());
    for (std::string_view rest = lines; !rest.empty();) {
        const std::string_view line = rest.substr(0, rest.find(lineEnd));
        rest.remove_prefix(std::min(rest.size(), line.size() + lineEnd.size()));
        if (!begins(line, headerKey)) {
            others.append(line).append(lineEnd);
            if (begins(line, streamsKey))
                entry.streams = streamsIn(line.substr(streamsKey.size()));
            continue;
        }
        const std::string_view field = line.substr(headerKey.size());
        if (entry.fields.size() < mostFields && isUsable(field))
            entry.fields.emplace_back(field);
    }
    lines = std::move(others);
    keep(key, std::move(entry));
}

void RequestHeaders::keep(const std::string &key, Entry entry)
{
    if (entry.fields.empty() && m_entries.count(key) == 0)
        return;
    if (m_entries.insert_or_assign(key, std::move(entry)).second)
        m_keys.push_back(key);
    if (m_keys.size() > mostTasks) {
        m_entries.erase(m_keys.front());
        m_keys.pop_front();
    }
}

/** The key of an image is its task's, and a "1". */
const RequestHeaders::Entry *RequestHeaders::find(const Request &request) const
{
    std::string key = request.record.szTaskKey;
    if (request.kind == RequestKind::Image && !key.empty() && key.back() == '1')
        key.pop_back();
    const auto found = m_entries.find(key);
    return found == m_entries.end() ? nullptr : &found->second;
}

std::vector<std::string> RequestHeaders::fieldsFor(const Request &request,
                                                   const std::string &address) const
{
    const Entry *entry = request.kind == RequestKind::Parse ? nullptr : find(request);
    if (entry == nullptr)
        return {};
    const bool isForIt =
        std::any_of(entry->streams.begin(), entry->streams.end(),
                    [&](const std::string &stream) { return isSameHost(stream, address); });
    return isForIt ? entry->fields : std::vector<std::string>();
}

std::string refererFor(const std::string &page, const std::string &address)
{
    const Origin from = originOf(page);
    const Address referer = parsedAddress(page);
    if (from.host.empty() || (from.isSecure && !originOf(address).isSecure))
        return {};
    for (const CURLUPart part : {CURLUPART_USER, CURLUPART_PASSWORD, CURLUPART_FRAGMENT})
        curl_url_set(referer.get(), part, nullptr, 0);
    return addressPart(referer, CURLUPART_URL);
}

bool isSameHost(const std::string &from, const std::string &to)
{
    const Origin one = originOf(from);
    const Origin other = originOf(to);
    return !one.host.empty() && strcasecmp(one.host.c_str(), other.host.c_str()) == 0 &&
           one.port == other.port && (other.isSecure || !one.isSecure);
}

} // namespace taskengine
