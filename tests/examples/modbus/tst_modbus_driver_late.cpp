#include "examples/modbus/modbus_rtu.h"
#include "examples/modbus/modbus_status.h"
#include "examples/modbus/modbus_tcp.h"
#include "tests/examples/modbus/modbus_bench.h"
#include "tests/support/kernel_input.h"

#include <QElapsedTimer>
#include <QTest>

using namespace modbus;

// Answers that come when nobody waits for them any more: never as the answer to a later request.

namespace {

const int short_timeout = 200; // ms

const char* const late_pdu = "030411112222";
const char* const good_pdu = "030412345678";
const char* const good_bytes = "34127856";

/// Until what the device has sent is there, and has been read by nobody.
bool waitForInput(const ModbusBench& bench)
{
    return waitInKernel(bench.transport == Transport::Rtu ? &bench.serial : nullptr,
                        &bench.ethernet, 1);
}

} // namespace

class TestModbusDriverLate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answerToAnEarlierRequest();
    void answersToThreeEarlierRequests();
    void lateAnswerInParts_data();
    void lateAnswerInParts();
    void lateAnswerThatHoldsTheNext();
    void lateAnswerBetweenRequests_data();
    void lateAnswerBetweenRequests();
    void staleBytes_data();
    void staleBytes();
    void lateExceptionOnTheLine();
    void lateAnswerShortensTheSilence_data();
    void lateAnswerShortensTheSilence();
    void oneOfTwoLateAnswersDoesNot();
    void lateAnswerToAWrite_data();
    void lateAnswerToAWrite();
};

/// Over TCP the device may well send the late answer in front of the good one.
void TestModbusDriverLate::answerToAnEarlierRequest()
{
    ModbusBench bench(Transport::Tcp);
    QVERIFY(bench.connectLink());
    QByteArray held;
    bench.answerBytes([&](const QByteArray& request) {
        const QByteArray answer = bench.frame(request, hex(held.isEmpty() ? late_pdu : good_pdu));
        const QByteArray sent = held.isEmpty() ? QByteArray() : held + answer;
        held = answer;
        return sent;
    });
    bench.setResponseTimeout(short_timeout);
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, NoAnswerInTime);
    bench.setResponseTimeout(5000);
    const Got got = bench.host->read(readOf("4x1", 4));
    COMPARE_STATUS(got.status, Ok);
    QCOMPARE(got.data.toHex(), QByteArray(good_bytes));
}

void TestModbusDriverLate::answersToThreeEarlierRequests()
{
    ModbusBench bench(Transport::Tcp);
    QVERIFY(bench.connectLink());
    QByteArray held;
    int requests = 0;
    bench.answerBytes([&](const QByteArray& request) {
        held += bench.frame(request, hex(++requests < 4 ? late_pdu : good_pdu));
        return requests < 4 ? QByteArray() : held;
    });
    bench.setResponseTimeout(20);
    bench.setRetries(2);
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, NoAnswerInTime);
    bench.setResponseTimeout(5000);
    const Got got = bench.host->read(readOf("4x1", 4));
    COMPARE_STATUS(got.status, Ok);
    QCOMPARE(got.data.toHex(), QByteArray(good_bytes));
    QCOMPARE(requests, 4);
}

void TestModbusDriverLate::lateAnswerInParts_data()
{
    QTest::addColumn<int>("first_part");
    for (int size = 1; size < 13; ++size)
        QTest::addRow("%d bytes before the request", size) << size;
}

/// Part of the late answer is there before the next request, the rest comes after it.
void TestModbusDriverLate::lateAnswerInParts()
{
    QFETCH(int, first_part);
    ModbusBench bench(Transport::Tcp);
    QVERIFY(bench.connectLink());
    QByteArray late;
    bench.answerBytes([&](const QByteArray& request) {
        if (!late.isEmpty())
            return late.mid(first_part) + bench.frame(request, hex(good_pdu));
        late = bench.frame(request, hex(late_pdu));
        return QByteArray();
    });
    bench.setResponseTimeout(20);
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, NoAnswerInTime);
    bench.device.send(late.left(first_part));
    bench.setResponseTimeout(5000);
    const Got got = bench.host->read(readOf("4x1", 4));
    COMPARE_STATUS(got.status, Ok);
    QCOMPARE(got.data.toHex(), QByteArray(good_bytes));
}

/// Its registers hold what an answer to the next request would be, and that stands at the front of
/// what comes after the next request. The beginning was there before, and says what it is.
void TestModbusDriverLate::lateAnswerThatHoldsTheNext()
{
    ModbusBench bench(Transport::Tcp);
    QVERIFY(bench.connectLink());
    const QByteArray held = tcpFrame(2, 1, hex(late_pdu));
    const QByteArray late = tcpFrame(1, 1, "\3\x0E" + held + "x");
    const int first_part = late.indexOf(held);
    bench.setResponseTimeout(20);
    COMPARE_STATUS(bench.host->read(readOf("4x1", 14)).status, NoAnswerInTime);
    bench.device.send(late.left(first_part));
    bench.answerBytes([&](const QByteArray& request) {
        return late.mid(first_part) + bench.frame(request, hex(good_pdu));
    });
    bench.setResponseTimeout(5000);
    const Got got = bench.host->read(readOf("4x1", 4));
    COMPARE_STATUS(got.status, Ok);
    QCOMPARE(got.data.toHex(), QByteArray(good_bytes));
}

void TestModbusDriverLate::lateAnswerBetweenRequests_data()
{
    QTest::addColumn<Transport>("transport");
    QTest::addColumn<bool>("event_loop_runs");
    QTest::newRow("RTU") << Transport::Rtu << false;
    QTest::newRow("RTU, the event loop runs") << Transport::Rtu << true;
    QTest::newRow("TCP") << Transport::Tcp << false;
    QTest::newRow("TCP, the event loop runs") << Transport::Tcp << true;
}

void TestModbusDriverLate::lateAnswerBetweenRequests()
{
    QFETCH(Transport, transport);
    QFETCH(bool, event_loop_runs);
    ModbusBench bench(transport);
    QVERIFY(bench.connectLink());
    bench.setResponseTimeout(short_timeout);
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, NoAnswerInTime);
    bench.device.send(bench.frame(bench.device.requests().first(), hex(late_pdu)));
    QVERIFY(waitForInput(bench));
    if (event_loop_runs)
        QTest::qWait(20);
    bench.answerWith(hex(good_pdu));
    const Got got = bench.host->read(readOf("4x1", 4));
    COMPARE_STATUS(got.status, Ok);
    QCOMPARE(got.data.toHex(), QByteArray(good_bytes));
}

void TestModbusDriverLate::staleBytes_data()
{
    QTest::addColumn<Transport>("transport");
    QTest::addColumn<QByteArray>("stale");
    QTest::newRow("RTU, noise") << Transport::Rtu << QByteArray(100, '\x55');
    QTest::newRow("RTU, an answer") << Transport::Rtu << rtuFrame(1, hex(late_pdu));
    QTest::newRow("RTU, part of an answer") << Transport::Rtu << rtuFrame(1, hex(late_pdu)).left(5);
    QTest::newRow("TCP, noise") << Transport::Tcp << QByteArray(100, '\x55');
    QTest::newRow("TCP, answer with the next number")
        << Transport::Tcp << tcpFrame(2, 1, hex(late_pdu));
    QTest::newRow("TCP, part of a header") << Transport::Tcp << hex("00020000");
    QTest::newRow("TCP, header that promises much") << Transport::Tcp << hex("0001000000800103");
}

/// Bytes that the device sends between two requests, neither of which lacks its answer.
void TestModbusDriverLate::staleBytes()
{
    QFETCH(Transport, transport);
    QFETCH(QByteArray, stale);
    ModbusBench bench(transport);
    QVERIFY(bench.connectLink());
    bench.answerWith(hex(good_pdu));
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, Ok);
    bench.device.send(stale);
    QVERIFY(waitForInput(bench));
    const Got got = bench.host->read(readOf("4x1", 4));
    COMPARE_STATUS(got.status, Ok);
    QCOMPARE(got.data.toHex(), QByteArray(good_bytes));
}

void TestModbusDriverLate::lateExceptionOnTheLine()
{
    ModbusBench bench(Transport::Rtu);
    QVERIFY(bench.connectLink());
    bench.setResponseTimeout(short_timeout);
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, NoAnswerInTime);
    bench.device.send(rtuFrame(1, hex("8306")));
    bench.answerWith(hex(good_pdu));
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, Ok);
}

/// Once the only missing answer has come, there is nothing left to wait for.
void TestModbusDriverLate::lateAnswerShortensTheSilence_data()
{
    QTest::addColumn<int>("answered");
    QTest::addColumn<int>("times");
    QTest::newRow("once") << 0 << 1;
    QTest::newRow("once, after one in time") << 1 << 1;
    QTest::newRow("twice, one after the other") << 0 << 2;
}

void TestModbusDriverLate::lateAnswerShortensTheSilence()
{
    QFETCH(int, answered);
    QFETCH(int, times);
    ModbusBench bench(Transport::Rtu);
    QVERIFY(bench.connectLink());
    bench.answerWith(hex(good_pdu));
    for (int i = 0; i < answered; ++i)
        COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, Ok);
    bench.device.setBehaviour(nullptr);
    bench.setResponseTimeout(20);
    for (int i = 0; i < times; ++i) {
        COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, NoAnswerInTime);
        bench.device.send(rtuFrame(1, hex(late_pdu)));
        QVERIFY(waitForInput(bench));
    }
    bench.setResponseTimeout(60000); // so long it would be silent otherwise
    bench.answerWith(hex(good_pdu));
    QElapsedTimer waited;
    waited.start();
    const Got got = bench.host->read(readOf("4x1", 4));
    COMPARE_STATUS(got.status, Ok);
    QCOMPARE(got.data.toHex(), QByteArray(good_bytes));
    QVERIFY(waited.elapsed() < 55000);
}

/// The other one may come in the middle of the next answer.
void TestModbusDriverLate::oneOfTwoLateAnswersDoesNot()
{
    ModbusBench bench(Transport::Rtu);
    QVERIFY(bench.connectLink());
    bench.setResponseTimeout(20);
    for (int i = 0; i < 2; ++i)
        COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, NoAnswerInTime);
    const int silence = 300;
    bench.setResponseTimeout(silence);
    bench.device.send(rtuFrame(1, hex(late_pdu)));
    QVERIFY(waitForInput(bench));
    bench.answerWith(hex(good_pdu));
    QElapsedTimer waited;
    waited.start();
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, Ok);
    QVERIFY(waited.elapsed() >= silence - 2);
}

void TestModbusDriverLate::lateAnswerToAWrite_data()
{
    QTest::addColumn<Transport>("transport");
    QTest::newRow("RTU") << Transport::Rtu;
    QTest::newRow("TCP") << Transport::Tcp;
}

/// A write's answer repeats its value: that of another write is not taken for it.
void TestModbusDriverLate::lateAnswerToAWrite()
{
    QFETCH(Transport, transport);
    ModbusBench bench(transport);
    QVERIFY(bench.connectLink());
    bench.setResponseTimeout(short_timeout);
    COMPARE_STATUS(bench.host->write(writeOf("4x1", hex("1111"))).status, NoAnswerInTime);
    const QByteArray first = bench.device.requests().first();
    bench.answerBytes([&](const QByteArray& request) {
        return bench.frame(first, hex("0600001111")) + bench.frame(request, hex("0600002222"));
    });
    COMPARE_STATUS(bench.host->write(writeOf("4x1", hex("2222"))).status, Ok);
}

QTEST_GUILESS_MAIN(TestModbusDriverLate)
#include "tst_modbus_driver_late.moc"
