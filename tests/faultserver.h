/** A server that answers with whatever bytes a test wants, also such as no HTTP library would. */
#ifndef VIDEODOWN_TESTS_FAULTSERVER_H
#define VIDEODOWN_TESTS_FAULTSERVER_H

#include <QList>
#include <QString>

#include <arpa/inet.h>
#include <mutex>
#include <netinet/in.h>
#include <sstream>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <utility>

/**
 * Listens on the loopback interface. Each connection gets the next of the answers (the last one
 * again and again) to its first request, and is closed. What is behind `nextRequest` in an answer
 * waits for a further request.
 */
class FaultServer
{
public:
    static constexpr char nextRequest = '\x1d';

    explicit FaultServer(QList<std::string> answers) : m_answers(std::move(answers))
    {
        m_socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto *where = reinterpret_cast<sockaddr *>(&address);
        if (::bind(m_socket, where, size) != 0 || ::listen(m_socket, 8) != 0 ||
            ::getsockname(m_socket, where, &size) != 0)
            qFatal("no port on the loopback interface");
        m_port = ntohs(address.sin_port);
        m_thread = std::thread([this] { serve(); });
    }
    FaultServer(const FaultServer &) = delete;
    FaultServer &operator=(const FaultServer &) = delete;
    ~FaultServer()
    {
        ::shutdown(m_socket, SHUT_RDWR);
        m_thread.join();
        ::close(m_socket);
    }

    int port() const { return m_port; }
    std::string address(const std::string &scheme = "http") const
    {
        return scheme + "://127.0.0.1:" + std::to_string(m_port) + "/file";
    }
    /** The headers of the requests so far. */
    QList<std::string> requests() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_requests;
    }

private:
    void serve()
    {
        for (qsizetype number = 0;; ++number) {
            const int connection = ::accept4(m_socket, nullptr, nullptr, SOCK_CLOEXEC);
            if (connection < 0)
                return;
            std::istringstream parts(m_answers[qMin(number, m_answers.size() - 1)]);
            std::string part;
            do {
                std::getline(parts, part, nextRequest);
                answer(connection, part);
            } while (parts.good());
            ::close(connection);
        }
    }

    void answer(int connection, const std::string &bytes)
    {
        std::string request;
        char buffer[4096];
        while (request.find("\r\n\r\n") == std::string::npos) {
            const ssize_t length = ::recv(connection, buffer, sizeof buffer, 0);
            if (length <= 0)
                break;
            request.append(buffer, static_cast<std::size_t>(length));
            if (request.front() == '\x16') // a TLS handshake has no end of headers
                break;
        }
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_requests.append(request);
        }
        for (std::size_t sent = 0; sent < bytes.size();) {
            const ssize_t length =
                ::send(connection, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
            if (length <= 0)
                return;
            sent += static_cast<std::size_t>(length);
        }
    }

    const QList<std::string> m_answers;
    int m_socket = -1;
    int m_port = 0;
    mutable std::mutex m_mutex;
    QList<std::string> m_requests; // guarded by m_mutex
    std::thread m_thread;
};

#endif
