#include "examples/modbus/modbus_status.h"
#include "tests/examples/modbus/modbus_bench.h"
#include "tests/support/log_recorder.h"

#include <QElapsedTimer>
#include <QTest>

using namespace modbus;

// Links that are closed, get lost, and come back. The host opens them again.

namespace {

const int endless = 60000; // ms; no test waits so long
const char* const good_pdu = "030412345678";
const char* const good_bytes = "34127856";

/// The device sends \a bytes of its answer, and closes.
void closeBehind(ModbusBench& bench, int bytes)
{
    bench.device.setBehaviour([&bench, bytes](const QByteArray& request) {
        return QList<DeviceStep>{{bench.frame(request, hex(good_pdu)).left(bytes), 0, true}};
    });
}

} // namespace

class TestModbusDriverLost : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void closedInMidReply_data();
    void closedInMidReply();
    void forgetsWhatCameBefore();
    void closedWhileWaiting_data();
    void closedWhileWaiting();
    void closedBehindTheAnswer();
    void closedBetweenRequests_data();
    void closedBetweenRequests();
    void neverOpened_data();
    void neverOpened();
    void comesBackOnAnotherPort();

private:
    /// Opens the link again; the next request is served.
    static void comesBack(ModbusBench& bench);

    std::unique_ptr<LogRecorder> recorder_;
};

void TestModbusDriverLost::init()
{
    recorder_.reset(new LogRecorder);
}

/// Qt complains of a link that is not used as it wants; nothing else complains, either.
void TestModbusDriverLost::cleanup()
{
    const QStringList lines = recorder_->take();
    recorder_.reset();
    for (const QString& line : lines)
        QVERIFY2(line.startsWith(QLatin1String("[DriverBasic]")), qPrintable(line));
}

void TestModbusDriverLost::comesBack(ModbusBench& bench)
{
    bench.answerWith(hex(good_pdu));
    QVERIFY(bench.connectLink());
    const Got got = bench.host->read(readOf("4x1", 4));
    COMPARE_STATUS(got.status, Ok);
    QCOMPARE(got.data.toHex(), QByteArray(good_bytes));
}

void TestModbusDriverLost::closedInMidReply_data()
{
    QTest::addColumn<int>("bytes");
    for (const int bytes : {0, 1, 6, 7, 12})
        QTest::addRow("after %d bytes", bytes) << bytes;
}

void TestModbusDriverLost::closedInMidReply()
{
    QFETCH(int, bytes);
    ModbusBench bench(Transport::Tcp);
    QVERIFY(bench.connectLink());
    bench.setResponseTimeout(endless);
    closeBehind(bench, bytes);
    QElapsedTimer waited;
    waited.start();
    const Got got = bench.host->read(readOf("4x1", 4));
    QCOMPARE(got.answers, 1);
    COMPARE_STATUS(got.status, LinkLost);
    QVERIFY(waited.elapsed() < endless / 2);
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, NotConnected);
    comesBack(bench);
}

/// The first bytes on a new connection are the beginning of a frame, whatever the old one ended
/// with: so what is wrong with an answer is plain at once.
void TestModbusDriverLost::forgetsWhatCameBefore()
{
    ModbusBench bench(Transport::Tcp);
    QVERIFY(bench.connectLink());
    closeBehind(bench, 9);
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, LinkLost);
    QVERIFY(bench.connectLink());
    bench.setResponseTimeout(endless);
    bench.answerBytes([&bench](const QByteArray& request) {
        return bench.frame(request, hex(good_pdu)).replace(6, 1, "\7");
    });
    QElapsedTimer waited;
    waited.start();
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, OtherStation);
    QVERIFY(waited.elapsed() < endless / 2);
}

void TestModbusDriverLost::closedWhileWaiting_data()
{
    QTest::addColumn<Transport>("transport");
    QTest::newRow("RTU") << Transport::Rtu;
    QTest::newRow("TCP") << Transport::Tcp;
}

void TestModbusDriverLost::closedWhileWaiting()
{
    QFETCH(Transport, transport);
    ModbusBench bench(transport);
    bench.setPaced(false);
    QVERIFY(bench.connectLink());
    bench.setResponseTimeout(endless);
    bench.device.setBehaviour([&bench](const QByteArray& request) {
        return QList<DeviceStep>{{bench.frame(request, hex(good_pdu)).left(5), 0, false},
                                 {QByteArray(), 50, true}};
    });
    QElapsedTimer waited;
    waited.start();
    const Got got = bench.host->read(readOf("4x1", 4));
    QCOMPARE(got.answers, 1);
    COMPARE_STATUS(got.status, LinkLost);
    QVERIFY(waited.elapsed() < endless / 2);
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, NotConnected);
}

void TestModbusDriverLost::closedBehindTheAnswer()
{
    ModbusBench bench(Transport::Tcp);
    QVERIFY(bench.connectLink());
    closeBehind(bench, 1000);
    const Got got = bench.host->read(readOf("4x1", 4));
    COMPARE_STATUS(got.status, Ok);
    QCOMPARE(got.data.toHex(), QByteArray(good_bytes));
    comesBack(bench);
}

void TestModbusDriverLost::closedBetweenRequests_data()
{
    QTest::addColumn<Transport>("transport");
    QTest::addColumn<bool>("by_device");
    QTest::newRow("RTU, by the host") << Transport::Rtu << false;
    QTest::newRow("TCP, by the host") << Transport::Tcp << false;
    QTest::newRow("TCP, by the device") << Transport::Tcp << true;
}

void TestModbusDriverLost::closedBetweenRequests()
{
    QFETCH(Transport, transport);
    QFETCH(bool, by_device);
    ModbusBench bench(transport);
    QVERIFY(bench.connectLink());
    bench.answerWith(hex(good_pdu));
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, Ok);
    bench.setPaced(false);
    bench.setResponseTimeout(endless);
    if (by_device)
        bench.device.hangUp();
    else
        bench.closeLink();
    // Whether the driver knows before it sends or learns it then, it does not wait.
    const int status = bench.host->read(readOf("4x1", 4)).status;
    if (by_device)
        QVERIFY(status == LinkLost || status == NotConnected);
    else
        COMPARE_STATUS(status, NotConnected);
    bench.setResponseTimeout(5000);
    comesBack(bench);
}

void TestModbusDriverLost::neverOpened_data()
{
    closedWhileWaiting_data();
}

void TestModbusDriverLost::neverOpened()
{
    QFETCH(Transport, transport);
    ModbusBench bench(transport);
    bench.setResponseTimeout(endless);
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, NotConnected);
    COMPARE_STATUS(bench.host->write(writeOf("4x1", hex("1234"))).status, NotConnected);
    COMPARE_STATUS(bench.host->write(writeOf("4x1.3", hex("01"))).status, NotConnected);
    bench.setResponseTimeout(5000);
    comesBack(bench);
}

/// An adapter that was unplugged and has got another name.
void TestModbusDriverLost::comesBackOnAnotherPort()
{
    ModbusBench bench(Transport::Rtu);
    QVERIFY(bench.connectLink());
    bench.setResponseTimeout(endless);
    closeBehind(bench, 4);
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, LinkLost);
    ModbusDevice other(Transport::Rtu);
    other.setBehaviour([](const QByteArray& request) {
        return QList<DeviceStep>{{answerFrame(Transport::Rtu, request, hex(good_pdu)), 0, false}};
    });
    bench.setPaced(false);
    bench.serial.close();
    bench.serial.setPortName(other.portName());
    QVERIFY(bench.serial.open(QIODevice::ReadWrite));
    bench.setResponseTimeout(2000); // so long the line is listened to first
    const Got got = bench.host->read(readOf("4x1", 4));
    COMPARE_STATUS(got.status, Ok);
    QCOMPARE(got.data.toHex(), QByteArray(good_bytes));
}

QTEST_GUILESS_MAIN(TestModbusDriverLost)
#include "tst_modbus_driver_lost.moc"
