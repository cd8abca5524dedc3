#include "tools/service/http/certificate.h"

#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/rsa.h>
#include <openssl/x509v3.h>

#include <array>
#include <cstdint>
#include <random>
#include <stdexcept>

namespace tovik_service::http {

namespace {

void require(bool good)
{
    if (!good)
        throw std::runtime_error("cannot make a certificate: " + opensslError());
}

void addExtension(X509* certificate, int nid, const std::string& value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
    X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, nid, value.c_str());
    require(extension != nullptr);
    const int added = X509_add_ext(certificate, extension, -1);
    X509_EXTENSION_free(extension);
    require(added == 1);
}

void setName(X509* certificate, const std::string& common_name)
{
    X509_NAME* name = X509_get_subject_name(certificate);
    const auto* bytes = reinterpret_cast<const unsigned char*>(common_name.c_str());
    require(X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8, bytes, -1, -1, 0) == 1);
    require(X509_set_issuer_name(certificate, name) == 1);
}

} // namespace

KeyPointer makeKey(KeyType type)
{
    KeyPointer key(type == KeyType::P256 ? EVP_EC_gen("P-256") : EVP_RSA_gen(2048));
    require(key != nullptr);
    return key;
}

CertificatePointer makeCertificate(EVP_PKEY* key, const CertificateSettings& settings)
{
    CertificatePointer certificate(X509_new());
    X509* raw = certificate.get();
    require(raw != nullptr && X509_set_version(raw, X509_VERSION_3) == 1);
    // A number of its own for each: clients confuse certificates of one issuer otherwise.
    std::random_device random;
    ASN1_INTEGER_set_uint64(X509_get_serialNumber(raw), (std::uint64_t{random()} << 16U) + 1);
    X509_gmtime_adj(X509_getm_notBefore(raw), settings.not_before);
    X509_gmtime_adj(X509_getm_notAfter(raw), settings.not_after);
    require(X509_set_pubkey(raw, key) == 1);
    setName(raw, settings.common_name);
    addExtension(raw, NID_basic_constraints, "critical,CA:TRUE");
    addExtension(raw, NID_key_usage, "critical,digitalSignature,keyEncipherment,keyCertSign");
    addExtension(raw, NID_ext_key_usage, "serverAuth");
    addExtension(raw, NID_subject_key_identifier, "hash");
    addExtension(raw, NID_subject_alt_name, settings.alternative_names);
    require(X509_sign(raw, key, EVP_sha256()) > 0);
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

} // namespace tovik_service::http
