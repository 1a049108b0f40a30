#ifndef VIDEODOWN_SITE_RELAY_H
#define VIDEODOWN_SITE_RELAY_H

#include <list>
#include <memory>
#include <string>
#include <sys/types.h>
#include <thread>

/** One end of a relayed connection. Owns its socket. */
class Channel
{
public:
    explicit Channel(int socket) : m_socket(socket) {}
    Channel(const Channel &) = delete;
    Channel &operator=(const Channel &) = delete;
    virtual ~Channel();

    int socket() const { return m_socket; }
    /** Whether read() would have something without the socket being readable. */
    virtual bool hasPending() const { return false; }
    /** Waits for bytes. @return their number; 0 or less: the connection is over. */
    virtual ssize_t read(char *bytes, std::size_t size);
    /** Sends everything. @return false when the connection is over. */
    virtual bool write(const char *bytes, std::size_t size);
    bool write(const std::string &text) { return write(text.data(), text.size()); }

private:
    const int m_socket;
};

/**
 * Listens on a port of 127.0.0.1 and passes on what arrives to another one, both ways, with a
 * thread for each connection. What is agreed on first is up to the derived class.
 *
 * start() and stop() belong to one thread. Derived classes call stop() in their destructor.
 */
class Relay
{
public:
    /** @param target the port that connections are passed on to. */
    explicit Relay(int target) : m_target(target) {}
    Relay(const Relay &) = delete;
    Relay &operator=(const Relay &) = delete;
    virtual ~Relay();

    /** Listens on any free port. @return false when there is none. */
    bool start();
    /** Closes every connection and waits for the threads. May be repeated. */
    void stop();
    int port() const { return m_port; }

protected:
    /** Reads and answers what the client sends first. @return false to end the connection. */
    virtual bool greet(Channel &client, Channel &target) = 0;
    /** @param socket of a client that has just connected. */
    virtual std::unique_ptr<Channel> channelFor(int socket);

private:
    struct Connection
    {
        std::thread thread;
        std::unique_ptr<Channel> client;
        std::unique_ptr<Channel> target;
    };

    void listen();
    void accept(int socket);
    void serve(Connection &connection);

    const int m_target;
    int m_listener = -1;
    int m_port = 0;
    std::thread m_thread;
    std::list<Connection> m_connections; ///< the listening thread's, until it has ended
};

#endif
