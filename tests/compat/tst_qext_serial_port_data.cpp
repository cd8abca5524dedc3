#include "compat/serial_port.h"
#include "tests/compat/serial_bench.h"
#include "tests/support/pty.h"

#include <QAbstractEventDispatcher>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <memory>

class TestQextSerialPortData : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void eventDrivenReading();
    void pollingNeedsNoEventLoop();
    void pollingEmitsNothing();
    void readTakesWhatPortAndKernelHold();
    void readOfWhatThePortHolds();
    void readOfPartOfWhatTheKernelHolds();
    void oneByteInTheKernel();
    void lookingForNothingIsNoError();
    void everyByteValueBothWays();
    void lines();
    void peekLeavesTheBytes();
    void waitForReadyReadReturnsWithBytes();
    void waitForReadyReadTimesOut();
    void flushDropsWhatWasReceived_data();
    void flushDropsWhatWasReceived();
    void flushOfAPortForWritingReadsNothing();
    void hangUpEndsWaiting();
    void hangUpEndsReading();
    void hangUpLeavesTheEventLoopIdle();
    void openedAnewBeforeTheHangUpIsNoticed();

private:
    std::unique_ptr<Pty> pty_;
    std::unique_ptr<QextSerialPort> port_;
};

void TestQextSerialPortData::init()
{
    port_.reset();
    pty_.reset(new Pty);
    QVERIFY(pty_->isValid());
    port_.reset(new QextSerialPort(pty_->portName()));
    QVERIFY(port_->open(QIODevice::ReadWrite));
}

void TestQextSerialPortData::eventDrivenReading()
{
    QSignalSpy spy(port_.get(), &QIODevice::readyRead);
    QVERIFY(pty_->send("event"));
    QTRY_COMPARE(port_->bytesAvailable(), 5);
    QTRY_VERIFY(!spy.isEmpty());
    QCOMPARE(port_->readAll(), QByteArray("event"));
    QCOMPARE(port_->bytesAvailable(), 0);

    spy.clear();
    QVERIFY(pty_->send("again"));
    QTRY_VERIFY(!spy.isEmpty());
}

void TestQextSerialPortData::pollingNeedsNoEventLoop()
{
    port_->setQueryMode(QextSerialPort::Polling);
    QCOMPARE(port_->bytesAvailable(), 0);
    QVERIFY(port_->readAll().isEmpty());
    QVERIFY(pty_->send("poll"));
    QVERIFY(arrives(*port_, 4));
    QCOMPARE(port_->bytesAvailable(), 4);
    QCOMPARE(port_->size(), 4);
    QCOMPARE(port_->read(3), QByteArray("pol"));
    QCOMPARE(port_->bytesAvailable(), 1);
    QCOMPARE(port_->readAll(), QByteArray("l"));
    QCOMPARE(port_->bytesAvailable(), 0);
}

void TestQextSerialPortData::pollingEmitsNothing()
{
    port_->setQueryMode(QextSerialPort::Polling);
    QSignalSpy spy(port_.get(), &QIODevice::readyRead);
    QVERIFY(pty_->send("poll"));
    QVERIFY(arrives(*port_, 4));
    QCoreApplication::processEvents(); // the bytes are there: an emission would happen now
    QCOMPARE(spy.size(), 0);
    QCOMPARE(port_->readAll(), QByteArray("poll"));
}

void TestQextSerialPortData::readTakesWhatPortAndKernelHold()
{
    QVERIFY(pty_->send("abc"));
    QVERIFY(port_->waitForReadyRead(patience)); // these are in the port now
    QVERIFY(pty_->send("de"));
    QVERIFY(arrives(*port_, 5)); // and these in the kernel
    QCOMPARE(port_->read(100), QByteArray("abcde"));
    QCOMPARE(port_->bytesAvailable(), 0);
}

void TestQextSerialPortData::readOfWhatThePortHolds()
{
    QVERIFY(pty_->send("abc"));
    QVERIFY(port_->waitForReadyRead(patience));
    QVERIFY(pty_->send("de"));
    QVERIFY(arrives(*port_, 5));
    QSignalSpy spy(port_.get(), &QIODevice::readyRead);
    QCOMPARE(port_->read(3), QByteArray("abc"));
    QCOMPARE(spy.size(), 0); // the rest has not been looked for
    QCOMPARE(port_->read(2), QByteArray("de"));
}

void TestQextSerialPortData::readOfPartOfWhatTheKernelHolds()
{
    QVERIFY(pty_->send("abc"));
    QVERIFY(port_->waitForReadyRead(patience));
    QVERIFY(pty_->send("defg"));
    QVERIFY(arrives(*port_, 7));
    QByteArray bytes("........");
    QCOMPARE(port_->read(bytes.data(), 5), 5);
    QCOMPARE(bytes, QByteArray("abcde..."));
    QCOMPARE(port_->readAll(), QByteArray("fg"));
}

void TestQextSerialPortData::oneByteInTheKernel()
{
    QVERIFY(pty_->send("\n"));
    QVERIFY(arrives(*port_, 1));
    QCOMPARE(port_->read(100), QByteArray("\n"));
    QVERIFY(pty_->send("\n"));
    QVERIFY(arrives(*port_, 1));
    QVERIFY(port_->canReadLine());
    QCOMPARE(port_->readLine(), QByteArray("\n"));
}

void TestQextSerialPortData::lookingForNothingIsNoError()
{
    QVERIFY(port_->read(100).isEmpty());
    QVERIFY(!port_->canReadLine());
    QCOMPARE(port_->lastError(), ulong(E_NO_ERROR));
}

void TestQextSerialPortData::everyByteValueBothWays()
{
    const QByteArray bytes = someBytes(256);
    QVERIFY(pty_->send(bytes));
    QVERIFY(arrives(*port_, 256));
    QCOMPARE(port_->readAll().toHex(), bytes.toHex());

    QByteArray received;
    QCOMPARE(port_->write(bytes), 256);
    QVERIFY(becomesTrue([&] { return (received += pty_->take()).size() >= 256; }));
    QCOMPARE(received.toHex(), bytes.toHex());
}

void TestQextSerialPortData::lines()
{
    QVERIFY(pty_->send("on"));
    QVERIFY(arrives(*port_, 2));
    QVERIFY(!port_->canReadLine());
    QVERIFY(pty_->send("e\ntwo"));
    QVERIFY(arrives(*port_, 7));
    QVERIFY(port_->canReadLine()); // what the kernel still holds
    QVERIFY(port_->canReadLine()); // what the port holds now
    QCOMPARE(port_->readLine(), QByteArray("one\n"));
    QVERIFY(!port_->canReadLine());
    QVERIFY(arrives(*port_, 3));
    QCOMPARE(port_->readLine(), QByteArray("two"));
}

void TestQextSerialPortData::peekLeavesTheBytes()
{
    QVERIFY(pty_->send("peek"));
    QVERIFY(arrives(*port_, 4));
    QCOMPARE(port_->peek(2), QByteArray("pe"));
    QCOMPARE(port_->bytesAvailable(), 4);
    QCOMPARE(port_->readAll(), QByteArray("peek"));
}

void TestQextSerialPortData::waitForReadyReadReturnsWithBytes()
{
    QVERIFY(pty_->send("wait"));
    QVERIFY(port_->waitForReadyRead(patience));
    QVERIFY(arrives(*port_, 4));
    QCOMPARE(port_->readAll(), QByteArray("wait"));
}

void TestQextSerialPortData::waitForReadyReadTimesOut()
{
    QVERIFY(!port_->waitForReadyRead(1));
    QCOMPARE(port_->lastError(), ulong(E_PORT_TIMEOUT));
    QVERIFY(pty_->send("late"));
    QVERIFY(arrives(*port_, 4));
    QCOMPARE(port_->readAll(), QByteArray("late"));
}

void TestQextSerialPortData::flushDropsWhatWasReceived_data()
{
    QTest::addColumn<bool>("is_in_port");
    QTest::addColumn<int>("read_before");
    QTest::addColumn<int>("peeked_before");
    QTest::newRow("held by the kernel") << false << 0 << 0;
    QTest::newRow("held by the port") << true << 0 << 0;
    QTest::newRow("the rest of what was read in part") << false << 1 << 0;
    QTest::newRow("the rest of what the port held") << true << 1 << 0;
    QTest::newRow("what was peeked at") << false << 0 << 5;
    QTest::newRow("the last byte, peeked at") << false << 4 << 1;
    QTest::newRow("what was peeked at in part") << true << 1 << 2;
}

void TestQextSerialPortData::flushDropsWhatWasReceived()
{
    QFETCH(bool, is_in_port);
    QFETCH(int, read_before);
    QFETCH(int, peeked_before);
    QVERIFY(pty_->send("stale"));
    QVERIFY(arrives(*port_, 5));
    if (is_in_port)
        QVERIFY(port_->waitForReadyRead(patience));
    QCOMPARE(port_->read(read_before).size(), read_before);
    QCOMPARE(port_->peek(peeked_before).size(), peeked_before);
    port_->flush();
    QCOMPARE(port_->bytesAvailable(), 0);
    QVERIFY(port_->readAll().isEmpty());
    QVERIFY(pty_->send("new"));
    QVERIFY(arrives(*port_, 3));
    QCOMPARE(port_->readAll(), QByteArray("new"));
}

void TestQextSerialPortData::flushOfAPortForWritingReadsNothing()
{
    static int warnings;
    warnings = 0;
    port_->close();
    QVERIFY(port_->open(QIODevice::WriteOnly));
    const auto before = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString&) { ++warnings; });
    port_->flush();
    qInstallMessageHandler(before);
    QCOMPARE(warnings, 0); // Qt warns when such a device is read
}

void TestQextSerialPortData::hangUpEndsWaiting()
{
    pty_->close();
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!port_->waitForReadyRead(patience));
    QVERIFY(!timer.hasExpired(patience / 2));
    QVERIFY(port_->lastError() != ulong(E_NO_ERROR));
    QVERIFY(port_->lastError() != ulong(E_PORT_TIMEOUT));
    QVERIFY(!port_->errorString().isEmpty());
}

void TestQextSerialPortData::hangUpEndsReading()
{
    pty_->close();
    QCOMPARE(port_->bytesAvailable(), 0);
    QVERIFY(port_->readAll().isEmpty());
    QTRY_VERIFY(port_->lastError() != ulong(E_NO_ERROR));
    port_->flush();
    port_->close();
    QVERIFY(!port_->isOpen());
}

// A line that is gone can be read for ever; nobody may be woken for that again and again.
void TestQextSerialPortData::hangUpLeavesTheEventLoopIdle()
{
    pty_->close();
    QTRY_VERIFY(port_->lastError() != ulong(E_NO_ERROR));
    int rounds = 0;
    while (rounds < 1000 && thread()->eventDispatcher()->processEvents(QEventLoop::AllEvents))
        ++rounds;
    QVERIFY(rounds < 1000);
}

// The line was lost, and the host is faster than the event loop.
void TestQextSerialPortData::openedAnewBeforeTheHangUpIsNoticed()
{
    pty_->close();
    QVERIFY(!port_->waitForReadyRead(patience));
    port_->close();
    Pty another;
    port_->setPortName(another.portName());
    QVERIFY(port_->open(QIODevice::ReadWrite));
    QCoreApplication::processEvents();
    QVERIFY(port_->isOpen());
    QVERIFY(another.send("new"));
    QTRY_COMPARE(port_->bytesAvailable(), 3);
    QCOMPARE(port_->readAll(), QByteArray("new"));
    port_->close();
}

QTEST_GUILESS_MAIN(TestQextSerialPortData)
#include "tst_qext_serial_port_data.moc"
