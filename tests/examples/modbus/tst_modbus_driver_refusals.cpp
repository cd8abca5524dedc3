#include "examples/modbus/modbus_rtu.h"
#include "examples/modbus/modbus_status.h"
#include "tests/examples/modbus/modbus_bench.h"
#include "tests/support/log_recorder.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

using namespace modbus;

// Requests that the driver refuses: nothing reaches the device. The stop flag, and the transparent
// mode beside the driver's own requests.

namespace {

const char* const good_pdu = "030412345678";

Asked with(Asked asked, int Asked::*member, int value)
{
    asked.*member = value;
    return asked;
}

QByteArray bytes(int count)
{
    return QByteArray(count, '\1');
}

void addTransports()
{
    QTest::addColumn<Transport>("transport");
    QTest::newRow("RTU") << Transport::Rtu;
    QTest::newRow("TCP") << Transport::Tcp;
}

} // namespace

class TestModbusDriverRefusals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsSent_data();
    void nothingIsSent();
    void stationsOfALine_data();
    void stationsOfALine();
    void noLink();
    void stoppedWhileWaiting_data();
    void stoppedWhileWaiting();
    void stoppedBeforeTheSecondExchange();
    void transparent_data();
    void transparent();
};

void TestModbusDriverRefusals::nothingIsSent_data()
{
    QTest::addColumn<Asked>("asked");
    QTest::addColumn<int>("status");
    const auto row = [](const char* name, const Asked& asked, int status) {
        QTest::newRow(name) << asked << status;
    };
    row("bad address", readOf("5x17", 2), BadAddress);
    row("no address", readOf("", 2), BadAddress);
    row("address 0", readOf("4x0", 2), BadAddress);
    row("write to a read-only area", writeOf("3x17", bytes(2)), ReadOnlyArea);
    row("odd length", readOf("4x17", 3), BadLength);
    row("length -2", readOf("4x17", -2), BadLength);
    row("write of nothing", writeOf("4x17", QByteArray()), BadLength);
    row("read of 2001 coils", readOf("0x1", 2001), TooLarge);
    row("read of 126 registers", readOf("4x1", 252), TooLarge);
    row("write of 1969 coils", writeOf("0x1", bytes(1969)), TooLarge);
    row("write of 124 registers", writeOf("4x1", bytes(248)), TooLarge);
    row("beyond the end", readOf("4x65536", 4), BeyondEnd);
    row("bad element size", with(readOf("4x17", 6), &Asked::extra1, 3), BadElementSize);
    row("bad order", with(readOf("4x17", 4), &Asked::extra2, 4), BadOrder);
    row("bad field1", with(writeOf("4x17", bytes(2)), &Asked::field1, 2), BadFunctionChoice);
    row("station 256", with(readOf("4x17", 2), &Asked::station, 256), BadStation);
    row("station -1", with(writeOf("4x17", bytes(2)), &Asked::station, -1), BadStation);
}

void TestModbusDriverRefusals::nothingIsSent()
{
    QFETCH(Asked, asked);
    QFETCH(int, status);
    for (const Transport transport : {Transport::Rtu, Transport::Tcp}) {
        ModbusBench bench(transport);
        QVERIFY(bench.connectLink());
        bench.setRetries(2);
        const Got got = asked.data_length != 0 ? bench.host->read(asked) : bench.host->write(asked);
        QCOMPARE(got.answers, 1);
        COMPARE_STATUS(got.status, status);
        // The device would have seen it before the next request.
        bench.answerWith(hex(good_pdu));
        COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, Ok);
        QCOMPARE(bench.device.requests().size(), 1);
    }
}

void TestModbusDriverRefusals::stationsOfALine_data()
{
    QTest::addColumn<int>("station");
    QTest::addColumn<int>("status");
    QTest::newRow("read by broadcast") << 0 << int(BroadcastRead);
    QTest::newRow("248") << 248 << int(BadStation);
    QTest::newRow("255") << 255 << int(BadStation);
}

void TestModbusDriverRefusals::stationsOfALine()
{
    QFETCH(int, station);
    QFETCH(int, status);
    ModbusBench bench(Transport::Rtu);
    QVERIFY(bench.connectLink());
    COMPARE_STATUS(bench.host->read(with(readOf("4x1", 4), &Asked::station, station)).status,
                   status);
    QVERIFY(bench.device.requests().isEmpty());
}

void TestModbusDriverRefusals::noLink()
{
    LogRecorder log;
    ModbusDriver driver{QString(), nullptr, nullptr};
    QCOMPARE(log.take(), QStringList());
    MiniatureHost host(&driver);
    const Got got = host.read(readOf("4x1", 4));
    QCOMPARE(got.answers, 1);
    COMPARE_STATUS(got.status, NotConnected);
    QVERIFY(got.data.isEmpty());
    COMPARE_STATUS(host.write(writeOf("4x1", hex("1234"))).status, NotConnected);
}

void TestModbusDriverRefusals::stoppedWhileWaiting_data()
{
    QTest::addColumn<Transport>("transport");
    QTest::addColumn<int>("after");
    QTest::newRow("TCP, before the wait") << Transport::Tcp << 0;
    QTest::newRow("RTU, before the wait") << Transport::Rtu << 0;
    QTest::newRow("TCP, in the wait") << Transport::Tcp << 100;
    QTest::newRow("RTU, in the wait") << Transport::Rtu << 100;
}

void TestModbusDriverRefusals::stoppedWhileWaiting()
{
    QFETCH(Transport, transport);
    QFETCH(int, after);
    ModbusBench bench(transport);
    QVERIFY(bench.connectLink());
    bench.setResponseTimeout(60000);
    bench.setRetries(5);
    // Set from another thread, as a host does: the driver's own is waiting.
    bench.setPaced(after == 0);
    bench.device.setBehaviour([&bench, after](const QByteArray&) {
        QThread::msleep(ulong(after));
        bench.driver->stop_flag = 1;
        return QList<DeviceStep>();
    });
    QElapsedTimer waited;
    waited.start();
    const Got got = bench.host->read(readOf("4x1", 4));
    QVERIFY(waited.elapsed() < 55000);
    QCOMPARE(got.answers, 1);
    COMPARE_STATUS(got.status, Stopped);
    QCOMPARE(bench.device.requests().size(), 1);

    bench.driver->stop_flag = 0;
    bench.setResponseTimeout(200);
    bench.answerWith(hex(good_pdu));
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, Ok);
}

/// A bit is not written once the host wants to stop.
void TestModbusDriverRefusals::stoppedBeforeTheSecondExchange()
{
    ModbusBench bench(Transport::Tcp);
    QVERIFY(bench.connectLink());
    bench.device.setBehaviour([&bench](const QByteArray& request) {
        bench.driver->stop_flag = 1;
        return QList<DeviceStep>{{bench.frame(request, hex("03020000")), 0, false}};
    });
    // Whether the answer or the flag is seen first, the register stays as it is.
    COMPARE_STATUS(bench.host->write(writeOf("4x1.3", hex("01"))).status, Stopped);
    QCOMPARE(bench.device.requests().size(), 1);
}

void TestModbusDriverRefusals::transparent_data()
{
    addTransports();
}

void TestModbusDriverRefusals::transparent()
{
    QFETCH(Transport, transport);
    ModbusBench bench(transport);
    QVERIFY(bench.connectLink());
    QVERIFY(bench.driver->IsTransparentModeSupported());
    bench.answerWith(hex("0304AABBCCDD"));
    QSignalSpy answers(bench.driver.get(), SIGNAL(SigTransparentResponse(QByteArray, int)));
    QVERIFY(answers.isValid());
    const QByteArray request = transport == Transport::Rtu ? rtuFrame(1, hex("0300000002"))
                                                           : hex("123400000006010300000002");
    bench.driver->RunTransparentRequest(request);
    QCOMPARE(answers.size(), 1);
    QCOMPARE(answers.first().at(1).toInt(), 0);
    QCOMPARE(answers.first().at(0).toByteArray().toHex(),
             bench.frame(request, hex("0304AABBCCDD")).toHex());

    bench.setPaced(false); // it counts the driver's own requests only
    bench.answerWith(hex(good_pdu));
    const Got got = bench.host->read(readOf("4x1", 4));
    COMPARE_STATUS(got.status, Ok);
    QCOMPARE(got.data.toHex(), QByteArray("34127856"));
}

QTEST_GUILESS_MAIN(TestModbusDriverRefusals)
#include "tst_modbus_driver_refusals.moc"
