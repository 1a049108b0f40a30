/** Header fields that a video-info command asks for. */
#ifndef VIDEODOWN_TASKENGINE_REQUESTHEADERS_H
#define VIDEODOWN_TASKENGINE_REQUESTHEADERS_H

#include "taskengine/request.h"

#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace taskengine {

/**
 * Keeps the fields of `request_header=Name: value` lines by task key, in memory only: they may say
 * who the user is. They are for the hosts of the stream addresses that came with them, and no
 * others. Used on the transfer thread only.
 */
class RequestHeaders
{
public:
    /**
     * Takes those lines out of a command's output, and keeps their fields instead of earlier
     * ones. Fields that are the engine's own business, or not well-formed (RFC 9110, section 5),
     * are dropped.
     */
    void take(const std::string &key, std::string &lines);

    /** @return the fields for a request of this task to this address, as "Name: value" */
    std::vector<std::string> fieldsFor(const Request &request, const std::string &address) const;

private:
    struct Entry
    {
        std::vector<std::string> fields;
        std::vector<std::string> streams; ///< addresses; only their hosts matter
    };

    void keep(const std::string &key, Entry entry);
    const Entry *find(const Request &request) const;

    std::unordered_map<std::string, Entry> m_entries;
    std::deque<std::string> m_keys; ///< the oldest first
};

/**
 * The page that a stream or an image belongs to, as browsers name it in Referer: without user,
 * password and fragment, and not at all for an insecure address (RFC 9110, section 10.1.3).
 */
std::string refererFor(const std::string &page, const std::string &address);

/**
 * Whether fields for the one address may be sent to the other as well: the same host and, unless
 * both are the usual ones, port; and no step from HTTPS to HTTP.
 */
bool isSameHost(const std::string &from, const std::string &to);

} // namespace taskengine

#endif
