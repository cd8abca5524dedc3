#include "examples/modbus/modbus_rtu.h"
#include "examples/modbus/modbus_status.h"
#include "tests/examples/modbus/modbus_bench.h"

#include <QElapsedTimer>
#include <QTest>

#include <memory>
#include <optional>
#include <vector>

using namespace modbus;

// What only a serial line has: broadcasts, silences, noise. Times are lower bounds.

namespace {

const int short_timeout = 300; // ms
const char* const good_pdu = "030412345678";

/// When the device got its requests, in milliseconds. Taken there, since the test's own thread may
/// sleep between two of its lines.
class Arrivals
{
public:
    void record() { times_.push_back(clock_.elapsed()); }
    qint64 first() const { return times_.at(0); }
    qint64 second() const { return times_.at(1); }
    bool isFirst() const { return times_.size() == 1; }

private:
    struct RunningClock : QElapsedTimer
    {
        RunningClock() { start(); }
    };

    RunningClock clock_;
    std::vector<qint64> times_; // the driver waits for the answers, so one thread at a time uses it
};

/// The device answers well, but the first request with \a first_answer, where that is given.
std::shared_ptr<Arrivals> recordArrivals(ModbusBench* bench,
                                         const std::optional<QByteArray>& first_answer = {})
{
    const auto arrivals = std::make_shared<Arrivals>();
    bench->device.setBehaviour([bench, arrivals, first_answer](const QByteArray& request) {
        arrivals->record();
        const bool is_first = arrivals->isFirst() && first_answer;
        const QByteArray answer = is_first ? *first_answer : bench->frame(request, hex(good_pdu));
        return answer.isEmpty() ? QList<DeviceStep>() : QList<DeviceStep>{{answer, 0, false}};
    });
    return arrivals;
}

} // namespace

class TestModbusDriverSerial : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void serialWinsOverEthernet();
    void broadcasts_data();
    void broadcasts();
    void broadcastOnALostLine();
    void broadcastStopped();
    void ethernetHasNoBroadcast();
    void silenceAfterASilentDevice();
    void silenceAfterADamagedAnswer();
    void silenceAfterASilentDeviceOnASlowLine();
    void silenceAfterATransparentRequest();
    void silenceBetweenRequests();
    void stoppedWhileListening();
    void lostWhileListening();
    void noisyLineIsGivenUp();
    void slowLineGetsItsTime();

private:
    static Asked broadcast(const Asked& asked);
};

Asked TestModbusDriverSerial::broadcast(const Asked& asked)
{
    Asked changed = asked;
    changed.station = 0;
    return changed;
}

void TestModbusDriverSerial::serialWinsOverEthernet()
{
    ModbusBench bench(Transport::Rtu); // its driver has an Ethernet link, too
    QVERIFY(bench.connectLink());
    bench.answerWith(hex(good_pdu));
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, Ok);
    QCOMPARE(bench.device.requests().first(), rtuFrame(1, hex("0300000002")));
}

void TestModbusDriverSerial::broadcasts_data()
{
    QTest::addColumn<Asked>("asked");
    QTest::addColumn<QByteArray>("pdu");
    QTest::newRow("coil") << writeOf("0x1", hex("01")) << hex("050000FF00");
    QTest::newRow("register") << writeOf("4x1", hex("3412")) << hex("0600001234");
    QTest::newRow("coils") << writeOf("0x1", hex("0101")) << hex("0F000000020103");
    QTest::newRow("registers") << writeOf("4x1", hex("34127856")) << hex("10000000020412345678");
}

/// Nobody answers, and the devices get time to carry it out.
void TestModbusDriverSerial::broadcasts()
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

void TestModbusDriverSerial::broadcastOnALostLine()
{
    ModbusBench bench(Transport::Rtu);
    QVERIFY(bench.connectLink());
    bench.device.setBehaviour([](const QByteArray&) {
        return QList<DeviceStep>{{QByteArray(), 0, true}};
    });
    COMPARE_STATUS(bench.host->write(broadcast(writeOf("4x1", hex("3412")))).status, LinkLost);
}

void TestModbusDriverSerial::broadcastStopped()
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
void TestModbusDriverSerial::ethernetHasNoBroadcast()
{
    ModbusBench bench(Transport::Tcp);
    QVERIFY(bench.connectLink());
    bench.answerWith(hex("0600001234"));
    COMPARE_STATUS(bench.host->write(broadcast(writeOf("4x1", hex("3412")))).status, Ok);
    bench.setResponseTimeout(short_timeout);
    bench.device.setBehaviour(nullptr);
    COMPARE_STATUS(bench.host->write(broadcast(writeOf("4x1", hex("3412")))).status,
                   NoAnswerInTime);
}

void TestModbusDriverSerial::silenceAfterASilentDevice()
{
    ModbusBench bench(Transport::Rtu);
    QVERIFY(bench.connectLink());
    bench.setResponseTimeout(short_timeout);
    const std::shared_ptr<Arrivals> requests = recordArrivals(&bench, QByteArray());
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, NoAnswerInTime);
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, Ok);
    // The first one's time, and then the silence.
    QVERIFY(requests->second() - requests->first() >= 2 * short_timeout - 2);
}

void TestModbusDriverSerial::silenceAfterADamagedAnswer()
{
    ModbusBench bench(Transport::Rtu);
    QVERIFY(bench.connectLink());
    bench.setResponseTimeout(short_timeout);
    const std::shared_ptr<Arrivals> requests = recordArrivals(&bench, hex("FFFFFFFF"));
    QVERIFY(bench.host->read(readOf("4x1", 4)).status != Ok);
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, Ok);
    QVERIFY(requests->second() - requests->first() >= 2 * short_timeout - 2);
}

/// 3.5 characters at 300 baud are longer than the response time. Before them the first request has
/// that and the time of 17 characters: 10, 566 and 116 ms.
void TestModbusDriverSerial::silenceAfterASilentDeviceOnASlowLine()
{
    ModbusBench bench(Transport::Rtu);
    QVERIFY(bench.connectLink());
    bench.serial.setBaudRate(BAUD300);
    bench.setResponseTimeout(10);
    const std::shared_ptr<Arrivals> requests = recordArrivals(&bench, QByteArray());
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, NoAnswerInTime);
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, Ok);
    QVERIFY(requests->second() - requests->first() >= 690);
}

void TestModbusDriverSerial::silenceAfterATransparentRequest()
{
    ModbusBench bench(Transport::Rtu);
    QVERIFY(bench.connectLink());
    bench.setResponseTimeout(short_timeout);
    recordArrivals(&bench, QByteArray());
    bench.driver->RunTransparentRequest(rtuFrame(1, hex("0300000002")));
    QElapsedTimer silence;
    silence.start();
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, Ok);
    QVERIFY(silence.elapsed() >= short_timeout - 2);
}

/// 3.5 characters at 300 baud are 116 ms.
void TestModbusDriverSerial::silenceBetweenRequests()
{
    ModbusBench bench(Transport::Rtu);
    QVERIFY(bench.connectLink());
    bench.serial.setBaudRate(BAUD300);
    bench.setResponseTimeout(5000);
    const std::shared_ptr<Arrivals> requests = recordArrivals(&bench);
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, Ok);
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, Ok);
    QVERIFY(requests->second() - requests->first() >= 115);
}

void TestModbusDriverSerial::stoppedWhileListening()
{
    ModbusBench bench(Transport::Rtu);
    QVERIFY(bench.connectLink());
    bench.setResponseTimeout(short_timeout);
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, NoAnswerInTime);
    bench.setResponseTimeout(60000);
    std::thread stopping([&bench] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        bench.driver->stop_flag = 1;
    });
    const Got got = bench.host->read(readOf("4x1", 4));
    stopping.join();
    // If the thread was so fast that the request had not begun, there is no answer.
    QVERIFY(got.answers == 0 || got.status == Stopped);
    QCOMPARE(bench.device.requests().size(), 1);
}

void TestModbusDriverSerial::lostWhileListening()
{
    ModbusBench bench(Transport::Rtu);
    QVERIFY(bench.connectLink());
    bench.setResponseTimeout(short_timeout);
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, NoAnswerInTime);
    bench.setResponseTimeout(60000);
    QElapsedTimer waited;
    waited.start();
    std::thread closing([&bench] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        bench.device.hangUp();
    });
    const Got got = bench.host->read(readOf("4x1", 4));
    closing.join();
    QCOMPARE(got.answers, 1);
    COMPARE_STATUS(got.status, NotConnected);
    QVERIFY(waited.elapsed() < 55000);
    QCOMPARE(bench.device.requests().size(), 1);
}

void TestModbusDriverSerial::noisyLineIsGivenUp()
{
    ModbusBench bench(Transport::Rtu);
    QVERIFY(bench.connectLink());
    bench.setResponseTimeout(20);
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, NoAnswerInTime);
    bench.setResponseTimeout(600);
    std::atomic<bool> stop{false};
    std::thread noise([&] {
        while (!stop) {
            bench.device.send(QByteArray(8, '\x55'));
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    });
    const Got got = bench.host->read(readOf("4x1", 4));
    stop = true;
    noise.join();
    COMPARE_STATUS(got.status, LineNotSilent);
    QCOMPARE(bench.device.requests().size(), 1);
    bench.answerWith(hex(good_pdu));
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, Ok);
}

/// The response time is the device's: what the characters take comes on top. At 300 baud the 17 of
/// request and answer take 566 ms.
void TestModbusDriverSerial::slowLineGetsItsTime()
{
    ModbusBench bench(Transport::Rtu);
    QVERIFY(bench.connectLink());
    bench.serial.setBaudRate(BAUD300);
    bench.setResponseTimeout(10);
    QElapsedTimer waited;
    waited.start();
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, NoAnswerInTime);
    QVERIFY(waited.elapsed() >= 566);
}

QTEST_GUILESS_MAIN(TestModbusDriverSerial)
#include "tst_modbus_driver_serial.moc"
