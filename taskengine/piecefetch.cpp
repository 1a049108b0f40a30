#include "taskengine/piecefetch.h"

#include <algorithm>
#include <utility>

namespace taskengine {

PieceFetch::PieceFetch(const JobContext &context, const Request &request, PartFile &part,
                       const std::string &host)
    : m_context(context),
      m_request(request),
      m_part(part),
      m_seat(context.hosts, host),
      m_transfer(context.multi, context.rate, *this, request.record, *request.options)
{
}

bool PieceFetch::start(const Piece &piece)
{
    m_asked = m_rest = piece;
    TransferRequest request{m_request.record.szDownloadURL, piece.first, piece.end,
                            m_part.facts().validator};
    introduce(request, m_request, m_context.headers);
    return m_transfer.start(std::move(request));
}

/** The announced length lets libcurl see to it that not a byte too many comes. */
bool PieceFetch::isRight(const ResponseHead &head) const
{
    const PartFacts &facts = m_part.facts();
    return head.status == 206 && !head.contradictory && !head.encoded &&
           canBeVideo(head.mediaType) && head.validator == facts.validator && head.range &&
           head.range->total == facts.total && head.range->first == m_asked.first &&
           head.range->last + 1 == m_asked.end && head.length == m_asked.length();
}

bool PieceFetch::responseBegan()
{
    const ResponseHead head = responseHead(m_transfer.easy());
    m_seat.moveTo(head.host);
    m_state = isRight(head) ? State::Receiving : State::Refused;
    return m_state == State::Receiving && m_rest.length() > 0;
}

bool PieceFetch::received(const char *data, std::size_t length)
{
    const auto wanted =
        static_cast<std::size_t>(std::min(m_rest.length(), static_cast<std::int64_t>(length)));
    m_fault = m_part.write(m_rest.first, data, wanted);
    if (m_fault)
        return false;
    m_rest.first += static_cast<std::int64_t>(wanted);
    return wanted == length && (m_rest.length() > 0 || m_rest.end == m_asked.end);
}

void PieceFetch::transferEnded(CURLcode)
{
    if (m_state == State::Receiving && !m_fault && m_rest.length() == 0)
        m_state = State::Done;
    else if (m_state != State::Refused)
        m_state = State::Lost;
}

} // namespace taskengine
