#include "tools/service/http/tls_context.h"

#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/rsa.h>
#include <openssl/x509v3.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <random>
#include <stdexcept>
#include <utility>

namespace tovik_service::http {

namespace {

constexpr long hour = 3600;
constexpr long day = 24 * hour;

/// What a self-signed certificate shall say.
struct CertificateSettings
{
    std::string common_name;
    std::string alternative_names; ///< such as "DNS:localhost,IP:127.0.0.1"
    long not_before = 0;           ///< seconds from now
    long not_after = 0;            ///< seconds from now
};

void require(bool good, const std::string& what)
{
    if (!good)
        throw std::runtime_error(what + ": " + opensslError());
}

void requireMade(bool good)
{
    require(good, "cannot make a certificate");
}

void addExtension(X509* certificate, int nid, const std::string& value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
    X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, nid, value.c_str());
    requireMade(extension != nullptr);
    const int added = X509_add_ext(certificate, extension, -1);
    X509_EXTENSION_free(extension);
    requireMade(added == 1);
}

void setName(X509* certificate, const std::string& common_name)
{
    X509_NAME* name = X509_get_subject_name(certificate);
    const auto* bytes = reinterpret_cast<const unsigned char*>(common_name.c_str());
    requireMade(X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8, bytes, -1, -1, 0) == 1);
    requireMade(X509_set_issuer_name(certificate, name) == 1);
}

KeyPointer makeKey(KeyType type)
{
    KeyPointer key(type == KeyType::P256 ? EVP_EC_gen("P-256") : EVP_RSA_gen(2048));
    requireMade(key != nullptr);
    return key;
}

/// A certificate signed with its own key.
CertificatePointer makeCertificate(EVP_PKEY* key, const CertificateSettings& settings)
{
    CertificatePointer certificate(X509_new());
    X509* raw = certificate.get();
    requireMade(raw != nullptr && X509_set_version(raw, X509_VERSION_3) == 1);
    // A number of its own for each: clients confuse certificates of one issuer otherwise.
    std::random_device random;
    ASN1_INTEGER_set_uint64(X509_get_serialNumber(raw), (std::uint64_t{random()} << 16U) + 1);
    X509_gmtime_adj(X509_getm_notBefore(raw), settings.not_before);
    X509_gmtime_adj(X509_getm_notAfter(raw), settings.not_after);
    requireMade(X509_set_pubkey(raw, key) == 1);
    setName(raw, settings.common_name);
    addExtension(raw, NID_basic_constraints, "critical,CA:TRUE");
    addExtension(raw, NID_key_usage, "critical,digitalSignature,keyEncipherment,keyCertSign");
    addExtension(raw, NID_ext_key_usage, "serverAuth");
    addExtension(raw, NID_subject_key_identifier, "hash");
    addExtension(raw, NID_subject_alt_name, settings.alternative_names);
    requireMade(X509_sign(raw, key, EVP_sha256()) > 0);
    return certificate;
}

std::string toPem(X509* certificate)
{
    BIO* memory = BIO_new(BIO_s_mem());
    PEM_write_bio_X509(memory, certificate);
    char* data = nullptr;
    const long size = BIO_get_mem_data(memory, &data);
    std::string text(data, static_cast<std::size_t>(size));
    BIO_free(memory);
    return text;
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

/// Only "1.2" or "1.3", or both if it is empty.
bool restrictVersions(SSL* session, const std::string& version)
{
    const int lowest = version == "1.3" ? TLS1_3_VERSION : TLS1_2_VERSION;
    const int highest = version == "1.2" ? TLS1_2_VERSION : TLS1_3_VERSION;
    return SSL_set_min_proto_version(session, lowest) == 1 &&
           SSL_set_max_proto_version(session, highest) == 1;
}

/// To be asked while the client's first message is at hand.
bool asksForResumption(SSL* session)
{
    const unsigned char* bytes = nullptr;
    std::size_t size = 0;
    if (SSL_client_hello_get0_ext(session, TLSEXT_TYPE_psk, &bytes, &size) == 1)
        return true;
    return SSL_client_hello_get0_ext(session, TLSEXT_TYPE_session_ticket, &bytes, &size) == 1 &&
           size > 0;
}

} // namespace

std::string opensslError()
{
    const unsigned long code = ERR_get_error();
    if (code == 0)
        return "no further information";
    std::array<char, 256> text{};
    ERR_error_string_n(code, text.data(), text.size());
    ERR_clear_error();
    return text.data();
}

TlsContext::TlsContext(TlsSettings settings)
    : settings_(std::move(settings)),
      context_(SSL_CTX_new(TLS_server_method()))
{
    require(context_ != nullptr, "cannot start TLS");
    SSL_CTX* context = context_.get();
    // Sessions are in the clients' hands alone, as tickets.
    SSL_CTX_set_session_cache_mode(context, SSL_SESS_CACHE_OFF);
    SSL_CTX_set_options(context, SSL_OP_IGNORE_UNEXPECTED_EOF);
    SSL_CTX_set_num_tickets(context, 1);
    SSL_CTX_set_session_ticket_cb(context, &TlsContext::markTicket, &TlsContext::judgeTicket, this);
    SSL_CTX_set_client_hello_cb(context, &TlsContext::takeHello, this);
    makeOwn();
    if (settings_.certificate_file.empty()) {
        require(SSL_CTX_use_certificate(context, good_.get()) == 1 &&
                    SSL_CTX_use_PrivateKey(context, own_key_.get()) == 1,
                "cannot use the own certificate");
    } else {
        loadFiles();
    }
}

TlsContext::SessionPointer TlsContext::newSession(int descriptor, HandshakePlan* plan)
{
    SessionPointer session(SSL_new(context_.get()));
    if (session &&
        (SSL_set_fd(session.get(), descriptor) != 1 || SSL_set_app_data(session.get(), plan) != 1 ||
         !restrictVersions(session.get(), settings_.version)))
        session.reset();
    return session;
}

std::string TlsContext::certificatesPem() const
{
    X509* shown = SSL_CTX_get0_certificate(context_.get());
    return toPem(shown) + toPem(wrong_host_.get()) + toPem(expired_.get());
}

// Before anything is decided: sessions, version and certificate.
int TlsContext::takeHello(SSL* session, int*, void* self)
{
    auto* context = static_cast<TlsContext*>(self);
    auto* plan = static_cast<HandshakePlan*>(SSL_get_app_data(session));
    if (context->settings_.plan)
        *plan = context->settings_.plan(asksForResumption(session));
    if (plan->closes)
        return SSL_CLIENT_HELLO_RETRY; // hands the connection back without a word
    return context->apply(*plan, session) ? SSL_CLIENT_HELLO_SUCCESS : SSL_CLIENT_HELLO_ERROR;
}

bool TlsContext::apply(const HandshakePlan& plan, SSL* session)
{
    if (plan.forgets_sessions)
        ++generation_;
    if (!plan.offers_sessions) {
        SSL_set_options(session, SSL_OP_NO_TICKET);
        SSL_set_num_tickets(session, 0);
    }
    if (!plan.version.empty() && !restrictVersions(session, plan.version))
        return false;
    if (plan.certificate == CertificateChoice::Good)
        return true;
    X509* certificate =
        plan.certificate == CertificateChoice::Expired ? expired_.get() : wrong_host_.get();
    SSL_certs_clear(session);
    return SSL_use_certificate(session, certificate) == 1 &&
           SSL_use_PrivateKey(session, own_key_.get()) == 1;
}

int TlsContext::markTicket(SSL* session, void* self)
{
    const std::uint32_t generation = static_cast<TlsContext*>(self)->generation_;
    return SSL_SESSION_set1_ticket_appdata(SSL_get_session(session), &generation,
                                           sizeof generation);
}

SSL_TICKET_RETURN TlsContext::judgeTicket(SSL* session, SSL_SESSION* ticket, const unsigned char*,
                                          std::size_t, SSL_TICKET_STATUS status, void* self)
{
    if (status != SSL_TICKET_SUCCESS && status != SSL_TICKET_SUCCESS_RENEW)
        return SSL_TICKET_RETURN_IGNORE_RENEW;
    void* mark = nullptr;
    std::size_t size = 0;
    std::uint32_t generation = 0;
    if (SSL_SESSION_get0_ticket_appdata(ticket, &mark, &size) == 1 && size == sizeof generation)
        std::memcpy(&generation, mark, size);
    const bool is_known = generation == static_cast<TlsContext*>(self)->generation_;
    // A resumed session shows no certificate, so its faults would be missed.
    const auto* plan = static_cast<const HandshakePlan*>(SSL_get_app_data(session));
    return is_known && plan->certificate == CertificateChoice::Good
               ? SSL_TICKET_RETURN_USE
               : SSL_TICKET_RETURN_IGNORE_RENEW;
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
