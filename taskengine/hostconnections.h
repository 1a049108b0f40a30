/** How many connections the downloads have to each host. */
#ifndef VIDEODOWN_TASKENGINE_HOSTCONNECTIONS_H
#define VIDEODOWN_TASKENGINE_HOSTCONNECTIONS_H

#include <string>
#include <unordered_map>
#include <utility>

namespace taskengine {

/** Counts by host. Used on the transfer thread only. */
class HostConnections
{
public:
    /** Beyond these no download gets a further connection; its first one it always gets. */
    static constexpr int most = 8;

    /** Counts for as long as it lives. */
    class Seat
    {
    public:
        /** @param hosts outlives the seat */
        Seat(HostConnections &hosts, std::string host) : m_hosts(hosts), m_host(std::move(host))
        {
            ++m_hosts.m_counts[m_host];
        }
        Seat(const Seat &) = delete;
        Seat &operator=(const Seat &) = delete;
        ~Seat() { leave(); }

        /** Counts for another host from now on: a redirect led there. */
        void moveTo(const std::string &host)
        {
            leave();
            m_host = host;
            ++m_hosts.m_counts[m_host];
        }

    private:
        void leave()
        {
            if (--m_hosts.m_counts[m_host] == 0)
                m_hosts.m_counts.erase(m_host);
        }

        HostConnections &m_hosts;
        std::string m_host;
    };

    int count(const std::string &host) const
    {
        const auto found = m_counts.find(host);
        return found == m_counts.end() ? 0 : found->second;
    }

private:
    std::unordered_map<std::string, int> m_counts;
};

} // namespace taskengine

#endif
