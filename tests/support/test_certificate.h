#ifndef TESTS_SUPPORT_TEST_CERTIFICATE_H
#define TESTS_SUPPORT_TEST_CERTIFICATE_H

#include <QByteArray>

/// A self-signed certificate with its key (EC P-256), made on the spot, both in PEM.
struct TestCertificate
{
    QByteArray certificate;
    QByteArray key;

    /// \param host the common name.
    /// \param valid_from, valid_until seconds relative to now.
    static TestCertificate make(const QByteArray& host, long valid_from, long valid_until);
};

#endif
