#include "tools/host/check/probe.h"

#include "tools/host/terminal/text.h"
#include "tools/host/terminal/unix_signals.h"

#include <QHostAddress>
#include <QHostInfo>
#include <QSslCertificate>
#include <QSslCipher>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslSocket>
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
    const terminal::Stopwatch elapsed;
    std::optional<QHostInfo> info;
    QObject receiver;
    const int id = QHostInfo::lookupHost(host, &receiver, [&](const QHostInfo& found) {
        facts.seconds = elapsed.seconds();
        info = found;
    });
    if (!wait([&] { return info.has_value(); }, &facts.end)) {
        QHostInfo::abortHostLookup(id);
        facts.seconds = elapsed.seconds();
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
    const terminal::Stopwatch elapsed;
    bool is_over = false;
    const auto over = [&] {
        facts.seconds = elapsed.seconds();
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

namespace {

QString keyText(const QSslKey& key)
{
    const int bits = key.length();
    switch (key.algorithm()) {
    case QSsl::Rsa:
        return u"RSA, %1 bits"_s.arg(bits);
    case QSsl::Ec:
        return u"elliptic curve, %1 bits"_s.arg(bits);
    case QSsl::Dsa:
        return u"DSA, %1 bits"_s.arg(bits);
    default:
        return u"of a kind that Qt does not know"_s;
    }
}

QString nameOf(const QStringList& common, const QStringList& organisation)
{
    const QStringList names = common.isEmpty() ? organisation : common;
    return names.isEmpty() ? u"(no name)"_s : names.join(u", "_s);
}

CertificateFacts certificateFacts(const QSslCertificate& certificate,
                                  const QList<QSslError>& errors)
{
    CertificateFacts facts;
    facts.subject = nameOf(certificate.subjectInfo(QSslCertificate::CommonName),
                           certificate.subjectInfo(QSslCertificate::Organization));
    facts.issuer = nameOf(certificate.issuerInfo(QSslCertificate::CommonName),
                          certificate.issuerInfo(QSslCertificate::Organization));
    facts.valid_from = certificate.effectiveDate();
    facts.valid_until = certificate.expiryDate();
    facts.names = certificate.subjectAlternativeNames().values();
    facts.names.sort();
    facts.key = keyText(certificate.publicKey());
    facts.is_self_signed = certificate.isSelfSigned();
    for (const QSslError& error : errors) {
        if (!facts.complaints.contains(error.errorString()))
            facts.complaints << error.errorString();
    }
    return facts;
}

QString protocolText(QSsl::SslProtocol protocol)
{
    switch (protocol) {
    case QSsl::TlsV1_0:
        return u"TLS 1.0"_s;
    case QSsl::TlsV1_1:
        return u"TLS 1.1"_s;
    case QSsl::TlsV1_2:
        return u"TLS 1.2"_s;
    case QSsl::TlsV1_3:
        return u"TLS 1.3"_s;
    default:
        return u"TLS of unknown version"_s;
    }
}

void takeSession(const QSslSocket& socket, const QList<QSslError>& errors, TlsFacts* facts)
{
    facts->protocol = Protocol::tls;
    facts->version = protocolText(socket.sessionProtocol());
    facts->cipher = socket.sessionCipher().name();
    const QSslCertificate certificate = socket.peerCertificate();
    facts->has_certificate = !certificate.isNull();
    if (facts->has_certificate)
        facts->certificate = certificateFacts(certificate, errors);
}

} // namespace

SslLibraryFacts probeSslLibrary()
{
    SslLibraryFacts facts;
    facts.is_supported = QSslSocket::supportsSsl();
    facts.built_for = QSslSocket::sslLibraryBuildVersionNumber();
    facts.built_for_text = QSslSocket::sslLibraryBuildVersionString();
    facts.running = facts.is_supported ? QSslSocket::sslLibraryVersionNumber() : 0;
    facts.running_text = facts.is_supported ? QSslSocket::sslLibraryVersionString() : QString();
    return facts;
}

TlsFacts Probe::shakeHands(const QUrl& url, const QString& address,
                           const QNetworkProxy& proxy) const
{
    TlsFacts facts = tryTls(url, address, proxy);
    const bool is_direct = proxy.type() == QNetworkProxy::NoProxy;
    if (facts.end != ProbeEnd::done && facts.end != ProbeEnd::interrupted && is_direct)
        facts.protocol = tryHttp(url, address).protocol;
    return facts;
}

TlsFacts Probe::speakHttp(const QUrl& url, const QString& address) const
{
    TlsFacts facts = tryHttp(url, address);
    // Some services tell a client in plain HTTP that their port is one for TLS.
    const bool is_http = facts.protocol == Protocol::http && !facts.is_bad_request;
    if (is_http || facts.end == ProbeEnd::interrupted)
        return facts;
    const TlsFacts tls = tryTls(url, address, QNetworkProxy::NoProxy);
    if (tls.protocol == Protocol::tls)
        facts.protocol = Protocol::tls;
    return facts;
}

TlsFacts Probe::tryTls(const QUrl& url, const QString& address, const QNetworkProxy& proxy) const
{
    TlsFacts facts;
    QSslSocket socket;
    socket.setProxy(proxy);
    // As good as not verifying; but the objections are told.
    socket.setPeerVerifyMode(QSslSocket::QueryPeer);
    QList<QSslError> errors;
    bool is_over = false;
    const terminal::Stopwatch elapsed;
    const auto over = [&] {
        facts.seconds = elapsed.seconds();
        is_over = true;
    };
    QObject::connect(&socket, QOverload<const QList<QSslError>&>::of(&QSslSocket::sslErrors),
                     &socket, [&](const QList<QSslError>& more) { errors += more; });
    QObject::connect(&socket, &QSslSocket::encrypted, &socket, over);
    QObject::connect(&socket, &QAbstractSocket::errorOccurred, &socket, over);
    socket.connectToHostEncrypted(address, quint16(portOf(url)), url.host());
    if (!wait([&] { return is_over; }, &facts.end)) {
        over();
    } else if (socket.isEncrypted()) {
        takeSession(socket, errors, &facts);
    } else {
        facts.end = ProbeEnd::failed;
        facts.reason = socket.errorString();
    }
    QObject::disconnect(&socket, nullptr, nullptr, nullptr);
    return facts;
}

TlsFacts Probe::tryHttp(const QUrl& url, const QString& address) const
{
    const int enough = int(qstrlen("HTTP/1.1 400"));
    TlsFacts facts;
    QTcpSocket socket;
    socket.setProxy(QNetworkProxy::NoProxy);
    const terminal::Stopwatch elapsed;
    QByteArray answer;
    bool is_over = false;
    QObject::connect(&socket, &QTcpSocket::connected, &socket, [&] {
        socket.write("GET / HTTP/1.1\r\nHost: " + url.host(QUrl::FullyEncoded).toLatin1() +
                     "\r\nConnection: close\r\n\r\n");
    });
    QObject::connect(&socket, &QTcpSocket::readyRead, &socket, [&] {
        answer += socket.readAll();
        is_over = is_over || answer.size() >= enough;
    });
    QObject::connect(&socket, &QAbstractSocket::errorOccurred, &socket, [&] { is_over = true; });
    socket.connectToHost(QHostAddress(address), quint16(portOf(url)));
    if (wait([&] { return is_over; }, &facts.end) && answer.isEmpty()) {
        facts.end = ProbeEnd::failed;
        facts.reason = socket.errorString();
    }
    facts.seconds = elapsed.seconds();
    if (!answer.isEmpty())
        facts.protocol = answer.startsWith("HTTP/") ? Protocol::http : Protocol::other;
    facts.is_bad_request = answer.mid(enough - 3, 3) == "400";
    QObject::disconnect(&socket, nullptr, nullptr, nullptr);
    return facts;
}

} // namespace tovik_host::check
