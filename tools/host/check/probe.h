#ifndef TOOLS_HOST_CHECK_PROBE_H
#define TOOLS_HOST_CHECK_PROBE_H

#include "tools/host/check/probe_facts.h"
#include "tools/host/terminal/unix_signals.h"

#include <QNetworkProxy>
#include <QUrl>

#include <functional>

namespace tovik_host::check {

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
