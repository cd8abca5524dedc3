#include "compat/cipher_list.h"

#include <QSslCipher>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QtEndian>

#include <algorithm>
#include <memory>

Q_DECLARE_METATYPE(QSslCipher)

namespace {

const int patience = 10000; // milliseconds

/// Before the length of the session: record and message headers, version and random bytes.
const int session_at = 5 + 4 + 2 + 32;

/// The cipher suites of a client's first message, as they stand in it.
QByteArray suitesOf(const QByteArray& hello)
{
    const int length_at = session_at + 1 + hello.at(session_at);
    const int length = qFromBigEndian<quint16>(hello.constData() + length_at);
    return hello.mid(length_at + 2, length);
}

/// What a connection with \a ssl offers to a service; empty if it says nothing.
QByteArray offeredWith(const QSslConfiguration& ssl)
{
    QTcpServer server;
    QSslSocket client;
    client.setSslConfiguration(ssl);
    if (!server.listen(QHostAddress::LocalHost))
        return QByteArray();
    client.connectToHostEncrypted(QLatin1String("127.0.0.1"), server.serverPort());
    if (!QTest::qWaitFor([&] { return server.hasPendingConnections(); }, patience))
        return QByteArray();
    const std::unique_ptr<QTcpSocket> accepted(server.nextPendingConnection());
    QByteArray hello;
    const auto isWhole = [&] {
        hello += accepted->readAll();
        return hello.size() > 5 && hello.size() >= 5 + qFromBigEndian<quint16>(&hello.data()[3]);
    };
    return QTest::qWaitFor(isWhole, patience) ? suitesOf(hello) : QByteArray();
}

QSslConfiguration withCiphers(const QList<QSslCipher>& ciphers)
{
    QSslConfiguration ssl = QSslConfiguration::defaultConfiguration();
    ssl.setCiphers(ciphers);
    return ssl;
}

} // namespace

/// That the service is offered what Qt's own list offers.
class TestCipherList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void offersTheSame_data();
    void offersTheSame();
    void namesFewer();
    void keepsListOfHost_data();
    void keepsListOfHost();
};

void TestCipherList::offersTheSame_data()
{
    QTest::addColumn<int>("protocol");

    QTest::newRow("any version") << int(QSsl::SecureProtocols);
    QTest::newRow("TLS 1.2 alone") << int(QSsl::TlsV1_2);
    QTest::newRow("TLS 1.3 alone") << int(QSsl::TlsV1_3);
}

void TestCipherList::offersTheSame()
{
    QFETCH(int, protocol);
    QSslConfiguration ssl = QSslConfiguration::defaultConfiguration();
    ssl.setProtocol(QSsl::SslProtocol(protocol));
    const QByteArray before = offeredWith(ssl);

    cipher_list::leaveToOpenSsl(&ssl);

    QVERIFY(!before.isEmpty());
    QCOMPARE(offeredWith(ssl).toHex(), before.toHex());
}

void TestCipherList::namesFewer()
{
    QSslConfiguration ssl = QSslConfiguration::defaultConfiguration();
    const int before = ssl.ciphers().size();

    cipher_list::leaveToOpenSsl(&ssl);

    QVERIFY(!ssl.ciphers().isEmpty());
    QVERIFY2(ssl.ciphers().size() < before / 2, qPrintable(QString::number(before)));
}

void TestCipherList::keepsListOfHost_data()
{
    const QList<QSslCipher> all = QSslConfiguration::supportedCiphers();
    QList<QSslCipher> reversed = all;
    std::reverse(reversed.begin(), reversed.end());

    QTest::addColumn<QList<QSslCipher>>("ciphers");

    QTest::newRow("one less") << all.mid(0, all.size() - 1);
    QTest::newRow("without those of TLS 1.3") << all.mid(3);
    QTest::newRow("in another order") << reversed;
    QTest::newRow("one") << all.mid(0, 1);
}

void TestCipherList::keepsListOfHost()
{
    QFETCH(QList<QSslCipher>, ciphers);
    QSslConfiguration ssl = withCiphers(ciphers);

    cipher_list::leaveToOpenSsl(&ssl);

    QCOMPARE(ssl.ciphers(), ciphers);
}

QTEST_GUILESS_MAIN(TestCipherList)

#include "tst_cipher_list.moc"
