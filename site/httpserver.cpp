#include "site/httpserver.h"

#include "site/headfault.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr std::chrono::seconds idleLimit{30};
constexpr std::chrono::seconds stallLimit{120};

class Connection : public httplib::Stream
{
public:
    Connection(socket_t socket, Gate &gate) : m_socket(socket), m_gate(gate) {}

    bool waitForRequest() { return !m_ends && (m_begin < m_end || waitFor(POLLIN, idleLimit)); }
    void spoilHead(const Misbehaviour &fault) { m_headFault = fault; }

    bool is_readable() const override { return waitFor(POLLIN, stallLimit); }
    bool is_writable() const override { return waitFor(POLLOUT, stallLimit); }
    ssize_t read(char *bytes, size_t size) override;
    ssize_t write(const char *bytes, size_t size) override;
    void get_remote_ip_and_port(std::string &ip, int &port) const override
    {
        describeEnd(::getpeername, ip, port);
    }
    void get_local_ip_and_port(std::string &ip, int &port) const override
    {
        describeEnd(::getsockname, ip, port);
    }
    socket_t socket() const override { return m_socket; }

private:
    using NameFunction = int (*)(int, sockaddr *, socklen_t *);

    void describeEnd(NameFunction name, std::string &ip, int &port) const;
    bool waitFor(short events, std::chrono::milliseconds limit) const;
    bool fillBuffer();
    ssize_t writeHead(const std::string &head, const Misbehaviour &fault);

    const socket_t m_socket;
    Gate &m_gate;
    std::optional<Misbehaviour> m_headFault;
    bool m_ends = false;
    std::array<char, 4096> m_buffer{};
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
};

// The connection whose request this thread is answering.
thread_local Connection *answered = nullptr;

ssize_t Connection::read(char *bytes, size_t size)
{
    if (m_begin == m_end && !fillBuffer())
        return -1;
    const std::size_t taken = std::min(size, m_end - m_begin);
    std::memcpy(bytes, m_buffer.data() + m_begin, taken);
    m_begin += taken;
    return static_cast<ssize_t>(taken);
}

bool Connection::fillBuffer()
{
    if (!waitFor(POLLIN, stallLimit))
        return false;
    const ssize_t received = ::recv(m_socket, m_buffer.data(), m_buffer.size(), 0);
    m_begin = 0;
    m_end = received > 0 ? static_cast<std::size_t>(received) : 0;
    return m_end > 0;
}

// The library writes the header block at once, and first.
ssize_t Connection::write(const char *bytes, size_t size)
{
    if (m_headFault) {
        const Misbehaviour fault = *std::exchange(m_headFault, std::nullopt);
        m_ends = endsWithConnection(fault);
        return writeHead(spoiltHead(std::string(bytes, size), fault), fault) < 0
                   ? -1
                   : static_cast<ssize_t>(size);
    }
    std::size_t written = 0;
    while (written < size) {
        if (!waitFor(POLLOUT, stallLimit))
            return -1;
        const ssize_t sent =
            ::send(m_socket, bytes + written, size - written, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0 && errno != EAGAIN)
            return -1;
        written += sent > 0 ? static_cast<std::size_t>(sent) : 0;
    }
    return static_cast<ssize_t>(size);
}

ssize_t Connection::writeHead(const std::string &head, const Misbehaviour &fault)
{
    if (fault.headerLatency.count() == 0)
        return write(head.data(), head.size());
    for (std::size_t begin = 0; begin < head.size();) {
        const std::size_t end = head.find('\n', begin) + 1;
        if (!m_gate.pause(fault.headerLatency) || write(head.data() + begin, end - begin) < 0)
            return -1;
        begin = end;
    }
    return static_cast<ssize_t>(head.size());
}

// Looks up from time to time, because closing the gate does not wake a poll.
bool Connection::waitFor(short events, std::chrono::milliseconds limit) const
{
    constexpr std::chrono::milliseconds step{20};
    for (auto waited = std::chrono::milliseconds::zero(); waited < limit; waited += step) {
        if (m_gate.isClosed())
            return false;
        pollfd entry{m_socket, events, 0};
        if (::poll(&entry, 1, static_cast<int>(step.count())) > 0)
            return true;
    }
    return false;
}

void Connection::describeEnd(NameFunction name, std::string &ip, int &port) const
{
    sockaddr_in address{};
    socklen_t size = sizeof address;
    // The socket interface takes every kind of address as the general one.
    if (name(m_socket, reinterpret_cast<sockaddr *>(&address), &size) != 0)
        return;
    ip = "127.0.0.1";
    port = ntohs(address.sin_port);
}

} // namespace

HttpServer::HttpServer(Gate &gate) : m_gate(gate)
{
    constexpr std::size_t mostConnections = 64;
    new_task_queue = [] { return new httplib::ThreadPool(mostConnections); };
    // The library only announces it to clients; serveRequests() is what ends a connection.
    set_keep_alive_timeout(idleLimit.count());
    set_keep_alive_max_count(1000000);
    set_tcp_nodelay(true);
    // Unlike the library's own option this one does not let two sites share a port.
    set_socket_options([this](socket_t socket) {
        const int on = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        m_listener = socket;
    });
}

int HttpServer::bind(int port)
{
    const std::string host = "127.0.0.1";
    const int bound = port == 0 ? bind_to_any_port(host) : bind_to_port(host, port) ? port : -1;
    // The library's backlog of five makes clients that open many connections wait a second and
    // more.
    if (bound > 0)
        ::listen(m_listener, SOMAXCONN);
    return bound;
}

bool HttpServer::process_and_close_socket(socket_t socket)
{
    serveRequests(socket);
    ::shutdown(socket, SHUT_RDWR);
    ::close(socket);
    return true;
}

void HttpServer::serveRequests(socket_t socket)
{
    Connection connection(socket, m_gate);
    // The site reads Range itself: the library neither knows If-Range nor cuts a range at the end.
    const auto dropRanges = [](httplib::Request &request) { request.ranges.clear(); };
    bool closed = false;
    answered = &connection;
    while (!closed && connection.waitForRequest())
        closed = !process_request(connection, false, closed, dropRanges) || closed;
    answered = nullptr;
}

void HttpServer::spoilHead(const Misbehaviour &fault)
{
    answered->spoilHead(fault);
}
