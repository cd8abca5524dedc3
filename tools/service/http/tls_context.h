#ifndef TOOLS_SERVICE_HTTP_TLS_CONTEXT_H
#define TOOLS_SERVICE_HTTP_TLS_CONTEXT_H

#include "tools/service/http/certificate.h"

#include <openssl/ssl.h>

#include <functional>
#include <memory>
#include <string>

namespace tovik_service::http {

/// The certificates that a handshake can show.
enum class CertificateChoice
{
    Good,
    WrongHost,
    Expired
};

/// How the service shall speak TLS.
struct TlsSettings
{
    std::string host; ///< named in the certificate, beside localhost
    KeyType key_type = KeyType::Rsa2048;
    std::string version;          ///< "1.2", "1.3", or empty for both
    std::string certificate_file; ///< empty: self-made
    std::string key_file;
    std::function<CertificateChoice()> choose; ///< asked once for each handshake
};

/// The server's side of TLS: keys, certificates and protocol versions.
class TlsContext
{
public:
    struct SessionDeleter
    {
        void operator()(SSL* session) const { SSL_free(session); }
    };
    using SessionPointer = std::unique_ptr<SSL, SessionDeleter>;

    /// Throws std::runtime_error.
    explicit TlsContext(TlsSettings settings);

    /// A session over this socket, before its handshake.
    SessionPointer newSession(int descriptor);

    /// All certificates that can be shown, for clients that shall trust them.
    std::string certificatesPem() const;

private:
    struct ContextDeleter
    {
        void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
    };

    static int chooseCertificate(SSL* session, void* self);
    void restrictVersions();
    void loadFiles();
    void makeOwn();

    TlsSettings settings_;
    std::unique_ptr<SSL_CTX, ContextDeleter> context_;
    KeyPointer own_key_;
    CertificatePointer good_;
    CertificatePointer wrong_host_;
    CertificatePointer expired_;
};

} // namespace tovik_service::http

#endif
