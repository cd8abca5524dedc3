#include "tools/service/http/tls_context.h"

#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/rsa.h>
#include <openssl/x509v3.h>

#include <array>
#include <cstdint>
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
