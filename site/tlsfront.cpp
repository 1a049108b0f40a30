#include "site/tlsfront.h"

#include <openssl/pem.h>
#include <openssl/x509v3.h>

namespace {

template <auto Release>
struct Releaser
{
    template <typename Type>
    void operator()(Type *object) const
    {
        Release(object);
    }
};
using Key = std::unique_ptr<EVP_PKEY, Releaser<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Releaser<X509_free>>;

class TlsChannel : public Channel
{
public:
    TlsChannel(int socket, SSL_CTX *context) : Channel(socket), m_tls(SSL_new(context))
    {
        SSL_set_fd(m_tls.get(), socket);
    }

    bool accept() { return SSL_accept(m_tls.get()) == 1; }
    bool hasPending() const override { return SSL_pending(m_tls.get()) > 0; }
    ssize_t read(char *bytes, std::size_t size) override
    {
        return SSL_read(m_tls.get(), bytes, static_cast<int>(size));
    }
    bool write(const char *bytes, std::size_t size) override
    {
        return SSL_write(m_tls.get(), bytes, static_cast<int>(size)) > 0;
    }

private:
    std::unique_ptr<SSL, Releaser<SSL_free>> m_tls;
};

bool addExtension(X509 *certificate, int kind, const char *value)
{
    const std::unique_ptr<X509_EXTENSION, Releaser<X509_EXTENSION_free>> extension(
        X509V3_EXT_conf_nid(nullptr, nullptr, kind, value));
    return extension && X509_add_ext(certificate, extension.get(), -1) == 1;
}

// RFC 5280: version 3, for the address 127.0.0.1, good for a day.
Certificate makeCertificateFor(EVP_PKEY *key)
{
    constexpr long day = 86400;
    Certificate certificate(X509_new());
    X509 *const x509 = certificate.get();
    X509_NAME *const name = X509_get_subject_name(x509);
    const auto *const text = reinterpret_cast<const unsigned char *>("videosite");
    const bool made =
        X509_set_version(x509, X509_VERSION_3) == 1 &&
        ASN1_INTEGER_set(X509_get_serialNumber(x509), 1) == 1 &&
        X509_gmtime_adj(X509_getm_notBefore(x509), -day) != nullptr &&
        X509_gmtime_adj(X509_getm_notAfter(x509), day) != nullptr &&
        X509_NAME_add_entry_by_NID(name, NID_commonName, MBSTRING_UTF8, text, -1, -1, 0) == 1 &&
        X509_set_issuer_name(x509, name) == 1 && X509_set_pubkey(x509, key) == 1 &&
        addExtension(x509, NID_subject_alt_name, "IP:127.0.0.1") &&
        addExtension(x509, NID_basic_constraints, "critical,CA:TRUE") &&
        X509_sign(x509, key, EVP_sha256()) > 0;
    return made ? std::move(certificate) : nullptr;
}

std::string pemOf(X509 *certificate)
{
    const std::unique_ptr<BIO, Releaser<BIO_free>> memory(BIO_new(BIO_s_mem()));
    PEM_write_bio_X509(memory.get(), certificate);
    char *bytes = nullptr;
    const long size = BIO_get_mem_data(memory.get(), &bytes);
    return {bytes, static_cast<std::size_t>(size)};
}

} // namespace

TlsFront::~TlsFront()
{
    stop();
}

bool TlsFront::makeCertificate()
{
    const Key key(EVP_EC_gen("P-256"));
    const Certificate certificate = key ? makeCertificateFor(key.get()) : nullptr;
    m_context.reset(SSL_CTX_new(TLS_server_method()));
    if (!certificate || !m_context ||
        SSL_CTX_use_certificate(m_context.get(), certificate.get()) != 1 ||
        SSL_CTX_use_PrivateKey(m_context.get(), key.get()) != 1)
        return false;
    m_certificate = pemOf(certificate.get());
    return true;
}

bool TlsFront::greet(Channel &client, Channel & /*target*/)
{
    return static_cast<TlsChannel &>(client).accept(); // made by channelFor()
}

std::unique_ptr<Channel> TlsFront::channelFor(int socket)
{
    return std::make_unique<TlsChannel>(socket, m_context.get());
}
