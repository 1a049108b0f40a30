/** A connection that fetches one piece of a file of which the rest comes otherwise. */
#ifndef VIDEODOWN_TASKENGINE_PIECEFETCH_H
#define VIDEODOWN_TASKENGINE_PIECEFETCH_H

#include "taskengine/hostconnections.h"
#include "taskengine/job.h"
#include "taskengine/partfile.h"
#include "taskengine/responsehead.h"

#include <optional>

namespace taskengine {

/**
 * Writes to the file only what an answer brings that is beyond doubt: exactly this piece, of a file
 * with this size and this validator.
 */
class PieceFetch final : private TransferClient
{
public:
    enum class State {
        Asking,    ///< no answer yet
        Receiving, ///< the answer is the right one
        Done,      ///< the piece is there
        Refused,   ///< the answer was another one
        Lost,      ///< the connection ended early, or the file could not be written
    };

    /** @param part open, and outlives this object as `request` does */
    PieceFetch(const JobContext &context, const Request &request, PartFile &part,
               const std::string &host);

    /** @return whether the transfer was started */
    bool start(const Piece &piece);

    State state() const { return m_state; }

    /** @return what is still to come */
    const Piece &rest() const { return m_rest; }

    /** Leaves the rest from `end` on to another connection. */
    void shorten(std::int64_t end) { m_rest.end = end; }

    /** @return why the file could not be written, if so */
    const std::optional<Fault> &fault() const { return m_fault; }

    void setPaused(bool paused) { m_transfer.setPaused(paused); }
    void checkSpeed(Clock::time_point now) { m_transfer.checkSpeed(now); }

private:
    bool isRight(const ResponseHead &head) const;
    bool responseBegan() override;
    bool received(const char *data, std::size_t length) override;
    void transferEnded(CURLcode code) override;

    const JobContext m_context;
    const Request &m_request;
    PartFile &m_part;
    HostConnections::Seat m_seat;
    Piece m_asked;
    Piece m_rest;
    State m_state = State::Asking;
    std::optional<Fault> m_fault;
    Transfer m_transfer;
};

} // namespace taskengine

#endif
