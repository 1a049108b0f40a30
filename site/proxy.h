#ifndef VIDEODOWN_SITE_PROXY_H
#define VIDEODOWN_SITE_PROXY_H

#include "site/relay.h"

/**
 * A proxy through which every host name and port leads to one port of 127.0.0.1. It speaks HTTP
 * (RFC 9110, sections 7.6 and 9.3.6: plain requests and CONNECT) and SOCKS5 (RFC 1928, RFC 1929).
 */
class Proxy : public Relay
{
public:
    /** @param user, password: what clients must show; both empty: nothing. */
    Proxy(int target, std::string user, std::string password);
    ~Proxy() override;

protected:
    bool greet(Channel &client, Channel &target) override;

private:
    bool greetHttp(Channel &client, Channel &target, std::string head) const;
    bool greetSocks(Channel &client) const;
    bool checkPassword(Channel &client) const;
    bool isOpen() const { return m_user.empty() && m_password.empty(); }

    const std::string m_user;
    const std::string m_password;
};

#endif
