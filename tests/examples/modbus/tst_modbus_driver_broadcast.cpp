#include "examples/modbus/modbus_rtu.h"
#include "examples/modbus/modbus_status.h"
#include "tests/examples/modbus/modbus_bench.h"

#include <QElapsedTimer>
#include <QTest>

using namespace modbus;

// Writes to all devices at once, which only a serial line has. Nobody answers.

namespace {

const char* const good_pdu = "030412345678";

Asked broadcast(const Asked& asked)
{
    Asked changed = asked;
    changed.station = 0;
    return changed;
}

} // namespace

class TestModbusDriverBroadcast : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writes_data();
    void writes();
    void afterARefusal();
    void afterASilentDevice();
    void slowLine();
    void lostLine();
    void stopped();
    void ethernetHasNoBroadcast();
};

void TestModbusDriverBroadcast::writes_data()
{
    QTest::addColumn<Asked>("asked");
    QTest::addColumn<QByteArray>("pdu");
    QTest::newRow("coil") << writeOf("0x1", hex("01")) << hex("050000FF00");
    QTest::newRow("register") << writeOf("4x1", hex("3412")) << hex("0600001234");
    QTest::newRow("coils") << writeOf("0x1", hex("0101")) << hex("0F000000020103");
    QTest::newRow("registers") << writeOf("4x1", hex("34127856")) << hex("10000000020412345678");
}

/// The devices get time to carry it out.
void TestModbusDriverBroadcast::writes()
{
    QFETCH(Asked, asked);
    QFETCH(QByteArray, pdu);
    ModbusBench bench(Transport::Rtu);
    QVERIFY(bench.connectLink());
    bench.setResponseTimeout(60000);
    bench.setRetries(3);
    QElapsedTimer waited;
    waited.start();
    const Got got = bench.host->write(broadcast(asked));
    QCOMPARE(got.answers, 1);
    COMPARE_STATUS(got.status, Ok);
    QVERIFY(waited.elapsed() >= 100);
    QVERIFY(waited.elapsed() < 55000);
    QCOMPARE(bench.device.requests().size(), 1);
    QCOMPARE(bench.device.requests().first().toHex(), rtuFrame(0, pdu).toHex());
    bench.answerWith(hex(good_pdu));
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, Ok);
}

void TestModbusDriverBroadcast::afterARefusal()
{
    ModbusBench bench(Transport::Rtu);
    QVERIFY(bench.connectLink());
    bench.answerWith(hex("8302"));
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, 0x400B0002);
    COMPARE_STATUS(bench.host->write(broadcast(writeOf("4x1", hex("3412")))).status, Ok);
}

/// The long silence before the broadcast was the last.
void TestModbusDriverBroadcast::afterASilentDevice()
{
    ModbusBench bench(Transport::Rtu);
    QVERIFY(bench.connectLink());
    bench.setResponseTimeout(20);
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, NoAnswerInTime);
    COMPARE_STATUS(bench.host->write(broadcast(writeOf("4x1", hex("3412")))).status, Ok);
    bench.setResponseTimeout(60000);
    bench.answerWith(hex(good_pdu));
    QElapsedTimer waited;
    waited.start();
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, Ok);
    QVERIFY(waited.elapsed() < 55000);
}

/// At 300 baud its 8 characters take 266 ms, before the devices' time begins.
void TestModbusDriverBroadcast::slowLine()
{
    ModbusBench bench(Transport::Rtu);
    QVERIFY(bench.connectLink());
    bench.serial.setBaudRate(BAUD300);
    bench.setResponseTimeout(5000);
    QElapsedTimer waited;
    waited.start();
    COMPARE_STATUS(bench.host->write(broadcast(writeOf("4x1", hex("3412")))).status, Ok);
    QVERIFY(waited.elapsed() >= 366);
}

void TestModbusDriverBroadcast::lostLine()
{
    ModbusBench bench(Transport::Rtu);
    QVERIFY(bench.connectLink());
    bench.device.setBehaviour([](const QByteArray&) {
        return QList<DeviceStep>{{QByteArray(), 0, true}};
    });
    COMPARE_STATUS(bench.host->write(broadcast(writeOf("4x1", hex("3412")))).status, LinkLost);
}

void TestModbusDriverBroadcast::stopped()
{
    ModbusBench bench(Transport::Rtu);
    QVERIFY(bench.connectLink());
    bench.device.setBehaviour([&bench](const QByteArray&) {
        bench.driver->stop_flag = 1;
        return QList<DeviceStep>();
    });
    COMPARE_STATUS(bench.host->write(broadcast(writeOf("4x1", hex("3412")))).status, Stopped);
}

/// Over TCP, station 0 is the device itself, and answers.
void TestModbusDriverBroadcast::ethernetHasNoBroadcast()
{
    ModbusBench bench(Transport::Tcp);
    QVERIFY(bench.connectLink());
    bench.answerWith(hex("0600001234"));
    COMPARE_STATUS(bench.host->write(broadcast(writeOf("4x1", hex("3412")))).status, Ok);
    bench.setResponseTimeout(300);
    bench.device.setBehaviour(nullptr);
    COMPARE_STATUS(bench.host->write(broadcast(writeOf("4x1", hex("3412")))).status,
                   NoAnswerInTime);
}

QTEST_GUILESS_MAIN(TestModbusDriverBroadcast)
#include "tst_modbus_driver_broadcast.moc"
