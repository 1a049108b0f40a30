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
    BodySender(std::string body, const ByteSpan &span, const Misbehaviour &fault, Gate &gate)
        : m_body(std::make_shared<const std::string>(std::move(body))),
          m_start(span.offset),
          m_fault(fault),
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
        if (m_fault.bytesPerSecond > 0)
            size = std::min(size, m_fault.bytesPerSecond / 20 + 1);
        return static_cast<std::size_t>(size);
    }

    bool waitForRate(std::size_t size)
    {
        if (m_fault.bytesPerSecond == 0)
            return true;
        const auto seconds =
            static_cast<double>(size) / static_cast<double>(m_fault.bytesPerSecond);
        return m_gate->pause(std::chrono::nanoseconds(static_cast<std::int64_t>(seconds * 1e9)));
    }

    std::shared_ptr<const std::string> m_body;
    std::uint64_t m_start;
    Misbehaviour m_fault;
    Gate *m_gate;
    bool m_held = false;
};

bool rangeIsWanted(const httplib::Request &request, const Resource &resource)
{
    const std::string condition = request.get_header_value("If-Range");
    return condition.empty() || condition == resource.entityTag ||
           condition == resource.lastModified;
}

ByteSpan spanFor(const httplib::Request &request, const Resource &resource, bool ignoreRange)
{
    const bool partial =
        !resource.entityTag.empty() && !ignoreRange && rangeIsWanted(request, resource);
    return selectSpan(partial ? request.get_header_value("Range") : std::string(),
                      resource.body.size());
}

ByteSpan begunEarlier(const ByteSpan &span, std::uint64_t bytes)
{
    const std::uint64_t shift = std::min(bytes, span.offset);
    return {span.status, span.offset - shift, span.length + shift};
}

void setRangeHeaders(httplib::Response &response, const Resource &resource, const ByteSpan &span,
                     bool ignoreRange)
{
    response.set_header("ETag", resource.entityTag);
    response.set_header("Last-Modified", resource.lastModified);
    if (!ignoreRange)
        response.set_header("Accept-Ranges", "bytes");
    const std::string size = '/' + std::to_string(resource.body.size());
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
             const Misbehaviour &fault, Gate &gate)
{
    if (fault.answer)
        replaceWith(*fault.answer, response, resource);
    if (!fault.entityTag.empty() && !resource.entityTag.empty())
        resource.entityTag = fault.entityTag;
    ByteSpan span = spanFor(request, resource, fault.ignoreRange);
    if (span.status == 206)
        span = begunEarlier(span, fault.earlierBy);
    response.status = span.status == 200 ? resource.status : span.status;
    if (!resource.entityTag.empty())
        setRangeHeaders(response, resource, span, fault.ignoreRange);
    if (span.length == 0) {
        response.set_content(std::string(), resource.contentType);
        return;
    }
    if (spoilsHead(fault))
        HttpServer::spoilHead(fault);
    BodySender sender(std::move(resource.body), span, fault, gate);
    if (fault.endless)
        response.set_chunked_content_provider(
            resource.contentType, [sender](std::size_t sent, httplib::DataSink &sink) mutable {
                return sender(sent, 0, sink);
            });
    else
        response.set_content_provider(static_cast<std::size_t>(span.length), resource.contentType,
                                      sender);
}
