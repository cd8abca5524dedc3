#ifndef TOOLS_SERVICE_HTTP_CERTIFICATE_H
#define TOOLS_SERVICE_HTTP_CERTIFICATE_H

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <memory>
#include <string>

namespace tovik_service::http {

/// Frees OpenSSL objects.
struct OpensslDeleter
{
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    void operator()(X509* certificate) const { X509_free(certificate); }
};

using KeyPointer = std::unique_ptr<EVP_PKEY, OpensslDeleter>;
using CertificatePointer = std::unique_ptr<X509, OpensslDeleter>;

/// The kinds of keys that the service makes for itself.
enum class KeyType
{
    Rsa2048,
    P256
};

/// What a self-signed certificate shall say.
struct CertificateSettings
{
    std::string common_name;
    std::string alternative_names; ///< such as "DNS:localhost,IP:127.0.0.1"
    long not_before = 0;           ///< seconds from now
    long not_after = 0;            ///< seconds from now
};

/// Makes a key; throws std::runtime_error.
KeyPointer makeKey(KeyType type);

/// Makes a certificate signed with its own key; throws std::runtime_error.
CertificatePointer makeCertificate(EVP_PKEY* key, const CertificateSettings& settings);

/// The certificate as PEM text.
std::string toPem(X509* certificate);

/// The oldest waiting OpenSSL error in words.
std::string opensslError();

} // namespace tovik_service::http

#endif
