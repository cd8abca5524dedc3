#include "examples/modbus/modbus_rtu.h"
#include "examples/modbus/modbus_status.h"
#include "examples/modbus/modbus_tcp.h"
#include "tests/examples/modbus/modbus_bench.h"

#include <QElapsedTimer>
#include <QTest>

using namespace modbus;

// What a device answers, well or badly, and that the request after it is served right.

namespace {

const int short_timeout = 150; // ms; the device has answered before it begins

const char* const good_pdu = "030412345678";
const char* const good_bytes = "34127856";

using MakeBytes = std::function<QByteArray(const QByteArray& request)>;

/// Makes of a request the answer in bytes; both frame it correctly, with one thing changed.
MakeBytes pduAnswer(Transport transport, const char* pdu)
{
    return [=](const QByteArray& request) { return answerFrame(transport, request, hex(pdu)); };
}

MakeBytes damaged(Transport transport, int at, char byte)
{
    return [=](const QByteArray& request) {
        return answerFrame(transport, request, hex(good_pdu)).replace(at, 1, &byte, 1);
    };
}

void addTransports()
{
    QTest::addColumn<Transport>("transport");
    QTest::newRow("RTU") << Transport::Rtu;
    QTest::newRow("TCP") << Transport::Tcp;
}

} // namespace

Q_DECLARE_METATYPE(MakeBytes)

class TestModbusDriverAnswers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void functions_data();
    void functions();
    void oneByteAtATime_data();
    void oneByteAtATime();
    void waitingLeavesNoErrorOnTheSocket();
    void badAnswers_data();
    void badAnswers();
    void exceptions_data();
    void exceptions();
    void retries_data();
    void retries();
    void goodAnswerAfterRetry_data();
    void goodAnswerAfterRetry();

private:
    /// The device answers a read as it should, and the driver understands it.
    static void servesNextRequest(ModbusBench& bench);
};

void TestModbusDriverAnswers::servesNextRequest(ModbusBench& bench)
{
    bench.setResponseTimeout(bench.transport == Transport::Rtu ? short_timeout : 5000);
    bench.answerWith(hex("0304AABBCCDD"));
    const Got got = bench.host->read(readOf("4x1", 4));
    COMPARE_STATUS(got.status, Ok);
    QCOMPARE(got.data.toHex(), QByteArray("bbaaddcc"));
}

void TestModbusDriverAnswers::functions_data()
{
    QTest::addColumn<Transport>("transport");
    QTest::addColumn<Asked>("asked");
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QByteArray>("data");
    const auto row = [](const char* name, const Asked& asked, const char* request,
                        const char* answer, const char* data) {
        QTest::addRow("RTU, %s", name)
            << Transport::Rtu << asked << hex(request) << hex(answer) << hex(data);
        QTest::addRow("TCP, %s", name)
            << Transport::Tcp << asked << hex(request) << hex(answer) << hex(data);
    };
    row("1 reads coils", readOf("0x20", 10), "010013000A", "0102CD01", "01000101000001010100");
    row("2 reads inputs", readOf("1x20", 3), "0200130003", "020105", "010001");
    row("3 reads registers", readOf("4x17", 4), "0300100002", good_pdu, good_bytes);
    row("4 reads input registers", readOf("3x17", 2), "0400100001", "0402ABCD", "CDAB");
    row("5 writes a coil", writeOf("0x173", hex("01")), "0500ACFF00", "0500ACFF00", "01");
    row("6 writes a register", writeOf("4x2", hex("0300")), "0600010003", "0600010003", "0300");
    row("15 writes coils", writeOf("0x20", hex("01000101000001010100")), "0F0013000A02CD01",
        "0F0013000A", "01000101000001010100");
    row("16 writes registers", writeOf("4x2", hex("0A000201")), "100001000204000A0102",
        "1000010002", "0A000201");
}

void TestModbusDriverAnswers::functions()
{
    QFETCH(Transport, transport);
    QFETCH(Asked, asked);
    QFETCH(QByteArray, request);
    QFETCH(QByteArray, answer);
    ModbusBench bench(transport);
    QVERIFY(bench.connectLink());
    bench.answerWith(answer);
    const Got got = asked.data.isEmpty() ? bench.host->read(asked) : bench.host->write(asked);
    QCOMPARE(got.answers, 1);
    COMPARE_STATUS(got.status, Ok);
    QTEST(got.data, "data");
    QCOMPARE(bench.device.requests().size(), 1);
    const QByteArray frame = bench.device.requests().first();
    QCOMPARE(pduOf(transport, frame).toHex(), request.toHex());
    QCOMPARE(frame.toHex(), transport == Transport::Rtu ? rtuFrame(1, request).toHex()
                                                        : tcpFrame(1, 1, request).toHex());
}

void TestModbusDriverAnswers::oneByteAtATime_data()
{
    addTransports();
}

void TestModbusDriverAnswers::oneByteAtATime()
{
    QFETCH(Transport, transport);
    ModbusBench bench(transport);
    bench.setPaced(false);
    QVERIFY(bench.connectLink());
    bench.device.setBehaviour([&bench](const QByteArray& request) {
        QList<DeviceStep> steps;
        for (const char byte : bench.frame(request, hex(good_pdu)))
            steps.append({QByteArray(1, byte), 3, false});
        return steps;
    });
    const Got got = bench.host->read(readOf("4x1", 4));
    COMPARE_STATUS(got.status, Ok);
    QCOMPARE(got.data.toHex(), QByteArray(good_bytes));
}

// A host may connect anew on every error of its socket.
void TestModbusDriverAnswers::waitingLeavesNoErrorOnTheSocket()
{
    ModbusBench bench(Transport::Tcp);
    bench.setResponseTimeout(50);
    QVERIFY(bench.connectLink());
    bench.device.setBehaviour([](const QByteArray&) { return QList<DeviceStep>(); });
    const QString text = bench.ethernet.errorString();
    int errors = 0;
    connect(&bench.ethernet, &QAbstractSocket::errorOccurred, [&errors] { ++errors; });
    COMPARE_STATUS(bench.host->read(readOf("4x1", 4)).status, NoAnswerInTime);
    QCOMPARE(errors, 0);
    QCOMPARE(bench.ethernet.errorString(), text);
}

void TestModbusDriverAnswers::badAnswers_data()
{
    QTest::addColumn<Transport>("transport");
    QTest::addColumn<MakeBytes>("bytes");
    QTest::addColumn<int>("status");
    const auto row = [](const char* name, Transport transport, const MakeBytes& bytes, int status) {
        const char* kind = transport == Transport::Rtu ? "RTU, " : "TCP, ";
        QTest::addRow("%s%s", kind, name) << transport << bytes << status;
    };
    for (const Transport transport : {Transport::Rtu, Transport::Tcp}) {
        const MakeBytes good = pduAnswer(transport, good_pdu);
        row(
            "silent", transport, [](const QByteArray&) { return QByteArray(); }, NoAnswerInTime);
        row(
            "cut", transport, [=](const QByteArray& r) { return good(r).chopped(1); },
            BadAnswerLength);
        row(
            "cut early", transport, [=](const QByteArray& r) { return good(r).left(3); },
            BadAnswerLength);
        row("too short", transport, pduAnswer(transport, "03021234"), BadAnswerLength);
        row("too long", transport, pduAnswer(transport, "0306123456789ABC"), BadAnswerLength);
        row(
            "bytes after", transport,
            [=](const QByteArray& r) { return good(r).append("\0\0\0", 3); }, Ok);
        row(
            "two in one", transport,
            [=](const QByteArray& r) { return good(r) + answerFrame(transport, r, "\3\4____"); },
            Ok);
        row("other function", transport, pduAnswer(transport, "040412345678"), OtherFunction);
        row("wrong byte count", transport, pduAnswer(transport, "030612345678"), BadAnswerLength);
        row(
            "noise", transport, [](const QByteArray&) { return QByteArray(300, '\xFF'); },
            transport == Transport::Rtu ? BadChecksum : NoAnswerInTime);
        row(
            "after noise", transport,
            [=](const QByteArray& r) { return QByteArray(20, '\xFF') + good(r); }, Ok);
    }
    row(
        "wrong station", Transport::Rtu,
        [](const QByteArray&) { return rtuFrame(2, hex(good_pdu)); }, OtherStation);
    row("damaged checksum", Transport::Rtu, damaged(Transport::Rtu, 8, 'x'), BadChecksum);
    row("damaged value", Transport::Rtu, damaged(Transport::Rtu, 4, 'x'), BadChecksum);
    row("wrong unit", Transport::Tcp, damaged(Transport::Tcp, 6, 'x'), OtherStation);
    row("wrong transaction", Transport::Tcp, damaged(Transport::Tcp, 1, 'x'), NoAnswerInTime);
    row("next transaction", Transport::Tcp, damaged(Transport::Tcp, 1, '\2'), NoAnswerInTime);
    row("wrong protocol", Transport::Tcp, damaged(Transport::Tcp, 2, 'x'), NotModbus);
    row("length too large", Transport::Tcp, damaged(Transport::Tcp, 5, '\x50'), BadAnswerLength);
    row("length too small", Transport::Tcp, damaged(Transport::Tcp, 5, '\3'), BadAnswerLength);
    row("length 0", Transport::Tcp, damaged(Transport::Tcp, 5, '\0'), BadAnswerLength);
}

void TestModbusDriverAnswers::badAnswers()
{
    QFETCH(Transport, transport);
    QFETCH(MakeBytes, bytes);
    QFETCH(int, status);
    ModbusBench bench(transport);
    QVERIFY(bench.connectLink());
    bench.setResponseTimeout(short_timeout);
    bench.answerBytes(bytes);
    QElapsedTimer waited;
    waited.start();
    const Got got = bench.host->read(readOf("4x1", 4));
    QCOMPARE(got.answers, 1);
    COMPARE_STATUS(got.status, status);
    QCOMPARE(got.data.toHex(), status == Ok ? QByteArray(good_bytes) : QByteArray());
    if (status == NoAnswerInTime)
        QVERIFY(waited.elapsed() >= short_timeout);
    servesNextRequest(bench);
}

void TestModbusDriverAnswers::exceptions_data()
{
    QTest::addColumn<Transport>("transport");
    QTest::addColumn<int>("exception");
    for (const int exception : {1, 2, 3, 4, 5, 6, 8, 10, 11, 0x63, 255}) {
        QTest::addRow("RTU, %d", exception) << Transport::Rtu << exception;
        QTest::addRow("TCP, %d", exception) << Transport::Tcp << exception;
    }
}

void TestModbusDriverAnswers::exceptions()
{
    QFETCH(Transport, transport);
    QFETCH(int, exception);
    ModbusBench bench(transport);
    QVERIFY(bench.connectLink());
    bench.answerWith(QByteArray("\x83").append(char(exception)));
    const Got read = bench.host->read(readOf("4x1", 4));
    COMPARE_STATUS(read.status, 0x400B0000 + exception);
    QVERIFY(read.data.isEmpty());
    bench.answerWith(QByteArray("\x86").append(char(exception)));
    const Got write = bench.host->write(writeOf("4x1", hex("1234")));
    COMPARE_STATUS(write.status, 0x400B0000 + exception);
    QCOMPARE(write.data, hex("1234"));
    servesNextRequest(bench);
}

void TestModbusDriverAnswers::retries_data()
{
    addTransports();
}

void TestModbusDriverAnswers::retries()
{
    QFETCH(Transport, transport);
    ModbusBench bench(transport);
    QVERIFY(bench.connectLink());
    bench.setRetries(2);
    bench.answerWith(hex("8306"));
    const Got got = bench.host->read(readOf("4x1", 4));
    QCOMPARE(got.answers, 1);
    COMPARE_STATUS(got.status, 0x400B0006);
    QCOMPARE(bench.device.requests().size(), 3);
}

void TestModbusDriverAnswers::goodAnswerAfterRetry_data()
{
    addTransports();
}

void TestModbusDriverAnswers::goodAnswerAfterRetry()
{
    QFETCH(Transport, transport);
    ModbusBench bench(transport);
    QVERIFY(bench.connectLink());
    bench.setResponseTimeout(short_timeout);
    bench.setRetries(3);
    int requests = 0;
    bench.answerBytes([&](const QByteArray& request) {
        return ++requests < 3 ? QByteArray() : bench.frame(request, hex(good_pdu));
    });
    const Got got = bench.host->read(readOf("4x1", 4));
    QCOMPARE(got.answers, 1);
    COMPARE_STATUS(got.status, Ok);
    QCOMPARE(got.data.toHex(), QByteArray(good_bytes));
    QCOMPARE(bench.device.requests().size(), 3);
}

QTEST_GUILESS_MAIN(TestModbusDriverAnswers)
#include "tst_modbus_driver_answers.moc"
