#include "tests/framework/driver_bench.h"
#include "tests/support/log_recorder.h"
#include "tests/support/pty.h"

#include <QTest>

#include <memory>

namespace {

/// Where bytes wait that nobody has asked for.
enum Place
{
    InKernel,
    InQt,
    InBoth,
    ReadInPart,
    Peeked,
    SingleByte
};

} // namespace

Q_DECLARE_METATYPE(Place)

/// Bytes that wait on the link when a request begins are not its answer.
class TestDriverBasicStaleInput : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isDiscarded_data() { addRows(); }
    void isDiscarded();
    void isDiscardedInTransparentMode_data() { addRows(); }
    void isDiscardedInTransparentMode();
    void wholeAnswerOfAnotherRequest_data();
    void wholeAnswerOfAnotherRequest();
    void moreThanOneReadTakes_data();
    void moreThanOneReadTakes();
    void unsentBytesOfASerialPort();

private:
    static void addRows();
    void leave(Place place);

    std::unique_ptr<DriverBench> bench_;
};

void TestDriverBasicStaleInput::addRows()
{
    QTest::addColumn<int>("line");
    QTest::addColumn<Place>("place");
    const char* const names[] = {"TCP", "serial"};
    for (int line = 0; line < 2; ++line) {
        QTest::addRow("%s, in the kernel alone", names[line]) << line << InKernel;
        QTest::addRow("%s, in Qt's buffer", names[line]) << line << InQt;
        QTest::addRow("%s, in both", names[line]) << line << InBoth;
        QTest::addRow("%s, read in part", names[line]) << line << ReadInPart;
        QTest::addRow("%s, peeked at", names[line]) << line << Peeked;
        QTest::addRow("%s, a single byte", names[line]) << line << SingleByte;
    }
}

/// Leaves bytes on the link, which is up.
void TestDriverBasicStaleInput::leave(Place place)
{
    if (place == SingleByte) {
        bench_->device.send("s");
        QVERIFY(bench_->waitInKernel(1));
        return;
    }
    bench_->device.send("stale");
    QVERIFY(place == InKernel ? bench_->waitInKernel(5) : bench_->waitInQt(5));
    if (place == InBoth) {
        bench_->device.send("more");
        QVERIFY(bench_->waitInKernel(bench_->serial ? 9 : 4)); // a serial port counts both
    }
    if (place == ReadInPart)
        QCOMPARE(bench_->link()->read(2), QByteArray("st"));
    if (place == Peeked)
        QCOMPARE(bench_->link()->peek(3), QByteArray("sta"));
}

void TestDriverBasicStaleInput::isDiscarded()
{
    QFETCH(int, line);
    QFETCH(Place, place);
    bench_.reset(new DriverBench(lineOf(line)));
    QVERIFY(bench_->connectLink());
    for (int number = 1; number <= 2; ++number) {
        leave(place);
        const QString values = bytesText(TestDevice::valuesOf(number, 6));
        QCOMPARE(bench_->read(6),
                 QStringList(QLatin1String("unit link ") + values + QLatin1String(" 0x0")));
    }
}

void TestDriverBasicStaleInput::isDiscardedInTransparentMode()
{
    QFETCH(int, line);
    QFETCH(Place, place);
    bench_.reset(new DriverBench(lineOf(line)));
    QVERIFY(bench_->connectLink());
    bench_->driver->response_timeout_ = 60000;
    leave(place);
    QCOMPARE(bench_->transparent("Q\x01\x02\x03"),
             QStringList(QLatin1String("transparent ") +
                         bytesText(TestDevice::answerTo("Q\x01\x02\x03")) + QLatin1String(" 0x0")));
}

void TestDriverBasicStaleInput::wholeAnswerOfAnotherRequest_data()
{
    QTest::addColumn<int>("line");
    QTest::newRow("TCP") << 0;
    QTest::newRow("serial") << 1;
}

// The answer to the first request comes when nobody waits any longer; the second gets its own.
void TestDriverBasicStaleInput::wholeAnswerOfAnotherRequest()
{
    QFETCH(int, line);
    bench_.reset(new DriverBench(lineOf(line)));
    QVERIFY(bench_->connectLink());
    bench_->device.behave({QLatin1String("late"), QLatin1String("answers")});
    bench_->driver->time_limit = 20;
    LogRecorder log;
    QCOMPARE(bench_->read(2), QStringList(QLatin1String("unit link - 0x400a0000")));
    QCOMPARE(log.lines(), QStringList(QLatin1String("Command_Timeout")));
    QVERIFY(bench_->device.waitForReceived(4));
    while (bench_->link()->bytesAvailable() == 0) {
        bench_->device.release(); // sends once, as soon as there is something to send
        bench_->link()->waitForReadyRead(10);
    }
    bench_->driver->time_limit = 30000;
    QCOMPARE(bench_->read(2),
             QStringList(QLatin1String("unit link ") + bytesText(TestDevice::valuesOf(2, 2)) +
                         QLatin1String(" 0x0")));
}

void TestDriverBasicStaleInput::moreThanOneReadTakes_data()
{
    QTest::addColumn<int>("line");
    QTest::addColumn<int>("size");
    QTest::newRow("TCP, 50000 bytes") << 0 << 50000;
    QTest::newRow("serial, 4000 bytes") << 1 << 4000;
}

void TestDriverBasicStaleInput::moreThanOneReadTakes()
{
    QFETCH(int, line);
    QFETCH(int, size);
    bench_.reset(new DriverBench(lineOf(line)));
    QVERIFY(bench_->connectLink());
    for (int sent = 0; sent < size; sent += 1000) {
        bench_->device.send(QByteArray(1000, 's'));
        if (line == 1)
            QVERIFY(bench_->waitInKernel(sent + 1000));
    }
    QVERIFY(bench_->waitInKernel(size));
    QCOMPARE(bench_->read(2),
             QStringList(QLatin1String("unit link ") + bytesText(TestDevice::valuesOf(1, 2)) +
                         QLatin1String(" 0x0")));
}

void TestDriverBasicStaleInput::unsentBytesOfASerialPort()
{
    Pty pty;
    QVERIFY(pty.isValid());
    DrvSerial link(pty.portName());
    link.setTimeout(0);
    QVERIFY(link.open(QIODevice::ReadWrite));
    const int too_much = 300 * 1000; // more than the kernel takes while nobody reads
    QCOMPARE(link.write(QByteArray(too_much, 'x')), too_much);
    QVERIFY(link.bytesToWrite() > 0);
    TestDriver driver(&link);
    driver.on_wait = [](int, int*) { return 0; };
    QByteArray data;
    driver.doCmdSM(CMD_READ, QString(), 0, 2, &data, 0, 0, 0);
    const QByteArray request("Q\x00\x01\x02", 4);
    QByteArray received;
    QTRY_VERIFY_WITH_TIMEOUT((received += pty.take()).endsWith(request), 30000);
    QVERIFY(received.size() < too_much);
}

QTEST_GUILESS_MAIN(TestDriverBasicStaleInput)
#include "tst_driver_basic_stale_input.moc"
