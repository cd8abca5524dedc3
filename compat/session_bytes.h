#ifndef COMPAT_SESSION_BYTES_H
#define COMPAT_SESSION_BYTES_H

#include <QByteArray>

/// \file
/// A TLS session in the form in which Qt hands it out: OpenSSL's, as the manual page of
/// i2d_SSL_SESSION names it, a sequence in DER.
namespace session_bytes {

/// \a session without the peer's certificate, its element [3]: OpenSSL decodes it for each
/// connection that is offered the session, which costs a quarter of a request, and nobody who does
/// not verify certificates looks at it. All other elements stay, byte by byte. A session without
/// one, and bytes that do not look exactly as expected, come back as they are.
QByteArray withoutCertificate(const QByteArray& session);

} // namespace session_bytes

#endif
