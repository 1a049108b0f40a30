#include "site/relay.h"

#include <arpa/inet.h>
#include <array>
#include <csignal>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace {

sockaddr_in loopback(int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<in_port_t>(port));
    return address;
}

int newSocket()
{
    return ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

// Passes on what has come in. false: the connection is over.
bool pass(Channel &from, Channel &to)
{
    std::array<char, 65536> bytes{};
    const ssize_t size = from.read(bytes.data(), bytes.size());
    return size > 0 && to.write(bytes.data(), static_cast<std::size_t>(size));
}

void passBothWays(Channel &one, Channel &other)
{
    for (bool open = true; open;) {
        std::array<pollfd, 2> ends = {{{one.socket(), POLLIN, 0}, {other.socket(), POLLIN, 0}}};
        if (!one.hasPending() && ::poll(ends.data(), ends.size(), -1) < 0)
            return;
        if (one.hasPending() || ends[0].revents != 0)
            open = pass(one, other);
        if (open && ends[1].revents != 0)
            open = pass(other, one);
    }
}

void end(const std::unique_ptr<Channel> &channel)
{
    if (channel)
        ::shutdown(channel->socket(), SHUT_RDWR);
}

} // namespace

Channel::~Channel()
{
    ::close(m_socket);
}

ssize_t Channel::read(char *bytes, std::size_t size)
{
    return ::recv(m_socket, bytes, size, 0);
}

bool Channel::write(const char *bytes, std::size_t size)
{
    for (std::size_t written = 0; written < size;) {
        const ssize_t sent = ::send(m_socket, bytes + written, size - written, MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        written += static_cast<std::size_t>(sent);
    }
    return true;
}

Relay::~Relay()
{
    stop();
}

bool Relay::start()
{
    m_listener = newSocket();
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof address;
    // The socket interface takes every kind of address as the general one.
    auto *const general = reinterpret_cast<sockaddr *>(&address);
    if (::bind(m_listener, general, size) != 0 || ::listen(m_listener, SOMAXCONN) != 0 ||
        ::getsockname(m_listener, general, &size) != 0)
        return false;
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this] { listen(); });
    return true;
}

void Relay::stop()
{
    if (m_listener < 0)
        return;
    ::shutdown(m_listener, SHUT_RDWR);
    if (m_thread.joinable())
        m_thread.join();
    for (Connection &connection : m_connections) {
        end(connection.client);
        end(connection.target);
    }
    for (Connection &connection : m_connections)
        connection.thread.join();
    m_connections.clear();
    ::close(std::exchange(m_listener, -1));
}

std::unique_ptr<Channel> Relay::channelFor(int socket)
{
    return std::make_unique<Channel>(socket);
}

void Relay::listen()
{
    for (int socket = 0; (socket = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC)) >= 0;)
        accept(socket);
}

// Both sockets are there before the thread is, so that stop() finds them.
void Relay::accept(int socket)
{
    Connection &connection = m_connections.emplace_back();
    connection.client = channelFor(socket);
    connection.target = std::make_unique<Channel>(newSocket());
    connection.thread = std::thread([this, &connection] { serve(connection); });
}

// The sockets stay open until stop(), where their numbers must still mean them.
void Relay::serve(Connection &connection)
{
    sigset_t brokenPipe; // TLS writes without MSG_NOSIGNAL
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &brokenPipe, nullptr);
    const sockaddr_in address = loopback(m_target);
    const auto *const general = reinterpret_cast<const sockaddr *>(&address);
    if (::connect(connection.target->socket(), general, sizeof address) == 0 &&
        greet(*connection.client, *connection.target))
        passBothWays(*connection.client, *connection.target);
    end(connection.client);
    end(connection.target);
}
