#ifndef VIDEODOWN_SITE_HTTPSERVER_H
#define VIDEODOWN_SITE_HTTPSERVER_H

#include "site/gate.h"
#include "site/videosite.h"

#include <httplib.h>

/**
 * The HTTP library's server with connections of its own: they end at once when the gate is closed,
 * whatever they are waiting for, and wait patiently for a client that reads slowly or not at all.
 */
class HttpServer : public httplib::Server
{
public:
    /** @param gate must outlive the server. */
    explicit HttpServer(Gate &gate);

    /** Binds to 127.0.0.1. @param port 0 for any free one. @return the port, -1 when it is taken.
     */
    int bind(int port);

    /** For request handlers: the header block of the answer gets the faults that concern it. */
    static void spoilHead(const Misbehaviour &fault);

private:
    bool process_and_close_socket(socket_t socket) override;
    void serveRequests(socket_t socket);

    Gate &m_gate;
    socket_t m_listener = INVALID_SOCKET;
};

#endif
