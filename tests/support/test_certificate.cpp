#include "tests/support/test_certificate.h"

#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <memory>

namespace {

template <typename T, void (*free_object)(T*)>
struct Freed
{
    void operator()(T* object) const { free_object(object); }
};

struct FreeBio
{
    void operator()(BIO* bio) const { BIO_free_all(bio); }
};

using Key = std::unique_ptr<EVP_PKEY, Freed<EVP_PKEY, EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Freed<X509, X509_free>>;
using Memory = std::unique_ptr<BIO, FreeBio>;

QByteArray contents(BIO* bio)
{
    char* data = nullptr;
    const long size = BIO_get_mem_data(bio, &data);
    return QByteArray(data, int(size));
}

} // namespace

TestCertificate TestCertificate::make(const QByteArray& host, long valid_from, long valid_until)
{
    const Key key(EVP_EC_gen("P-256"));
    const Certificate certificate(X509_new());
    X509_set_version(certificate.get(), 2);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), valid_from);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), valid_until);
    X509_set_pubkey(certificate.get(), key.get());
    X509_NAME* name = X509_get_subject_name(certificate.get());
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char*>(host.constData()), -1, -1, 0);
    X509_set_issuer_name(certificate.get(), name);
    X509_sign(certificate.get(), key.get(), EVP_sha256());

    TestCertificate made;
    const Memory certificate_text(BIO_new(BIO_s_mem()));
    PEM_write_bio_X509(certificate_text.get(), certificate.get());
    made.certificate = contents(certificate_text.get());
    const Memory key_text(BIO_new(BIO_s_mem()));
    PEM_write_bio_PrivateKey(key_text.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr);
    made.key = contents(key_text.get());
    return made;
}
