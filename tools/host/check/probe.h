#ifndef TOOLS_HOST_CHECK_PROBE_H
#define TOOLS_HOST_CHECK_PROBE_H

#include "tools/host/terminal/unix_signals.h"

#include <QDateTime>
#include <QNetworkProxy>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <functional>

/// \file
/// What the probes of a check find out on the way to the service. Plain facts: what they mean is
/// judged elsewhere.
namespace tovik_host::check {

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

struct NameFacts
{
    QString host;
    bool is_address = false; ///< There was nothing to look up.
    ProbeEnd end = ProbeEnd::done;
    QStringList addresses;
    QString reason; ///< In the system's words, when it failed.
    double seconds = 0;
};

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

/// The TLS library, as Qt has it in this process.
SslLibraryFacts probeSslLibrary();

/// The proxy that Qt would use for \a url, as the driver's client does: Qt takes it from the
/// environment (`https_proxy`, `http_proxy`, `no_proxy`) or the system.
QNetworkProxy proxyFor(const QUrl& url);
/// The same without name and password, for showing.
ProxyFacts proxyFacts(const QNetworkProxy& proxy);

/// Looks at the way to a service step by step, each with the same time limit. To be used in one
/// thread, whose event loop runs meanwhile.
class Probe
{
public:
    /// \param unix_signals must outlive the probe; a signal ends a step.
    /// \param seconds for each step.
    Probe(const terminal::UnixSignals& unix_signals, double seconds)
        : unix_signals_(unix_signals),
          milliseconds_(int(seconds * 1000))
    {}

    NameFacts lookUp(const QString& host) const;
    /// Makes a connection and closes it.
    ConnectFacts connect(const QString& address, int port) const;
    /// Shakes hands with \a url at \a address, or through \a proxy if it is one, and does not
    /// verify the certificate, as the driver does not either. If that fails, asks once more in
    /// plain HTTP, to tell what the port speaks.
    TlsFacts shakeHands(const QUrl& url, const QString& address, const QNetworkProxy& proxy) const;
    /// Asks for "/" in plain HTTP; if no answer of HTTP comes, tries a handshake.
    TlsFacts speakHttp(const QUrl& url, const QString& address) const;

private:
    bool wait(const std::function<bool()>& condition, ProbeEnd* end) const;
    TlsFacts tryTls(const QUrl& url, const QString& address, const QNetworkProxy& proxy) const;
    TlsFacts tryHttp(const QUrl& url, const QString& address) const;

    const terminal::UnixSignals& unix_signals_;
    int milliseconds_;
};

/// The port of \a url, or the usual one of its scheme.
int portOf(const QUrl& url);

} // namespace tovik_host::check

#endif
