#include "tests/compat/serial_bench.h"
#include "tests/support/pty.h"

#include <QSerialPort>
#include <QSignalSpy>
#include <QTest>

#include <memory>

namespace {

const int too_much = 300 * 1000; // more bytes than the kernel takes while nobody reads

/// What the far end receives, up to \a size bytes, while the port's event loop runs.
QByteArray receivedBy(Pty* pty, int size)
{
    QByteArray received;
    becomesTrue([&] {
        QCoreApplication::processEvents();
        return (received += pty->take()).size() >= size;
    });
    return received;
}

} // namespace

class TestQextSerialPortWriting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void writingArrives_data();
    void writingArrives();
    void oneByteIsSentAtOnce();
    void oneByteThatTheLineDoesNotTake_data();
    void oneByteThatTheLineDoesNotTake();
    void writingNothingDoesNotWait();
    void writeToABlockedLine_data();
    void writeToABlockedLine();
    void largeWriteArrivesWhole();
    void flushDropsWhatWasNotSent();

private:
    std::unique_ptr<Pty> pty_;
    std::unique_ptr<QextSerialPort> port_;
};

void TestQextSerialPortWriting::init()
{
    port_.reset();
    pty_.reset(new Pty);
    QVERIFY(pty_->isValid());
    port_.reset(new QextSerialPort(pty_->portName()));
    QVERIFY(port_->open(QIODevice::ReadWrite));
}

void TestQextSerialPortWriting::writingArrives_data()
{
    QTest::addColumn<int>("timeout");
    QTest::newRow("waiting for the line") << 10;
    QTest::newRow("without waiting") << 0;
}

void TestQextSerialPortWriting::writingArrives()
{
    QFETCH(int, timeout);
    port_->setTimeout(timeout);
    QSignalSpy spy(port_.get(), &QIODevice::bytesWritten);
    QByteArray received;
    QCOMPARE(port_->write("no event loop"), 13);
    QVERIFY(becomesTrue([&] { return (received += pty_->take()).size() >= 13; }));
    QCOMPARE(received, QByteArray("no event loop"));
    QCOMPARE(port_->bytesToWrite(), 0);
    QTRY_VERIFY(!spy.isEmpty());
}

void TestQextSerialPortWriting::oneByteIsSentAtOnce()
{
    port_->setTimeout(0);
    QCOMPARE(port_->write("!", 1), 1);
    QCOMPARE(port_->bytesToWrite(), 0);
    QByteArray received;
    QVERIFY(becomesTrue([&] { return (received += pty_->take()).size() >= 1; }));
    QCOMPARE(received, QByteArray("!"));
}

void TestQextSerialPortWriting::oneByteThatTheLineDoesNotTake_data()
{
    QTest::addColumn<int>("timeout");
    QTest::addColumn<int>("error");
    QTest::newRow("waits for it") << 1 << int(E_PORT_TIMEOUT);
    QTest::newRow("does not wait") << 0 << int(E_NO_ERROR);
}

void TestQextSerialPortWriting::oneByteThatTheLineDoesNotTake()
{
    QFETCH(int, timeout);
    QFETCH(int, error);
    auto* below = port_->findChild<QSerialPort*>();
    QVERIFY(below);
    port_->setTimeout(timeout);
    while (port_->bytesToWrite() == 0)
        QCOMPARE(port_->write("x", 1), 1);
    QCOMPARE(port_->bytesToWrite(), 1);
    QCOMPARE(port_->lastError() == ulong(E_PORT_TIMEOUT), timeout > 0);
    below->clearError();
    QCOMPARE(port_->write("!", 1), 1); // behind one that waits already
    QCOMPARE(port_->lastError(), ulong(error));
}

void TestQextSerialPortWriting::writingNothingDoesNotWait()
{
    port_->setTimeout(0);
    QCOMPARE(port_->write(QByteArray(too_much, 'x')), too_much);
    while (port_->waitForBytesWritten(20)) // until the kernel takes no more
        QVERIFY(port_->bytesToWrite() > 0);
    port_->findChild<QSerialPort*>()->clearError();
    port_->setTimeout(1);
    QCOMPARE(port_->write("", 0), 0);
    QCOMPARE(port_->lastError(), ulong(E_NO_ERROR));
}

void TestQextSerialPortWriting::writeToABlockedLine_data()
{
    QTest::addColumn<int>("timeout");
    QTest::newRow("waits as long as it may") << 50;
    QTest::newRow("waits a millisecond") << 1;
    QTest::newRow("does not wait") << 0;
    QTest::newRow("does not wait for ever either") << -1;
}

void TestQextSerialPortWriting::writeToABlockedLine()
{
    QFETCH(int, timeout);
    port_->setTimeout(0);
    QCOMPARE(port_->write(QByteArray(too_much, 'x')), too_much);
    while (port_->waitForBytesWritten(20)) // until the kernel takes no more
        QVERIFY(port_->bytesToWrite() > 0);

    port_->findChild<QSerialPort*>()->clearError();
    port_->setTimeout(timeout);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(port_->write("!", 1), 1);
    QVERIFY(timer.elapsed() >= timeout - 10); // timers are coarse
    QCOMPARE(port_->lastError(), ulong(timeout > 0 ? E_PORT_TIMEOUT : E_NO_ERROR));

    const QByteArray received = receivedBy(pty_.get(), too_much + 1);
    QCOMPARE(received.size(), too_much + 1);
    QVERIFY(received.endsWith('!'));
}

void TestQextSerialPortWriting::largeWriteArrivesWhole()
{
    const QByteArray bytes = someBytes(too_much);
    port_->setTimeout(0);
    QCOMPARE(port_->write(bytes), bytes.size());
    QVERIFY(port_->bytesToWrite() > 0);
    QVERIFY(receivedBy(pty_.get(), bytes.size()) == bytes);
    QCOMPARE(port_->bytesToWrite(), 0);
}

void TestQextSerialPortWriting::flushDropsWhatWasNotSent()
{
    port_->setTimeout(0);
    QCOMPARE(port_->write(QByteArray(too_much, 'x')), too_much);
    QVERIFY(port_->bytesToWrite() > 0);
    port_->flush();
    QCOMPARE(port_->bytesToWrite(), 0);
    QCOMPARE(port_->write("!", 1), 1);

    QByteArray received;
    QTRY_VERIFY_WITH_TIMEOUT((received += pty_->take()).endsWith('!'), patience);
    QVERIFY(received.size() < too_much);
}

QTEST_GUILESS_MAIN(TestQextSerialPortWriting)
#include "tst_qext_serial_port_writing.moc"
