#include "fuzz/target.h"

#include "compat/session_bytes.h"

#include <openssl/err.h>
#include <openssl/ssl.h>

#include <memory>

namespace fuzz {

namespace {

struct FreeSession
{
    void operator()(SSL_SESSION* session) const { SSL_SESSION_free(session); }
};

using Session = std::unique_ptr<SSL_SESSION, FreeSession>;

/// As OpenSSL understands \a bytes; null: not at all.
Session read(const QByteArray& bytes)
{
    const auto* at = reinterpret_cast<const unsigned char*>(bytes.constData());
    Session session(d2i_SSL_SESSION(nullptr, &at, bytes.size()));
    ERR_clear_error();
    return session;
}

QByteArray written(SSL_SESSION* session)
{
    unsigned char* bytes = nullptr;
    const int size = i2d_SSL_SESSION(session, &bytes);
    const QByteArray copy(reinterpret_cast<const char*>(bytes), size > 0 ? size : 0);
    OPENSSL_free(bytes);
    return copy;
}

/// The size of what \a longer has in one place, and \a shorter has not; -1: there is more to it.
int sizeOfGap(const QByteArray& longer, const QByteArray& shorter)
{
    int front = 0;
    while (front < shorter.size() && longer.at(front) == shorter.at(front))
        ++front;
    const int gap = longer.size() - shorter.size();
    return longer.mid(front + gap) == shorter.mid(front) ? gap : -1;
}

/// What is after tag and length.
QByteArray contentsOf(const QByteArray& element)
{
    const int first = static_cast<unsigned char>(element.at(1));
    return element.mid(first < 0x80 ? 2 : 2 + (first & 0x7F));
}

} // namespace

// A TLS session, as Qt hands it out.
void runSession(const QByteArray& input)
{
    const QByteArray output = session_bytes::withoutCertificate(input);
    require(session_bytes::withoutCertificate(output) == output,
            "there is one certificate at most");
    const Session before = read(input);
    if (output == input)
        return;
    require(output.size() < input.size(), "something is left out");
    require(sizeOfGap(contentsOf(input), contentsOf(output)) > 0, "it is left out in one place");
    if (!before)
        return;
    const Session after = read(output);
    require(after != nullptr, "what OpenSSL reads it reads without the certificate, too");
    require(!SSL_SESSION_get0_peer(after.get()), "it is the certificate that is left out");
    // A session without a time has that of its reading.
    SSL_SESSION_set_time(after.get(), SSL_SESSION_get_time(before.get()));
    require(written(after.get()) == session_bytes::withoutCertificate(written(before.get())),
            "all else is the same to OpenSSL");
}

} // namespace fuzz
