#include "site/delivery.h"

#include "site/byterange.h"
#include "site/headfault.h"
#include "site/httpserver.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace {

// Sends a part of a body piece by piece, which is where delays, halts and cuts take effect.
class BodySender
{
public:
    BodySender(SharedText body, const ByteSpan &span, const MetFault &met,
               std::shared_ptr<void> member, Gate &gate)
        : m_body(std::move(body)),
          m_start(span.offset),
          m_fault(met.fault),
          m_crowd(met.crowd),
          m_member(std::move(member)),
          m_gate(&gate)
    {
    }

    // false closes the connection.
    bool operator()(std::size_t sent, std::size_t left, httplib::DataSink &sink)
    {
        if (m_fault.endless) {
            sent %= m_body->size();
            left = m_body->size() - sent;
        }
        if (isHoldPoint(sent) && !m_gate->hold())
            return false;
        if (m_fault.cutAfter && sent >= *m_fault.cutAfter)
            return false;
        const std::size_t size = pieceSize(sent, left);
        if (!sink.write(m_body->data() + m_start + sent, size))
            return false;
        return waitForRate(size);
    }

private:
    bool isHoldPoint(std::size_t sent)
    {
        if (m_held || !m_fault.holdAfter || sent < *m_fault.holdAfter)
            return false;
        m_held = true;
        return true;
    }

    // Pieces end where the next fault waits, and about twenty times a second when a rate is set.
    std::size_t pieceSize(std::size_t sent, std::size_t left) const
    {
        constexpr std::uint64_t most = 65536;
        std::uint64_t size = std::min<std::uint64_t>(left, most);
        if (m_fault.cutAfter)
            size = std::min(size, *m_fault.cutAfter - sent);
        if (m_fault.holdAfter && !m_held)
            size = std::min(size, *m_fault.holdAfter - sent);
        for (const std::uint64_t rate : {m_fault.bytesPerSecond, m_fault.clientBytesPerSecond}) {
            if (rate > 0)
                size = std::min(size, rate / 20 + 1);
        }
        return static_cast<std::size_t>(size);
    }

    bool waitForRate(std::size_t size)
    {
        std::chrono::nanoseconds wait{0};
        if (m_fault.bytesPerSecond > 0)
            wait = m_own->waitFor(size, m_fault.bytesPerSecond);
        if (m_fault.clientBytesPerSecond > 0)
            wait = std::max(wait, m_crowd->waitFor(size, m_fault.clientBytesPerSecond));
        return wait.count() == 0 || m_gate->pause(wait);
    }

    SharedText m_body;
    std::uint64_t m_start;
    Misbehaviour m_fault;
    std::shared_ptr<Crowd> m_own = std::make_shared<Crowd>();
    std::shared_ptr<Crowd> m_crowd;
    std::shared_ptr<void> m_member;
    Gate *m_gate;
    bool m_held = false;
};

bool rangeIsWanted(const httplib::Request &request, const Resource &resource,
                   const Misbehaviour &fault)
{
    const std::string condition = request.get_header_value("If-Range");
    return condition.empty() || fault.ignoreCondition || condition == resource.entityTag ||
           condition == resource.lastModified;
}

ByteSpan spanFor(const httplib::Request &request, const Resource &resource,
                 const Misbehaviour &fault)
{
    const bool partial = !resource.entityTag.empty() && !fault.ignoreRange &&
                         rangeIsWanted(request, resource, fault);
    return selectSpan(partial ? request.get_header_value("Range") : std::string(),
                      resource.body->size());
}

ByteSpan shifted(const ByteSpan &span, const Misbehaviour &fault, std::uint64_t size)
{
    const std::uint64_t first = span.offset - std::min(fault.earlierBy, span.offset);
    std::uint64_t end = span.offset + span.length;
    end = std::min(end + fault.longerBy, size);
    end -= std::min(fault.shorterBy, end - first - 1);
    return {span.status, first, end - first};
}

void setRangeHeaders(httplib::Response &response, const Resource &resource, const ByteSpan &span,
                     const Misbehaviour &fault)
{
    response.set_header("ETag", resource.entityTag);
    response.set_header("Last-Modified", resource.lastModified);
    if (!fault.ignoreRange)
        response.set_header("Accept-Ranges", "bytes");
    const std::string size = '/' + std::to_string(resource.body->size() + fault.totalMore);
    if (span.status == 206)
        response.set_header("Content-Range", "bytes " + std::to_string(span.offset) + '-' +
                                                 std::to_string(span.offset + span.length - 1) +
                                                 size);
    else if (span.status == 416)
        response.set_header("Content-Range", "bytes *" + size);
}

void replaceWith(const SiteAnswer &answer, httplib::Response &response, Resource &resource)
{
    resource = {answer.status, answer.contentType, answer.body, {}, {}};
    for (const auto &[name, value] : answer.headers)
        response.set_header(name, value);
}

} // namespace

void deliver(const httplib::Request &request, httplib::Response &response, Resource resource,
             const MetFault &met, Gate &gate)
{
    const Misbehaviour &fault = met.fault;
    auto member = met.crowd->join(fault.mostAtOnce);
    if (!member || (fault.answer && fault.mostAtOnce == 0))
        replaceWith(fault.answer.value_or(SiteAnswer{503, "text/plain", {}, "busy"}), response,
                    resource);
    if (!fault.entityTag.empty() && !resource.entityTag.empty())
        resource.entityTag = fault.entityTag;
    ByteSpan span = spanFor(request, resource, fault);
    if (span.status == 206)
        span = shifted(span, fault, resource.body->size());
    response.status = span.status == 200 ? resource.status : span.status;
    if (!resource.entityTag.empty())
        setRangeHeaders(response, resource, span, fault);
    if (span.length == 0) {
        response.set_content(std::string(), resource.contentType);
        return;
    }
    if (spoilsHead(fault))
        HttpServer::spoilHead(fault);
    BodySender sender(std::move(resource.body), span, met, std::move(member), gate);
    if (fault.endless)
        response.set_chunked_content_provider(
            resource.contentType, [sender](std::size_t sent, httplib::DataSink &sink) mutable {
                return sender(sent, 0, sink);
            });
    else
        response.set_content_provider(static_cast<std::size_t>(span.length), resource.contentType,
                                      sender);
}
