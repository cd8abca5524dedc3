#ifndef TOOLS_SERVICE_HTTP_TLS_CONTEXT_H
#define TOOLS_SERVICE_HTTP_TLS_CONTEXT_H

#include <openssl/evp.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace tovik_service::http {

/// Frees OpenSSL objects.
struct OpensslDeleter
{
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    void operator()(X509* certificate) const { X509_free(certificate); }
    void operator()(SSL* session) const { SSL_free(session); }
    void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
};

using KeyPointer = std::unique_ptr<EVP_PKEY, OpensslDeleter>;
using CertificatePointer = std::unique_ptr<X509, OpensslDeleter>;

/// The kinds of keys that the service makes for itself.
enum class KeyType
{
    Rsa2048,
    P256
};

/// The certificates that a handshake can show.
enum class CertificateChoice
{
    Good,
    WrongHost,
    Expired
};

/// How one handshake shall go.
struct HandshakePlan
{
    CertificateChoice certificate = CertificateChoice::Good;
    std::string version;           ///< "1.2", "1.3", or empty: as the settings say
    bool forgets_sessions = false; ///< from now on, no earlier one can be resumed
    bool offers_sessions = true;
    bool closes = false; ///< in place of an answer
    bool resets = false; ///< when it is done
};

/// How the service shall speak TLS.
struct TlsSettings
{
    std::string host; ///< named in the certificate, beside localhost
    KeyType key_type = KeyType::Rsa2048;
    std::string version;          ///< "1.2", "1.3", or empty for both
    std::string certificate_file; ///< empty: self-made
    std::string key_file;
    /// Asked once for each handshake, with whether the client asks for resumption.
    std::function<HandshakePlan(bool)> plan;
};

/// The server's side of TLS: keys, certificates and protocol versions.
class TlsContext
{
public:
    using SessionPointer = std::unique_ptr<SSL, OpensslDeleter>;

    /// Throws std::runtime_error.
    explicit TlsContext(TlsSettings settings);

    /// A session over this socket, before its handshake. The plan, which must outlive it, is made
    /// when the client has said what it wants.
    SessionPointer newSession(int descriptor, HandshakePlan* plan);

    /// All certificates that can be shown, for clients that shall trust them.
    std::string certificatesPem() const;

private:
    static int takeHello(SSL* session, int* alert, void* self);
    static int markTicket(SSL* session, void* self);
    static SSL_TICKET_RETURN judgeTicket(SSL* session, SSL_SESSION* ticket,
                                         const unsigned char* name, std::size_t name_size,
                                         SSL_TICKET_STATUS status, void* self);
    bool apply(const HandshakePlan& plan, SSL* session);
    void loadFiles();
    void makeOwn();

    TlsSettings settings_;
    std::unique_ptr<SSL_CTX, OpensslDeleter> context_;
    KeyPointer own_key_;
    CertificatePointer good_;
    CertificatePointer wrong_host_;
    CertificatePointer expired_;
    std::atomic<std::uint32_t> generation_{0}; ///< of the sessions that can be resumed
};

/// The oldest waiting OpenSSL error in words.
std::string opensslError();

} // namespace tovik_service::http

#endif
