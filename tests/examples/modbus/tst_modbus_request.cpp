#include "examples/modbus/modbus_request.h"
#include "examples/modbus/modbus_status.h"
#include "tests/examples/modbus/modbus_bench.h"

#include <QTest>

using namespace modbus;

namespace {

HostRequest planned(const Asked& asked)
{
    return {!asked.data.isEmpty(), asked.address, asked.field1, asked.data_length, asked.data,
            asked.station,         asked.extra1,  asked.extra2};
}

Asked with(Asked asked, int Asked::*member, int value)
{
    asked.*member = value;
    return asked;
}

QByteArray bytes(int count)
{
    return QByteArray(count, '\1');
}

} // namespace

class TestModbusRequest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void plans_data();
    void plans();
    void refuses_data();
    void refuses();
    void writeOfNothing();
    void stations_data();
    void stations();
    void hostBytesOfAnswers_data();
    void hostBytesOfAnswers();
};

void TestModbusRequest::plans_data()
{
    QTest::addColumn<Asked>("asked");
    QTest::addColumn<QByteArray>("pdu");
    const auto row = [](const char* name, const Asked& asked, const char* pdu) {
        QTest::newRow(name) << asked << hex(pdu);
    };
    const QByteArray word = hex("3412");
    row("reads coils", readOf("0x17", 3), "0100100003");
    row("reads discrete inputs", readOf("1x17", 3), "0200100003");
    row("reads input registers", readOf("3x17", 6), "0400100003");
    row("reads holding registers", readOf("4x17", 6), "0300100003");
    row("reads a bit of a register", readOf("4x17.3", 1), "0300100001");
    row("reads a 32-bit value", with(readOf("4x17", 4), &Asked::extra1, 4), "0300100002");
    row("reads most coils", readOf("0x1", 2000), "01000007D0");
    row("reads most registers", readOf("3x1", 250), "040000007D");
    row("reads up to the end", readOf("4x65532", 10), "03FFFB0005");
    row("writes one coil", writeOf("0x17", hex("01")), "050010FF00");
    row("writes a coil off", writeOf("0x17", hex("00")), "0500100000");
    row("any byte but 0 is on", writeOf("0x17", hex("80")), "050010FF00");
    row("writes coils", writeOf("0x17", hex("0100010001")), "0F001000050115");
    row("writes one register", writeOf("4x17", word), "0600101234");
    row("writes registers", writeOf("4x17", hex("34127856")), "10001000020412345678");
    row("always 15", with(writeOf("0x17", hex("01")), &Asked::field1, 1), "0F001000010101");
    row("always 16", with(writeOf("4x17", word), &Asked::field1, 1), "1000100001021234");
    row("field1 means nothing to reads", with(readOf("4x17", 2), &Asked::field1, 1), "0300100001");
    row("writes a 32-bit value",
        with(with(writeOf("4x17", hex("78563412")), &Asked::extra1, 4), &Asked::extra2, 1),
        "10001000020456781234");
    row("the order of one register", with(writeOf("4x17", word), &Asked::extra2, 3), "0600103412");
    row("the order means nothing to coils", with(readOf("0x17", 3), &Asked::extra2, 3),
        "0100100003");
}

void TestModbusRequest::plans()
{
    QFETCH(Asked, asked);
    QFETCH(QByteArray, pdu);
    Request request;
    COMPARE_STATUS(planRequest(planned(asked), Transport::Rtu, &request), Ok);
    QCOMPARE(buildPdu(request.pdu).toHex(), pdu.toHex());
    QCOMPARE(request.station, 1);
    QVERIFY(!request.is_broadcast);
}

void TestModbusRequest::refuses_data()
{
    QTest::addColumn<Asked>("asked");
    QTest::addColumn<int>("status");
    const auto row = [](const char* name, const Asked& asked, int status) {
        QTest::newRow(name) << asked << status;
    };
    row("bad address", readOf("5x17", 2), BadAddress);
    row("write to a bit is two requests", writeOf("4x17.3", bytes(1)), BadAddress);
    row("write to bit 0", writeOf("4x17.0", bytes(1)), BadAddress);
    row("write to discrete inputs", writeOf("1x17", bytes(1)), ReadOnlyArea);
    row("write to input registers", writeOf("3x17", bytes(2)), ReadOnlyArea);
    row("read of nothing", readOf("4x17", 0), BadLength);
    row("read of less than nothing", readOf("0x17", -1), BadLength);
    row("lowest length", readOf("4x17", -2147483647 - 1), BadLength);
    row("half a register", readOf("4x17", 3), BadLength);
    row("half a register to write", writeOf("4x17", bytes(3)), BadLength);
    row("half a 32-bit value", with(readOf("4x17", 6), &Asked::extra1, 4), BadLength);
    row("half a 32-bit value to write", with(writeOf("4x17", bytes(6)), &Asked::extra1, 4),
        BadLength);
    row("two bytes for a bit", readOf("4x17.3", 2), BadLength);
    row("no byte for a bit", readOf("4x17.3", 0), BadLength);
    row("too many coils", readOf("0x1", 2001), TooLarge);
    row("too many inputs", readOf("1x1", 2001), TooLarge);
    row("too many registers", readOf("4x1", 252), TooLarge);
    row("too many input registers", readOf("3x1", 252), TooLarge);
    row("largest length", readOf("0x1", 2147483647), TooLarge);
    row("too many coils to write", writeOf("0x1", bytes(1969)), TooLarge);
    row("too many registers to write", writeOf("4x1", bytes(248)), TooLarge);
    row("beyond the last coil", readOf("0x65536", 2), BeyondEnd);
    row("beyond the last register", readOf("4x65533", 10), BeyondEnd);
    row("write beyond the last register", writeOf("4x65536", bytes(4)), BeyondEnd);
    row("element of 1 byte", with(readOf("4x17", 4), &Asked::extra1, 1), BadElementSize);
    row("element of 8 bytes", with(readOf("4x17", 8), &Asked::extra1, 8), BadElementSize);
    row("negative element", with(readOf("4x17", 4), &Asked::extra1, -4), BadElementSize);
    row("order 4", with(readOf("4x17", 4), &Asked::extra2, 4), BadOrder);
    row("negative order", with(readOf("4x17", 4), &Asked::extra2, -1), BadOrder);
    row("order of coils", with(readOf("0x17", 4), &Asked::extra2, 4), BadOrder);
    row("field1 2", with(writeOf("4x17", bytes(2)), &Asked::field1, 2), BadFunctionChoice);
    row("negative field1", with(writeOf("4x17", bytes(2)), &Asked::field1, -1), BadFunctionChoice);
}

void TestModbusRequest::refuses()
{
    QFETCH(Asked, asked);
    QFETCH(int, status);
    for (const Transport transport : {Transport::Rtu, Transport::Tcp}) {
        Request request;
        request.station = 77;
        COMPARE_STATUS(planRequest(planned(asked), transport, &request), status);
        QCOMPARE(request.station, 77);
    }
}

void TestModbusRequest::writeOfNothing()
{
    HostRequest asked = planned(writeOf("4x17", QByteArray()));
    asked.write = true;
    asked.station = 1;
    Request request;
    COMPARE_STATUS(planRequest(asked, Transport::Rtu, &request), BadLength);
}

void TestModbusRequest::stations_data()
{
    QTest::addColumn<Transport>("transport");
    QTest::addColumn<int>("station");
    QTest::addColumn<int>("read");
    QTest::addColumn<int>("write");
    QTest::addColumn<bool>("is_broadcast");
    const auto row = [](const char* name, Transport transport, int station, int read, int write,
                        bool is_broadcast) {
        QTest::newRow(name) << transport << station << read << write << is_broadcast;
    };
    row("RTU -1", Transport::Rtu, -1, BadStation, BadStation, false);
    row("RTU 0 is a broadcast", Transport::Rtu, 0, BroadcastRead, Ok, true);
    row("RTU 1", Transport::Rtu, 1, Ok, Ok, false);
    row("RTU 247", Transport::Rtu, 247, Ok, Ok, false);
    row("RTU 248", Transport::Rtu, 248, BadStation, BadStation, false);
    row("TCP -1", Transport::Tcp, -1, BadStation, BadStation, false);
    row("TCP 0 is the device itself", Transport::Tcp, 0, Ok, Ok, false);
    row("TCP 248", Transport::Tcp, 248, Ok, Ok, false);
    row("TCP 255 is the device itself", Transport::Tcp, 255, Ok, Ok, false);
    row("TCP 256", Transport::Tcp, 256, BadStation, BadStation, false);
}

void TestModbusRequest::stations()
{
    QFETCH(Transport, transport);
    QFETCH(int, station);
    Request request;
    HostRequest asked = planned(readOf("4x17", 2));
    asked.station = station;
    QTEST(planRequest(asked, transport, &request), "read");
    asked = planned(writeOf("4x17", bytes(2)));
    asked.station = station;
    QTEST(planRequest(asked, transport, &request), "write");
    QTEST(request.is_broadcast, "is_broadcast");
}

void TestModbusRequest::hostBytesOfAnswers_data()
{
    QTest::addColumn<Asked>("asked");
    QTest::addColumn<QByteArray>("pdu");
    QTest::addColumn<QByteArray>("host");
    const auto row = [](const char* name, const Asked& asked, const char* pdu, const char* host) {
        QTest::newRow(name) << asked << hex(pdu) << hex(host);
    };
    row("coils", readOf("0x1", 10), "0102CD01", "01000101000001010100");
    row("registers", readOf("4x1", 4), "030412345678", "34127856");
    row("32 bits", with(readOf("4x1", 4), &Asked::extra1, 4), "030412345678", "78563412");
    row("32 bits, words swapped",
        with(with(readOf("4x1", 4), &Asked::extra1, 4), &Asked::extra2, 1), "030456781234",
        "78563412");
    row("bit 0", readOf("4x1.0", 1), "03020001", "01");
    row("bit 15", readOf("4x1.15", 1), "03028000", "01");
    row("bit that is off", readOf("3x1.3", 1), "0402FFF7", "00");
}

void TestModbusRequest::hostBytesOfAnswers()
{
    QFETCH(Asked, asked);
    QFETCH(QByteArray, pdu);
    QFETCH(QByteArray, host);
    Request request;
    COMPARE_STATUS(planRequest(planned(asked), Transport::Tcp, &request), Ok);
    COMPARE_STATUS(checkAnswerPdu(request.pdu, pdu), Ok);
    QCOMPARE(hostBytes(request, pdu).toHex(), host.toHex());
}

QTEST_GUILESS_MAIN(TestModbusRequest)
#include "tst_modbus_request.moc"
