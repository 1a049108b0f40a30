/** The connections of a download beside its first one. */
#ifndef VIDEODOWN_TASKENGINE_FURTHERCONNECTIONS_H
#define VIDEODOWN_TASKENGINE_FURTHERCONNECTIONS_H

#include "taskengine/connectionramp.h"
#include "taskengine/piecefetch.h"

#include <memory>
#include <vector>

namespace taskengine {

/**
 * Opens them one by one while each makes the whole faster, gives each a piece of the file, and does
 * without them when the site does not play along: nothing that happens to them is a fault of the
 * download, but that the file cannot be written.
 */
class FurtherConnections
{
public:
    /** @param request outlives this object */
    FurtherConnections(const JobContext &context, const Request &request);

    /** The first connection has been answered by this host, which is to give the others too. */
    void setHost(const std::string &host) { m_host = host; }

    /**
     * Does what has become due. Not from inside a transfer's callback.
     * @param first what the first connection is about to fetch, which may lose its end to a further
     * one; null when there is nothing
     * @return a fault that ends the try
     */
    std::optional<Fault> work(PartFile &part, Piece *first, Clock::time_point now);

    /** @return whether none is under way */
    bool isIdle() const { return m_fetches.empty(); }

    void setPaused(bool paused);

    /** Ends all. The first one did not stand them: there will be no more. */
    void giveUp();

private:
    std::optional<Fault> settleEnded(Piece *first);
    void settle(const PieceFetch &fetch, Piece *first);
    void measure(const PartFile &part, const Piece *first, Clock::time_point now);
    std::optional<Fault> openWanted(PartFile &part, Piece *first);
    bool mayOpen(const PartFile &part, const Piece *first) const;
    std::optional<Share> shareOf(const PartFile &part, const Piece *first) const;
    bool openFor(const Share &share, PartFile &part, Piece *first);
    void closeSurplus(Piece *first);
    int receiving(const Piece *first) const;
    int open(const Piece *first) const;

    const JobContext m_context;
    const Request &m_request;
    std::string m_host;
    ConnectionRamp m_ramp;
    std::uint64_t m_holds = 0; ///< of the rate limit, those that are known
    bool m_paused = false;
    std::vector<std::unique_ptr<PieceFetch>> m_fetches;
};

} // namespace taskengine

#endif
