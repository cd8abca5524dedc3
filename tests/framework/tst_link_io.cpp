#include "framework/link_io.h"
#include "tests/framework/driver_bench.h"
#include "tests/support/log_recorder.h"
#include "tests/support/pty.h"

#include <QElapsedTimer>
#include <QTcpServer>
#include <QTest>

#include <climits>

namespace {

const int patience = 30000; // milliseconds; reached only by a failing test

} // namespace

/// Links that are up, down, gone, or not there.
class TestLinkIo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pauseLasts_data();
    void pauseLasts();
    void linksThatAreDown_data();
    void linksThatAreDown();
    void waitForInput_data() { addLineRows(); }
    void waitForInput();
    void takeFetchesFromTheKernel_data() { addLineRows(); }
    void takeFetchesFromTheKernel();
    void takeAfterTheFarEndClosed();
    void takeAfterALossThatIsKnown();
    void sendNeedsNoEventLoop_data() { addLineRows(); }
    void sendNeedsNoEventLoop();
    void waitUntilSentWaitsForAll_data() { addLineRows(); }
    void waitUntilSentWaitsForAll();
    void waitUntilSentGivesUp_data() { addLineRows(); }
    void waitUntilSentGivesUp();
    void byteThatQtHasKept();
    void connectionThatIsBeingMade();
    void portThatOnlyWrites();

private:
    static void addLineRows();
};

void TestLinkIo::addLineRows()
{
    QTest::addColumn<int>("line");
    QTest::newRow("TCP") << 0;
    QTest::newRow("serial") << 1;
}

void TestLinkIo::pauseLasts_data()
{
    QTest::addColumn<int>("milliseconds");
    QTest::addColumn<int>("least");
    QTest::newRow("negative") << -1 << 0;
    QTest::newRow("very negative") << INT_MIN << 0;
    QTest::newRow("nothing") << 0 << 0;
    QTest::newRow("50 ms") << 50 << 49;
}

void TestLinkIo::pauseLasts()
{
    QFETCH(int, milliseconds);
    QFETCH(int, least);
    QElapsedTimer timer;
    timer.start();
    link_io::pause(milliseconds);
    QVERIFY(timer.elapsed() >= least);
    QVERIFY(timer.elapsed() < patience);
}

void TestLinkIo::linksThatAreDown_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("no link") << 0;
    QTest::newRow("TCP, never connected") << 1;
    QTest::newRow("TCP, disconnected") << 2;
    QTest::newRow("serial, never opened") << 3;
    QTest::newRow("serial, closed") << 4;
}

static void useLink(DrvSerial* serial, DrvEthernet* ethernet)
{
    QIODevice* device = serial ? static_cast<QIODevice*>(serial) : ethernet;
    link_io::discard(serial, ethernet);
    link_io::send(device, "bytes");
    link_io::waitUntilSent(device, patience);
    link_io::waitForInput(device, patience);
    QVERIFY(link_io::take(device).isEmpty());
    QVERIFY(!device || device->bytesToWrite() == 0);
}

void TestLinkIo::linksThatAreDown()
{
    QFETCH(int, kind);
    DriverBench tcp(ScriptedDevice::Line::Tcp);
    LogRecorder log;
    DriverBench pty(ScriptedDevice::Line::Pty);
    if (kind == 2) {
        QVERIFY(tcp.connectLink());
        tcp.ethernet->disconnectFromHost();
    } else if (kind == 4) {
        QVERIFY(pty.connectLink());
        pty.serial->close();
    }
    log.take();
    QElapsedTimer timer;
    timer.start();
    if (kind <= 2)
        useLink(nullptr, kind == 0 ? nullptr : tcp.ethernet.get());
    else
        useLink(pty.serial.get(), nullptr);
    QVERIFY(timer.elapsed() < patience); // nothing is waited for
    QVERIFY2(log.lines().isEmpty(), qPrintable(log.lines().join(QLatin1Char('\n'))));
}

void TestLinkIo::waitForInput()
{
    QFETCH(int, line);
    DriverBench bench(lineOf(line));
    QVERIFY(bench.connectLink());
    QElapsedTimer timer;
    timer.start();
    link_io::waitForInput(bench.link(), 30);
    QVERIFY(timer.elapsed() >= 29);
    bench.device.send("x");
    timer.restart();
    link_io::waitForInput(bench.link(), patience);
    QVERIFY(timer.elapsed() < patience);
    QCOMPARE(bench.link()->bytesAvailable(), 1);
}

void TestLinkIo::takeFetchesFromTheKernel()
{
    QFETCH(int, line);
    DriverBench bench(lineOf(line));
    QVERIFY(bench.connectLink());
    QVERIFY(link_io::take(bench.link()).isEmpty());
    bench.device.send("in Qt, ");
    QVERIFY(bench.waitInQt(7));
    bench.device.send("in the kernel");
    QVERIFY(bench.waitInKernel(line == 0 ? 13 : 20));
    QCOMPARE(link_io::take(bench.link()), QByteArray("in Qt, in the kernel"));
    QVERIFY(link_io::take(bench.link()).isEmpty());
}

void TestLinkIo::takeAfterTheFarEndClosed()
{
    DriverBench bench(ScriptedDevice::Line::Tcp);
    QVERIFY(bench.connectLink());
    bench.device.send("last words");
    bench.device.hangUp();
    QVERIFY(bench.waitInKernel(10));
    LogRecorder log;
    QCOMPARE(link_io::take(bench.link()), QByteArray("last words"));
    QVERIFY(log.lines().isEmpty());
}

void TestLinkIo::takeAfterALossThatIsKnown()
{
    DriverBench bench(ScriptedDevice::Line::Tcp);
    QVERIFY(bench.connectLink());
    bench.device.send("last words");
    QVERIFY(bench.waitInQt(10));
    bench.device.hangUp();
    QTRY_COMPARE_WITH_TIMEOUT(bench.ethernet->state(), QAbstractSocket::UnconnectedState, patience);
    LogRecorder log;
    link_io::send(bench.link(), "too late");
    QCOMPARE(link_io::take(bench.link()), QByteArray("last words"));
    link_io::discard(nullptr, bench.ethernet.get());
    QVERIFY(link_io::take(bench.link()).isEmpty());
    QVERIFY(log.lines().isEmpty());
}

void TestLinkIo::sendNeedsNoEventLoop()
{
    QFETCH(int, line);
    DriverBench bench(lineOf(line));
    QVERIFY(bench.connectLink());
    link_io::send(bench.link(), "one");
    QVERIFY(bench.device.waitForReceived(3));
    link_io::send(bench.link(), QByteArray());
    link_io::send(bench.link(), QByteArray("\0two", 4));
    QVERIFY(bench.device.waitForReceived(7));
    QCOMPARE(bench.device.received(), QByteArray("one\0two", 7));
    QCOMPARE(bench.link()->bytesToWrite(), 0);
    QElapsedTimer timer;
    timer.start();
    link_io::waitUntilSent(bench.link(), patience); // there is nothing to wait for
    QVERIFY(timer.elapsed() < patience);
}

void TestLinkIo::waitUntilSentWaitsForAll()
{
    QFETCH(int, line);
    DriverBench bench(lineOf(line));
    QVERIFY(bench.connectLink());
    if (bench.serial)
        bench.serial->setTimeout(0);
    bench.device.behave(QStringList(QLatin1String("silent")));
    // More than the kernel takes at once.
    const QByteArray bytes((bench.serial ? 300 : 16000) * 1000, '.');
    link_io::send(bench.link(), bytes);
    link_io::waitUntilSent(bench.link(), patience);
    QCOMPARE(bench.link()->bytesToWrite(), 0);
    QVERIFY(bench.device.waitForReceived(bytes.size()));
    QVERIFY(bench.device.received() == bytes);
    if (bench.ethernet)
        QCOMPARE(bench.ethernet->error(), QAbstractSocket::UnknownSocketError);
}

void TestLinkIo::waitUntilSentGivesUp()
{
    QFETCH(int, line);
    Pty pty; // nobody reads it, nor what comes to the server
    DrvSerial serial(pty.portName());
    QTcpServer server;
    DrvEthernet ethernet;
    serial.setTimeout(0);
    if (line == 0) {
        QVERIFY(server.listen(QHostAddress::LocalHost));
        ethernet.connectToHost(server.serverAddress(), server.serverPort());
        QVERIFY(ethernet.waitForConnected(patience));
    } else {
        QVERIFY(serial.open(QIODevice::ReadWrite));
    }
    QIODevice* const link = line == 0 ? static_cast<QIODevice*>(&ethernet) : &serial;
    QElapsedTimer timer;
    timer.start();
    link_io::send(link, QByteArray((line == 0 ? 16000 : 300) * 1000, 'x'));
    link_io::waitUntilSent(link, 50);
    QVERIFY(timer.elapsed() >= 49);
    QVERIFY(timer.elapsed() < patience);
    QVERIFY(link->bytesToWrite() > 0);
}

/// No event loop has run.
void TestLinkIo::byteThatQtHasKept()
{
    DriverBench bench(ScriptedDevice::Line::Tcp);
    QVERIFY(bench.connectLink());
    bench.ethernet->write("x");
    QCOMPARE(bench.ethernet->bytesToWrite(), 1);
    QElapsedTimer timer;
    timer.start();
    link_io::waitUntilSent(bench.link(), patience);
    QVERIFY(timer.elapsed() < patience);
    QCOMPARE(bench.ethernet->bytesToWrite(), 0);
    QVERIFY(bench.device.waitForReceived(1));
}

/// It is the event loop's: nothing is sent, and input is waited for in vain.
void TestLinkIo::connectionThatIsBeingMade()
{
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    DrvEthernet link;
    link.connectToHost(server.serverAddress(), server.serverPort());
    QCOMPARE(link.state(), QAbstractSocket::ConnectingState);
    link.write("kept");
    QElapsedTimer timer;
    timer.start();
    link_io::waitUntilSent(&link, patience);
    QVERIFY(timer.elapsed() < patience);
    QCOMPARE(link.bytesToWrite(), 4);
    timer.restart();
    link_io::waitForInput(&link, 50);
    QVERIFY(timer.elapsed() >= 49);
    QCOMPARE(link.state(), QAbstractSocket::ConnectingState);
}

void TestLinkIo::portThatOnlyWrites()
{
    Pty pty;
    DrvSerial link(pty.portName());
    QVERIFY(link.open(QIODevice::WriteOnly));
    link_io::send(&link, "out");
    QByteArray received;
    QTRY_COMPARE_WITH_TIMEOUT(received += pty.take(), QByteArray("out"), patience);
    QVERIFY(pty.send("in"));
    LogRecorder log;
    QVERIFY(link_io::take(&link).isEmpty());
    QVERIFY(log.lines().isEmpty());
}

QTEST_GUILESS_MAIN(TestLinkIo)
#include "tst_link_io.moc"
