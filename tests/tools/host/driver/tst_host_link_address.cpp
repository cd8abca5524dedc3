#include "tools/host/driver/device_config.h"
#include "tools/host/terminal/exit_code.h"

#include <QTest>

using namespace tovik_host;
using namespace tovik_host::driver;

class TestHostLinkAddress : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsTcp_data();
    void readsTcp();
    void readsSerial_data();
    void readsSerial();
    void readsEveryWord();
    void refuses_data();
    void refuses();
};

void TestHostLinkAddress::readsTcp_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("host");
    QTest::addColumn<int>("port");
    const auto row = [](const char* name, const char* text, const char* host, int port) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(host) << port;
    };
    row("IPv4", "tcp:127.0.0.1:502", "127.0.0.1", 502);
    row("name", "tcp:plc-3.example:1", "plc-3.example", 1);
    row("IPv6", "tcp:[::1]:65535", "::1", 65535);
    row("IPv6 with a scope", "tcp:[fe80::1%lo]:502", "fe80::1%lo", 502);
}

void TestHostLinkAddress::readsTcp()
{
    QFETCH(QString, text);
    QFETCH(QString, host);
    QFETCH(int, port);
    const LinkAddress address = parseLink(text, QStringLiteral("--link"));
    QVERIFY(std::holds_alternative<TcpAddress>(address));
    QCOMPARE(std::get<TcpAddress>(address).host, host);
    QCOMPARE(int(std::get<TcpAddress>(address).port), port);
    QCOMPARE(linkText(address), text);
}

void TestHostLinkAddress::readsSerial_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("whole");
    const auto row = [](const char* name, const char* text, const char* whole) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(whole);
    };
    row("device alone", "serial:/dev/ttyUSB0", "serial:/dev/ttyUSB0,9600,8N1");
    row("short name", "serial:ttyS1", "serial:ttyS1,9600,8N1");
    row("speed", "serial:/dev/ttyS0,115200", "serial:/dev/ttyS0,115200,8N1");
    row("frame", "serial:/dev/ttyS0,19200,7E2", "serial:/dev/ttyS0,19200,7E2");
    row("frame in small letters", "serial:/dev/ttyS0,19200,8e1", "serial:/dev/ttyS0,19200,8E1");
    row("no flow control", "serial:/dev/ttyS0,50,5S1,none", "serial:/dev/ttyS0,50,5S1");
    row("lines", "serial:/dev/ttyS0,921600,6O1,rtscts", "serial:/dev/ttyS0,921600,6O1,rtscts");
    row("characters", "serial:/dev/ttyS0,300,8M2,XonXoff", "serial:/dev/ttyS0,300,8M2,xonxoff");
}

void TestHostLinkAddress::readsSerial()
{
    QFETCH(QString, text);
    QFETCH(QString, whole);
    QCOMPARE(linkText(parseLink(text, QStringLiteral("--link"))), whole);
}

void TestHostLinkAddress::readsEveryWord()
{
    const SerialAddress serial = std::get<SerialAddress>(
        parseLink(QStringLiteral("serial:/dev/x,38400,7O2,rtscts"), QStringLiteral("--link")));
    QCOMPARE(serial.device, QStringLiteral("/dev/x"));
    QCOMPARE(serial.baud_rate, BAUD38400);
    QCOMPARE(serial.data_bits, DATA_7);
    QCOMPARE(serial.parity, PAR_ODD);
    QCOMPARE(serial.stop_bits, STOP_2);
    QCOMPARE(serial.flow, FLOW_HARDWARE);
}

void TestHostLinkAddress::refuses_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("problem");
    const auto row = [](const char* name, const char* text, const char* problem) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(problem);
    };
    row("empty", "", "a link is tcp:HOST:PORT or serial:DEVICE,BAUD,FRAME");
    row("no kind", "127.0.0.1:502", "a link is tcp:HOST:PORT or serial:DEVICE,BAUD,FRAME");
    row("other kind", "udp:127.0.0.1:502", "a link is tcp:HOST:PORT or");
    row("device without its kind", "/dev/ttyUSB0", "write serial: before a device");
    row("no port", "tcp:127.0.0.1", "the port is missing: write tcp:HOST:PORT");
    row("empty port", "tcp:127.0.0.1:", "\"\" is no port: 1 to 65535");
    row("port zero", "tcp:127.0.0.1:0", "\"0\" is no port: 1 to 65535");
    row("port too large", "tcp:127.0.0.1:65536", "\"65536\" is no port: 1 to 65535");
    row("port in words", "tcp:127.0.0.1:modbus", "\"modbus\" is no port: 1 to 65535");
    row("no host", "tcp::502", "the host is missing: write tcp:HOST:PORT");
    row("slashes", "tcp://127.0.0.1:502", "a link has no slashes: write tcp:HOST:PORT");
    row("IPv6 without brackets", "tcp:::1:502", "an IPv6 address goes into brackets: tcp:[::1]");
    row("open bracket", "tcp:[::1:502", "the bracket is not closed");
    row("IPv4 in brackets", "tcp:[127.0.0.1]:502", "only an IPv6 address goes into brackets");
    row("something after the bracket", "tcp:[::1]x:502", "only an IPv6 address goes into");
    row("brackets without a port", "tcp:[::1]", "the port is missing");
    row("no device", "serial:", "the device is missing: write serial:DEVICE,BAUD,FRAME");
    row("no device but a speed", "serial:,9600", "the device is missing");
    row("odd speed", "serial:/dev/ttyS0,9601", "\"9601\" is no speed; after the device comes one");
    row("frame in place of the speed", "serial:/dev/ttyS0,8N1", "\"8N1\" is no speed; after");
    row("short frame", "serial:/dev/ttyS0,9600,8N", "\"8N\" is no frame such as 8N1");
    row("nine data bits", "serial:/dev/ttyS0,9600,9N1", "\"9N1\" is no frame such as 8N1");
    row("unknown parity", "serial:/dev/ttyS0,9600,8X1", "\"8X1\" is no frame such as 8N1");
    row("three stop bits", "serial:/dev/ttyS0,9600,8N3", "\"8N3\" is no frame such as 8N1");
    row("unknown flow control", "serial:/dev/ttyS0,9600,8N1,dtr",
        "\"dtr\" is no flow control; it is one of: none, rtscts, xonxoff");
    row("too many parts", "serial:/dev/ttyS0,9600,8N1,none,x", "too many parts");
}

void TestHostLinkAddress::refuses()
{
    QFETCH(QString, text);
    QFETCH(QString, problem);
    QString message;
    try {
        parseLink(text, QStringLiteral("--link"));
    } catch (const terminal::UsageError& error) {
        message = error.message();
    }
    const QString start = QStringLiteral("--link: \"%1\": %2").arg(text, problem);
    QVERIFY2(message.startsWith(start), qPrintable(message));
}

QTEST_APPLESS_MAIN(TestHostLinkAddress)
#include "tst_host_link_address.moc"
