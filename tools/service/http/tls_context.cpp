#include "tools/service/http/tls_context.h"

#include <openssl/err.h>

#include <stdexcept>
#include <utility>

namespace tovik_service::http {

namespace {

constexpr long hour = 3600;
constexpr long day = 24 * hour;

void require(bool good, const std::string& what)
{
    if (!good)
        throw std::runtime_error(what + ": " + opensslError());
}

std::string alternativeNames(const std::string& host)
{
    std::string names = "DNS:localhost,IP:127.0.0.1,IP:::1";
    const bool is_address = host.find_first_not_of("0123456789.") == std::string::npos ||
                            host.find(':') != std::string::npos;
    if (!host.empty() && host != "localhost" && host != "127.0.0.1" && host != "::1")
        names += (is_address ? ",IP:" : ",DNS:") + host;
    return names;
}

} // namespace

TlsContext::TlsContext(TlsSettings settings)
    : settings_(std::move(settings)),
      context_(SSL_CTX_new(TLS_server_method()))
{
    require(context_ != nullptr, "cannot start TLS");
    SSL_CTX* context = context_.get();
    // A resumed session shows no certificate, so faults of the certificate would be missed.
    SSL_CTX_set_session_cache_mode(context, SSL_SESS_CACHE_OFF);
    SSL_CTX_set_options(context, SSL_OP_NO_TICKET | SSL_OP_IGNORE_UNEXPECTED_EOF);
    SSL_CTX_set_num_tickets(context, 0);
    restrictVersions();
    makeOwn();
    if (settings_.certificate_file.empty()) {
        require(SSL_CTX_use_certificate(context, good_.get()) == 1 &&
                    SSL_CTX_use_PrivateKey(context, own_key_.get()) == 1,
                "cannot use the own certificate");
    } else {
        loadFiles();
    }
    SSL_CTX_set_cert_cb(context, &TlsContext::chooseCertificate, this);
}

TlsContext::SessionPointer TlsContext::newSession(int descriptor)
{
    SessionPointer session(SSL_new(context_.get()));
    if (session && SSL_set_fd(session.get(), descriptor) != 1)
        session.reset();
    return session;
}

std::string TlsContext::certificatesPem() const
{
    X509* shown = SSL_CTX_get0_certificate(context_.get());
    return toPem(shown) + toPem(wrong_host_.get()) + toPem(expired_.get());
}

int TlsContext::chooseCertificate(SSL* session, void* self)
{
    const auto* context = static_cast<const TlsContext*>(self);
    const CertificateChoice choice =
        context->settings_.choose ? context->settings_.choose() : CertificateChoice::Good;
    if (choice == CertificateChoice::Good)
        return 1;
    X509* certificate =
        choice == CertificateChoice::Expired ? context->expired_.get() : context->wrong_host_.get();
    SSL_certs_clear(session);
    return SSL_use_certificate(session, certificate) == 1 &&
                   SSL_use_PrivateKey(session, context->own_key_.get()) == 1
               ? 1
               : 0;
}

void TlsContext::restrictVersions()
{
    const bool only13 = settings_.version == "1.3";
    const bool only12 = settings_.version == "1.2";
    const int lowest = only13 ? TLS1_3_VERSION : TLS1_2_VERSION;
    const int highest = only12 ? TLS1_2_VERSION : TLS1_3_VERSION;
    require(SSL_CTX_set_min_proto_version(context_.get(), lowest) == 1 &&
                SSL_CTX_set_max_proto_version(context_.get(), highest) == 1,
            "cannot set the TLS version");
}

void TlsContext::loadFiles()
{
    require(
        SSL_CTX_use_certificate_chain_file(context_.get(), settings_.certificate_file.c_str()) == 1,
        "cannot use the certificate " + settings_.certificate_file + " given by --cert");
    require(SSL_CTX_use_PrivateKey_file(context_.get(), settings_.key_file.c_str(),
                                        SSL_FILETYPE_PEM) == 1,
            "cannot use the key " + settings_.key_file + " given by --key");
}

// All three share one key, so that making them takes no longer than making one.
void TlsContext::makeOwn()
{
    own_key_ = makeKey(settings_.key_type);
    const std::string names = alternativeNames(settings_.host);
    good_ = makeCertificate(own_key_.get(), {"localhost", names, -hour, 365 * day});
    wrong_host_ = makeCertificate(
        own_key_.get(), {"wrong-host.invalid", "DNS:wrong-host.invalid", -hour, 365 * day});
    expired_ = makeCertificate(own_key_.get(), {"expired localhost", names, -60 * day, -day});
}

} // namespace tovik_service::http
