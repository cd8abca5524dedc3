#include "tests/framework/driver_bench.h"
#include "tests/framework/own_device.h"
#include "tests/support/log_recorder.h"

#include <QHostAddress>
#include <QTest>

namespace {

const int patience = 30000; // milliseconds; reached only by a failing test
const QByteArray request = QByteArray("Q\x01\x02\x02");

/// What a socket says to its host.
class Trace
{
public:
    explicit Trace(QAbstractSocket* socket)
        : socket_(socket),
          error_(socket->error()),
          error_text_(socket->errorString())
    {
        QObject::connect(socket, &QAbstractSocket::errorOccurred,
                         [this](QAbstractSocket::SocketError error) { emitted_ += error; });
    }

    bool isEmpty() const
    {
        return emitted_.isEmpty() && socket_->error() == error_ &&
               socket_->errorString() == error_text_;
    }

private:
    QAbstractSocket* socket_;
    QAbstractSocket::SocketError error_;
    QString error_text_;
    QList<int> emitted_;
};

QString answerText(const char* head, const QByteArray& bytes)
{
    return QString::fromLatin1("%1 %2 0x0").arg(QLatin1String(head), bytesText(bytes));
}

} // namespace

/// The host's link, before and after a request: connected, connecting, lost, closed, or no real
/// one.
class TestDriverBasicLink : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void quietLinkBearsNoTrace_data();
    void quietLinkBearsNoTrace();
    void lostLinkBearsNoTrace();
    void connectingLinkGetsTheRequest_data();
    void connectingLinkGetsTheRequest();
    void connectingLinkIsAnswered();
    void closedLinkGetsNothing();
    void ownDeviceIsRead_data() { addStateRows(); }
    void ownDeviceIsRead();
    void ownDeviceInTransparentMode_data() { addStateRows(); }
    void ownDeviceInTransparentMode();

private:
    static void addStateRows();
};

void TestDriverBasicLink::quietLinkBearsNoTrace_data()
{
    QTest::addColumn<bool>("is_transparent");
    QTest::addColumn<QString>("behaviour");
    QTest::newRow("answered") << false << "answers";
    QTest::newRow("byte by byte") << false << "byte by byte";
    QTest::newRow("silent") << false << "silent";
    QTest::newRow("transparent, answered") << true << "answers";
    QTest::newRow("transparent, silent") << true << "silent";
}

void TestDriverBasicLink::quietLinkBearsNoTrace()
{
    QFETCH(bool, is_transparent);
    QFETCH(QString, behaviour);
    DriverBench bench(ScriptedDevice::Line::Tcp);
    QVERIFY(bench.connectLink());
    bench.device.behave(QStringList(behaviour));
    const bool answers = behaviour != QLatin1String("silent");
    bench.driver->response_timeout_ = answers ? patience : 20;
    bench.driver->on_wait = [&](int expected, int* ready) {
        for (int waits = 0; waits < (answers ? patience : 20); ++waits) {
            if (bench.link()->bytesAvailable() >= expected) {
                *ready = 1;
                return 0;
            }
            bench.driver->waitForLinkInput(1);
        }
        return 0x400A0000;
    };
    LogRecorder log;
    const Trace trace(bench.ethernet.get());
    for (int i = 0; i < 2; ++i) {
        const QStringList answer = is_transparent ? bench.transparent(request) : bench.read(2);
        QCOMPARE(answer.size(), 1);
        QCOMPARE(answer.first().endsWith(QLatin1String(" 0x0")), answers);
    }
    QVERIFY(trace.isEmpty());
}

// Qt 4 does not tell a lost link from one that its owner has opened.
void TestDriverBasicLink::lostLinkBearsNoTrace()
{
    DriverBench bench(ScriptedDevice::Line::Tcp);
    QVERIFY(bench.connectLink());
    bench.device.hangUp();
    QTRY_COMPARE_WITH_TIMEOUT(bench.ethernet->state(), QAbstractSocket::UnconnectedState, patience);
    bench.driver->on_wait = [&](int, int* ready) {
        bench.driver->waitForLinkInput(patience); // returns at once
        *ready = 1;
        return 0x400A0000;
    };
    LogRecorder log;
    const Trace trace(bench.ethernet.get());
    QCOMPARE(bench.read(2).size(), 1);
    QCOMPARE(bench.transparent(request).size(), 1);
    QVERIFY(trace.isEmpty());
    QCOMPARE(log.take(), QStringList(QLatin1String("Command_Timeout")));
}

void TestDriverBasicLink::connectingLinkGetsTheRequest_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<bool>("is_transparent");
    QTest::newRow("connecting") << "127.0.0.1" << false;
    QTest::newRow("looking the name up") << "localhost" << false;
    QTest::newRow("connecting, transparent") << "127.0.0.1" << true;
    QTest::newRow("looking the name up, transparent") << "localhost" << true;
}

// Nobody runs the event loop meanwhile, so the connection is made when the request is over.
void TestDriverBasicLink::connectingLinkGetsTheRequest()
{
    QFETCH(QString, host);
    QFETCH(bool, is_transparent);
    DriverBench bench(ScriptedDevice::Line::Tcp);
    bench.driver->on_wait = [&](int, int*) {
        bench.driver->waitForLinkInput(1);
        return 0x400A0000;
    };
    bench.driver->on_build = [](QByteArray*, QByteArray* bytes) {
        bytes->append(request);
        return 5;
    };
    LogRecorder log;
    bench.ethernet->connectToHost(host, bench.device.port());
    QVERIFY(bench.ethernet->state() != QAbstractSocket::ConnectedState);
    const Trace trace(bench.ethernet.get());
    const QStringList answer = is_transparent ? bench.transparent(request) : bench.read(2);
    QVERIFY(answer.join(QString()).endsWith(QLatin1String(" 0x400a0000")));
    QTRY_COMPARE_WITH_TIMEOUT(bench.ethernet->state(), QAbstractSocket::ConnectedState, patience);
    QTRY_COMPARE_WITH_TIMEOUT(bench.device.received(), request, patience);
    QVERIFY(trace.isEmpty() || host == QLatin1String("localhost")); // that may have two addresses
}

// A driver that waits as Qt waits makes the connection by that.
void TestDriverBasicLink::connectingLinkIsAnswered()
{
    DriverBench bench(ScriptedDevice::Line::Tcp);
    bench.ethernet->connectToHost(QHostAddress(QHostAddress::LocalHost), bench.device.port());
    bench.driver->on_wait = [&](int expected, int* ready) {
        while (bench.link()->bytesAvailable() < expected) {
            if (!bench.link()->waitForReadyRead(patience))
                return 0x400A0000;
        }
        *ready = 1;
        return 0;
    };
    QCOMPARE(bench.read(2), QStringList(answerText("unit link", TestDevice::valuesOf(1, 2))));
}

void TestDriverBasicLink::closedLinkGetsNothing()
{
    DriverBench bench(ScriptedDevice::Line::Tcp);
    QVERIFY(bench.connectLink());
    bench.ethernet->close();
    bench.driver->on_wait = [&](int, int* ready) {
        bench.driver->waitForLinkInput(patience); // returns at once
        *ready = 1;
        return 0;
    };
    LogRecorder log;
    const Trace trace(bench.ethernet.get());
    QCOMPARE(bench.read(2), QStringList(QLatin1String("unit link - 0x20010003")));
    QCOMPARE(bench.transparent(request), QStringList(QLatin1String("transparent - 0x400a0000")));
    QCOMPARE(log.take(), QStringList(QLatin1String("Protocol_Invalid_Length: 0 ( 5 )")));
    QVERIFY(trace.isEmpty());
    QVERIFY(bench.connectLink());
    QCOMPARE(bench.device.received(), QByteArray());
}

void TestDriverBasicLink::addStateRows()
{
    QTest::addColumn<int>("state");
    QTest::newRow("opened") << int(QAbstractSocket::UnconnectedState);
    QTest::newRow("opened, says that it is connected") << int(QAbstractSocket::ConnectedState);
}

void TestDriverBasicLink::ownDeviceIsRead()
{
    QFETCH(int, state);
    OwnDevice link{QAbstractSocket::SocketState(state)};
    TestDriver driver(nullptr, &link);
    driver.on_wait = [&](int, int* ready) {
        driver.waitForLinkInput(2);
        *ready = 1;
        return 0;
    };
    LogRecorder log;
    for (int number = 1; number <= 2; ++number) {
        QByteArray data;
        driver.error_code_ = 0;
        driver.doCmdSM(CMD_READ, QString(), 0, 3, &data, 0, 0, 0);
        QCOMPARE(driver.error_code_, 0);
        QCOMPARE(data, TestDevice::valuesOf(number, 3));
    }
    QCOMPARE(link.written, QByteArray("Q\0\1\3Q\0\2\3", 8));
    QVERIFY2(log.lines().isEmpty(), qPrintable(log.lines().join(QLatin1Char('\n'))));
}

void TestDriverBasicLink::ownDeviceInTransparentMode()
{
    QFETCH(int, state);
    CountingDevice link{QAbstractSocket::SocketState(state)};
    TestDriver driver(nullptr, &link);
    driver.response_timeout_ = 1000;
    Answers answers(&driver);
    LogRecorder log;
    for (int i = 0; i < 2; ++i) {
        driver.RunTransparentRequest(request);
        QCOMPARE(answers.take(),
                 QStringList(answerText("transparent", TestDevice::answerTo(request))));
    }
    QCOMPARE(link.written, request + request);
    QVERIFY2(log.lines().isEmpty(), qPrintable(log.lines().join(QLatin1Char('\n'))));
}

QTEST_GUILESS_MAIN(TestDriverBasicLink)
#include "tst_driver_basic_link.moc"
