#include "compat/prompt_request.h"
#include "tests/support/scripted_service.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <numeric>

namespace {

const long day = 24 * 60 * 60;

bool hasNoDelay(int number)
{
    int value = 0;
    socklen_t size = sizeof value;
    return ::getsockopt(number, IPPROTO_TCP, TCP_NODELAY, &value, &size) == 0 && value != 0;
}

quint16 peerPort(int number)
{
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    if (::getpeername(number, reinterpret_cast<sockaddr*>(&address), &size) != 0)
        return 0;
    return QHostAddress(reinterpret_cast<sockaddr*>(&address)).isNull()
               ? quint16(0)
               : ntohs(reinterpret_cast<sockaddr_in*>(&address)->sin_port);
}

/// So many sockets of this process are connected to \a port, and send at once.
int promptSockets(quint16 port)
{
    int count = 0;
    for (int number = 0; number < 1024; ++number)
        count += peerPort(number) == port && hasNoDelay(number) ? 1 : 0;
    return count;
}

/// A socket of the host's own.
class HostSocket
{
public:
    HostSocket(const QHostAddress& address, quint16 port)
    {
        socket_.connectToHost(address, port);
        socket_.waitForConnected();
    }
    bool isConnected() const { return socket_.state() == QTcpSocket::ConnectedState; }
    bool isTouched() const { return hasNoDelay(int(socket_.socketDescriptor())); }

private:
    QTcpSocket socket_;
};

/// A post that the service does not answer for the time being.
class Request
{
public:
    explicit Request(const QString& url) : prompt_(QUrl(url), &numbers)
    {
        QNetworkRequest request((QUrl(url)));
        QSslConfiguration ssl = request.sslConfiguration();
        ssl.setPeerVerifyMode(QSslSocket::VerifyNone);
        request.setSslConfiguration(ssl);
        request.setRawHeader("Content-Type", "application/json");
        reply_ = manager_.post(request, "{}");
        prompt_.watch(reply_);
    }

    SocketNumbers numbers;

private:
    PromptRequest prompt_;
    QNetworkAccessManager manager_;
    QNetworkReply* reply_ = nullptr;
};

} // namespace

/// Nagle's algorithm is off for a request's own socket, and for no other of the process.
class TestPromptRequest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void theRequestsSocket_data();
    void theRequestsSocket();
    void socketsOfTheHost();
    void plainHttp();
    void rememberedNumbersAreBounded();

private:
    std::unique_ptr<ScriptedService> service_;
};

void TestPromptRequest::init()
{
    service_.reset(new ScriptedService(TestCertificate::make("localhost", -day, day)));
    service_->setHandler([](const ScriptedRequest&) { return ScriptedReply::hang(); });
}

void TestPromptRequest::theRequestsSocket_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<bool>("is_ip6");
    QTest::newRow("an IPv4 address") << QStringLiteral("127.0.0.1") << false;
    QTest::newRow("an IPv6 address") << QStringLiteral("[::1]") << true;
    QTest::newRow("a name") << QStringLiteral("localhost") << false;
}

void TestPromptRequest::theRequestsSocket()
{
    QFETCH(QString, host);
    QFETCH(bool, is_ip6);
    const quint16 port = service_->serverPort();
    if (is_ip6) {
        service_->close();
        if (!service_->listen(QHostAddress::LocalHostIPv6, port))
            QSKIP("this machine has no such addresses");
    }
    const Request request(QStringLiteral("https://%1:%2/").arg(host).arg(port));
    QTRY_COMPARE(service_->requests().size(), 1);
    QTRY_COMPARE(promptSockets(port), 1);
    QCOMPARE(request.numbers.all().size(), 1);
    QVERIFY(hasNoDelay(request.numbers.all().first()));
}

void TestPromptRequest::socketsOfTheHost()
{
    const quint16 port = service_->serverPort();
    QTcpServer elsewhere;
    QVERIFY(elsewhere.listen(QHostAddress::LocalHost));
    QTcpServer namesake;
    QVERIFY(namesake.listen(QHostAddress(QStringLiteral("127.0.0.2")), port));

    const HostSocket before(QHostAddress::LocalHost, port);
    const Request request(service_->url());
    const HostSocket to_another_port(QHostAddress::LocalHost, elsewhere.serverPort());
    const HostSocket to_another_address(QHostAddress(QStringLiteral("127.0.0.2")), port);
    QTRY_COMPARE(service_->requests().size(), 1);
    QTRY_COMPARE(promptSockets(port), 1);

    QVERIFY(before.isConnected() && !before.isTouched());
    QVERIFY(to_another_port.isConnected() && !to_another_port.isTouched());
    QVERIFY(to_another_address.isConnected() && !to_another_address.isTouched());
}

void TestPromptRequest::plainHttp()
{
    service_.reset(new ScriptedService);
    service_->setHandler([](const ScriptedRequest&) { return ScriptedReply::hang(); });
    const Request request(service_->url());
    QTRY_COMPARE(service_->requests().size(), 1);
    QCOMPARE(promptSockets(service_->serverPort()), 0);
    QVERIFY(request.numbers.all().isEmpty());
}

void TestPromptRequest::rememberedNumbersAreBounded()
{
    SocketNumbers numbers;
    for (int i = 0; i < 40; ++i)
        numbers.add(i);
    QCOMPARE(numbers.all().size(), 32);
    QVERIFY(numbers.all().contains(39) && !numbers.all().contains(0));
    numbers.add(39);
    QCOMPARE(numbers.all().count(39), 1);

    // The one that is replaced is always the oldest.
    for (int i = 40; i < 70; ++i)
        numbers.add(i);
    QVector<int> sorted = numbers.all();
    std::sort(sorted.begin(), sorted.end());
    QVector<int> latest(32);
    std::iota(latest.begin(), latest.end(), 70 - 32);
    QCOMPARE(sorted, latest);
}

QTEST_GUILESS_MAIN(TestPromptRequest)
#include "tst_prompt_request.moc"
