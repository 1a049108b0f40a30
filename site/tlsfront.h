#ifndef VIDEODOWN_SITE_TLSFRONT_H
#define VIDEODOWN_SITE_TLSFRONT_H

#include "site/relay.h"

#include <openssl/ssl.h>

/** Serves over TLS what another port serves without, with a certificate that it signs itself. */
class TlsFront : public Relay
{
public:
    using Relay::Relay;
    ~TlsFront() override;

    /** Makes key and certificate; before start(). @return false when that is not possible. */
    bool makeCertificate();
    /** The certificate, PEM. */
    const std::string &certificate() const { return m_certificate; }

protected:
    bool greet(Channel &client, Channel &target) override;
    std::unique_ptr<Channel> channelFor(int socket) override;

private:
    struct ContextDeleter
    {
        void operator()(SSL_CTX *context) const { SSL_CTX_free(context); }
    };

    std::unique_ptr<SSL_CTX, ContextDeleter> m_context;
    std::string m_certificate;
};

#endif
