#include "tools/host/check/probe.h"

#include "tools/host/terminal/waiter.h"

#include <QElapsedTimer>
#include <QHostAddress>
#include <QHostInfo>
#include <QTcpSocket>

#include <optional>

namespace tovik_host::check {

namespace {

ProbeEnd endOf(QAbstractSocket::SocketError error)
{
    switch (error) {
    case QAbstractSocket::ConnectionRefusedError:
        return ProbeEnd::refused;
    case QAbstractSocket::NetworkError:
        return ProbeEnd::unreachable;
    case QAbstractSocket::SocketTimeoutError:
        return ProbeEnd::timed_out;
    default:
        return ProbeEnd::failed;
    }
}

} // namespace

int portOf(const QUrl& url)
{
    return url.port(url.scheme() == QLatin1String("https") ? 443 : 80);
}

QNetworkProxy proxyFor(const QUrl& url)
{
    const QList<QNetworkProxy> proxies =
        QNetworkProxyFactory::proxyForQuery(QNetworkProxyQuery(url));
    return proxies.isEmpty() ? QNetworkProxy(QNetworkProxy::NoProxy) : proxies.first();
}

ProxyFacts proxyFacts(const QNetworkProxy& proxy)
{
    ProxyFacts facts;
    if (proxy.type() == QNetworkProxy::NoProxy || proxy.type() == QNetworkProxy::DefaultProxy)
        return facts;
    facts.host = proxy.hostName();
    facts.port = proxy.port();
    facts.is_http = proxy.type() != QNetworkProxy::Socks5Proxy;
    return facts;
}

/// True: the condition has been met. Else \a end says what happened instead.
bool Probe::wait(const std::function<bool()>& condition, ProbeEnd* end) const
{
    const terminal::Waited waited = terminal::waitUntil(unix_signals_, milliseconds_, condition);
    if (waited != terminal::Waited::met)
        *end = waited == terminal::Waited::timed_out ? ProbeEnd::timed_out : ProbeEnd::interrupted;
    return waited == terminal::Waited::met;
}

NameFacts Probe::lookUp(const QString& host) const
{
    NameFacts facts;
    facts.host = host;
    if (!QHostAddress(host).isNull()) {
        facts.is_address = true;
        facts.addresses << host;
        return facts;
    }
    QElapsedTimer elapsed;
    elapsed.start();
    std::optional<QHostInfo> info;
    QObject receiver;
    const int id = QHostInfo::lookupHost(host, &receiver, [&](const QHostInfo& found) {
        facts.seconds = double(elapsed.nsecsElapsed()) / 1e9;
        info = found;
    });
    if (!wait([&] { return info.has_value(); }, &facts.end)) {
        QHostInfo::abortHostLookup(id);
        facts.seconds = double(elapsed.nsecsElapsed()) / 1e9;
        return facts;
    }
    for (const QHostAddress& address : info->addresses())
        facts.addresses << address.toString();
    if (info->error() != QHostInfo::NoError || facts.addresses.isEmpty()) {
        facts.end = info->error() == QHostInfo::HostNotFound ? ProbeEnd::refused : ProbeEnd::failed;
        facts.reason = info->errorString();
    }
    return facts;
}

ConnectFacts Probe::connect(const QString& address, int port) const
{
    ConnectFacts facts;
    facts.address = address;
    facts.port = port;
    QTcpSocket socket;
    socket.setProxy(QNetworkProxy::NoProxy);
    QElapsedTimer elapsed;
    elapsed.start();
    bool is_over = false;
    const auto over = [&] {
        facts.seconds = double(elapsed.nsecsElapsed()) / 1e9;
        is_over = true;
    };
    QObject::connect(&socket, &QTcpSocket::connected, &socket, over);
    QObject::connect(&socket, &QAbstractSocket::errorOccurred, &socket, over);
    socket.connectToHost(QHostAddress(address), quint16(port));
    if (!wait([&] { return is_over; }, &facts.end)) {
        over();
    } else if (socket.state() != QAbstractSocket::ConnectedState) {
        facts.end = endOf(socket.error());
        facts.reason = socket.errorString();
    }
    return facts;
}

} // namespace tovik_host::check
