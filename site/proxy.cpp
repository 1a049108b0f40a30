#include "site/proxy.h"

#include <httplib.h>

#include <array>

namespace {

constexpr char socksVersion = 5;
constexpr char withPassword = 2;

// Empty when the connection ends first.
std::string readBytes(Channel &from, std::size_t count)
{
    std::string bytes(count, '\0');
    for (std::size_t had = 0; had < count;) {
        const ssize_t size = from.read(bytes.data() + had, count - had);
        if (size <= 0)
            return {};
        had += static_cast<std::size_t>(size);
    }
    return bytes;
}

// A length of one byte, and so many bytes.
std::string readCounted(Channel &from)
{
    const std::string length = readBytes(from, 1);
    return length.empty() ? length : readBytes(from, static_cast<unsigned char>(length[0]));
}

// Byte by byte, so that nothing of what follows is taken.
bool readHead(Channel &from, std::string &head)
{
    constexpr std::size_t most = 65536;
    while (head.size() < most && head.find("\r\n\r\n") == std::string::npos) {
        const std::string byte = readBytes(from, 1);
        if (byte.empty())
            return false;
        head += byte;
    }
    return head.size() < most;
}

// "GET http://host/path HTTP/1.1" becomes "GET /path HTTP/1.1"; one request a connection.
std::string forTarget(std::string head)
{
    const std::size_t address = head.find(' ') + 1;
    const std::size_t host = head.find("://", address);
    const std::size_t path = head.find_first_of("/ ", host + 3);
    head.erase(address, path - address);
    return head.insert(head.find("\r\n") + 2, "Connection: close\r\n");
}

} // namespace

Proxy::Proxy(int target, std::string user, std::string password)
    : Relay(target), m_user(std::move(user)), m_password(std::move(password))
{
}

Proxy::~Proxy()
{
    stop();
}

bool Proxy::greet(Channel &client, Channel &target)
{
    const std::string first = readBytes(client, 1);
    if (first.empty())
        return false;
    return first[0] == socksVersion ? greetSocks(client) : greetHttp(client, target, first);
}

bool Proxy::greetHttp(Channel &client, Channel &target, std::string head) const
{
    if (!readHead(client, head))
        return false;
    const auto [name, value] = httplib::make_basic_authentication_header(m_user, m_password, true);
    if (!isOpen() && head.find(name + ": " + value + "\r\n") == std::string::npos) {
        client.write("HTTP/1.1 407 Proxy Authentication Required\r\n"
                     "Proxy-Authenticate: Basic realm=\"videosite\"\r\n"
                     "Content-Length: 0\r\nConnection: close\r\n\r\n");
        return false;
    }
    if (head.compare(0, 8, "CONNECT ") == 0)
        return client.write("HTTP/1.1 200 Connection established\r\n\r\n");
    return head.find("://") < head.find("\r\n") && target.write(forTarget(std::move(head)));
}

bool Proxy::greetSocks(Channel &client) const
{
    constexpr char none = 0;
    const char wanted = isOpen() ? none : withPassword;
    const bool isOffered = readCounted(client).find(wanted) != std::string::npos;
    client.write({socksVersion, isOffered ? wanted : '\xff'});
    if (!isOffered || (!isOpen() && !checkPassword(client)))
        return false;
    constexpr char connectTo = 1;
    constexpr char hostName = 3;
    constexpr std::size_t version4 = 4;
    constexpr std::size_t version6 = 16;
    const std::string request = readBytes(client, 4);
    if (request.empty() || request[1] != connectTo)
        return false;
    const std::string host = request[3] == hostName
                                 ? readCounted(client)
                                 : readBytes(client, request[3] == 1 ? version4 : version6);
    return !host.empty() && !readBytes(client, 2).empty() &&
           client.write({socksVersion, 0, 0, 1, 127, 0, 0, 1, 0, 0});
}

bool Proxy::checkPassword(Channel &client) const
{
    if (readBytes(client, 1).empty())
        return false;
    const std::string user = readCounted(client);
    const bool fits = user == m_user && readCounted(client) == m_password;
    return client.write({1, fits ? '\0' : '\1'}) && fits;
}
