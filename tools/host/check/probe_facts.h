#ifndef TOOLS_HOST_CHECK_PROBE_FACTS_H
#define TOOLS_HOST_CHECK_PROBE_FACTS_H

#include <QDateTime>
#include <QString>
#include <QStringList>

/// \file
/// What the probes of a check find out on the way to the service. Plain facts: what they mean is
/// judged elsewhere.
namespace tovik_host::check {

/// How a probe ended.
enum class ProbeEnd
{
    done,
    refused,     ///< By the other side, or the name does not exist.
    unreachable, ///< No way there.
    timed_out,
    failed, ///< In another way; the reason says how.
    interrupted
};

/// The TLS library that Qt has found.
struct SslLibraryFacts
{
    bool is_supported = false;
    long built_for = 0; ///< OpenSSL's version number as Qt was built, such as 0x300000f0.
    QString built_for_text;
    long running = 0; ///< That of the library that was found; 0: none.
    QString running_text;
};

/// The proxy through which the driver's client goes; no host: none is in force.
struct ProxyFacts
{
    QString host = QString();
    int port = 0;
    bool is_http = true; ///< False: a SOCKS proxy.

    bool isInForce() const { return !host.isEmpty(); }
};

/// Looking up a name.
struct NameFacts
{
    QString host;
    bool is_address = false; ///< There was nothing to look up.
    ProbeEnd end = ProbeEnd::done;
    QStringList addresses;
    QString reason; ///< In the system's words, when it failed.
    double seconds = 0;
};

/// Connecting to one address.
struct ConnectFacts
{
    QString address;
    int port = 0;
    ProbeEnd end = ProbeEnd::done;
    QString reason;
    double seconds = 0;
};

/// What a port speaks.
enum class Protocol
{
    unknown, ///< Not looked at, or nothing came.
    tls,
    http,
    other ///< Something that is neither.
};

struct CertificateFacts
{
    QString subject;
    QString issuer;
    QDateTime valid_from;
    QDateTime valid_until;
    QStringList names; ///< Host names and addresses that it is for.
    QString key;       ///< Such as "RSA, 2048 bits".
    bool is_self_signed = false;
    /// What a client that verifies would object to, in Qt's words.
    QStringList complaints;
};

/// The first exchange on a connection: TLS where the address asks for it.
struct TlsFacts
{
    ProbeEnd end = ProbeEnd::done;
    QString reason;
    Protocol protocol = Protocol::unknown; ///< What the port speaks.
    bool is_bad_request = false;           ///< What it said in HTTP is that it did not understand.
    QString version;                       ///< Such as "TLS 1.3".
    QString cipher;
    bool has_certificate = false;
    CertificateFacts certificate;
    double seconds = 0;
};

} // namespace tovik_host::check

#endif
