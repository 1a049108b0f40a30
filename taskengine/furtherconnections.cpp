#include "taskengine/furtherconnections.h"

#include "taskengine/address.h"

#include <algorithm>

namespace taskengine {

namespace {

/** Seconds that half of a piece must take to be fetched beside the other: requests take time too.
 */
constexpr double leastTime = 0.5;

int connectionsFor(const Request &request)
{
    const int wanted = request.options->connections;
    return std::clamp(wanted > 0 ? wanted : request.record.nEngineParam1, 1, HostConnections::most);
}

} // namespace

FurtherConnections::FurtherConnections(const JobContext &context, const Request &request)
    : m_context(context),
      m_request(request),
      m_host(hostOf(request.record.szDownloadURL)),
      m_ramp(connectionsFor(request))
{
}

std::optional<Fault> FurtherConnections::work(PartFile &part, Piece *first, Clock::time_point now)
{
    for (const auto &fetch : m_fetches)
        fetch->checkSpeed(now);
    if (const auto fault = settleEnded(first))
        return fault;
    if (m_paused)
        return std::nullopt;
    measure(part, first, now);
    closeSurplus(first);
    return openWanted(part, first);
}

/**
 * Where the rate limit holds data back nothing is measured: that makes the rate, and a further
 * connection would only take from the other downloads.
 */
void FurtherConnections::measure(const PartFile &part, const Piece *first, Clock::time_point now)
{
    if (m_context.rate.holds() == m_holds)
        m_ramp.update(part.size(), receiving(first), now);
    else
        m_ramp.restart();
    m_holds = m_context.rate.holds();
}

std::optional<Fault> FurtherConnections::settleEnded(Piece *first)
{
    for (auto entry = m_fetches.begin(); entry != m_fetches.end();) {
        const PieceFetch &fetch = **entry;
        if (fetch.fault())
            return fetch.fault();
        if (fetch.state() == PieceFetch::State::Asking ||
            fetch.state() == PieceFetch::State::Receiving) {
            ++entry;
            continue;
        }
        settle(fetch, first);
        entry = m_fetches.erase(entry);
    }
    return std::nullopt;
}

/** A piece of which nothing came goes back to where it was taken from. */
void FurtherConnections::settle(const PieceFetch &fetch, Piece *first)
{
    if (first != nullptr && first->end == fetch.rest().first)
        first->end = fetch.rest().end;
    if (fetch.state() == PieceFetch::State::Lost)
        m_ramp.lose();
    else if (fetch.state() == PieceFetch::State::Refused)
        m_ramp.limit(receiving(first));
}

void FurtherConnections::closeSurplus(Piece *first)
{
    while (!m_fetches.empty() && (open(first) > m_ramp.wanted() ||
                                  m_context.hosts.count(m_host) > HostConnections::most)) {
        if (first != nullptr && first->end == m_fetches.back()->rest().first)
            first->end = m_fetches.back()->rest().end;
        m_fetches.pop_back();
    }
}

std::optional<Fault> FurtherConnections::openWanted(PartFile &part, Piece *first)
{
    while (mayOpen(part, first)) {
        const auto share = shareOf(part, first);
        if (!share)
            break;
        if (const auto fault = part.allowPieces())
            return fault;
        if (!part.hasPieces()) // the file system does not let us reserve space
            m_ramp.limit(1);
        else if (!openFor(*share, part, first))
            break;
    }
    return std::nullopt;
}

int FurtherConnections::open(const Piece *first) const
{
    return static_cast<int>(m_fetches.size()) + (first != nullptr ? 1 : 0);
}

bool FurtherConnections::mayOpen(const PartFile &part, const Piece *first) const
{
    return open(first) < m_ramp.wanted() && m_ramp.wanted() > 1 &&
           m_context.hosts.count(m_host) < HostConnections::most &&
           part.size() < part.facts().total;
}

std::optional<Share> FurtherConnections::shareOf(const PartFile &part, const Piece *first) const
{
    std::vector<Piece> underWay;
    for (const auto &fetch : m_fetches)
        underWay.push_back(fetch->rest());
    if (first != nullptr)
        underWay.push_back(*first);
    const auto least = static_cast<std::int64_t>(m_request.options->leastPiece);
    const auto share = nextShare(part.pieces().missing({0, part.facts().total}), underWay, least);
    const bool isWorthIt =
        share && (!share->from || m_ramp.secondsFor(share->piece.length()) >= leastTime);
    return isWorthIt ? share : std::nullopt;
}

bool FurtherConnections::openFor(const Share &share, PartFile &part, Piece *first)
{
    auto fetch = std::make_unique<PieceFetch>(m_context, m_request, part, m_host);
    if (!fetch->start(share.piece))
        return false;
    if (share.from && *share.from < m_fetches.size())
        m_fetches[*share.from]->shorten(share.piece.first);
    else if (share.from)
        first->end = share.piece.first;
    m_fetches.push_back(std::move(fetch));
    return true;
}

int FurtherConnections::receiving(const Piece *first) const
{
    const auto count = std::count_if(m_fetches.begin(), m_fetches.end(), [](const auto &fetch) {
        return fetch->state() == PieceFetch::State::Receiving;
    });
    return static_cast<int>(count) + (first != nullptr ? 1 : 0);
}

void FurtherConnections::setPaused(bool paused)
{
    m_paused = paused;
    m_ramp.restart();
    for (const auto &fetch : m_fetches)
        fetch->setPaused(paused);
}

void FurtherConnections::giveUp()
{
    if (!m_fetches.empty())
        m_ramp.limit(1);
    m_fetches.clear();
}

} // namespace taskengine
