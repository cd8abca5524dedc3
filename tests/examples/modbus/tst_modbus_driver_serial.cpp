#include "examples/modbus/modbus_rtu.h"
#include "examples/modbus/modbus_status.h"
#include "tests/examples/modbus/modbus_bench.h"
#include "tests/support/kernel_input.h"

#include <QElapsedTimer>
#include <QTest>

#include <memory>
#include <optional>
#include <vector>

using namespace modbus;

// What only a serial line has: silences, noise. Times are lower bounds.

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
    void silenceAfterASilentDevice();
    void silenceAfterADamagedAnswer();
    void silenceAfterASilentDeviceOnASlowLine();
    void silenceAfterATransparentRequest();
    void silenceBetweenRequests();
    void silenceAfterStaleBytes();
    void stoppedWhileListening();
    void lostWhileListening();
    void noisyLineIsGivenUp();
    void slowLineGetsItsTime();
};

void TestModbusDriverSerial::serialWinsOverEthernet()
{
    ModbusBench bench(Transport::Rtu); // its driver has an Ethernet link, too
    QVERIFY(bench.connectLink());
    bench.answerWith(hex(good_pdu));
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, Ok);
    QCOMPARE(bench.device.requests().first(), rtuFrame(1, hex("0300000002")));
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

/// They have come since the last look, at what time nobody knows: so the 116 ms begin anew.
void TestModbusDriverSerial::silenceAfterStaleBytes()
{
    ModbusBench bench(Transport::Rtu);
    QVERIFY(bench.connectLink());
    bench.serial.setBaudRate(BAUD300);
    bench.setResponseTimeout(5000);
    bench.device.send("stale");
    QVERIFY(waitInKernel(&bench.serial, &bench.ethernet, 5));
    QTest::qSleep(150); // longer than the silence
    const std::shared_ptr<Arrivals> requests = recordArrivals(&bench);
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, Ok);
    QVERIFY(requests->first() >= 116);
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
