#include "examples/modbus/modbus_status.h"
#include "tests/examples/modbus/modbus_bench.h"

#include <QTest>

using namespace modbus;

// Single bits of registers: a read takes one exchange, a write two.

namespace {

/// A device with one register.
class RegisterDevice
{
public:
    RegisterDevice(ModbusBench& bench, int value)
    {
        word[0] = char(value >> 8);
        word[1] = char(value & 0xFF);
        bench.answerBytes([this, &bench](const QByteArray& request) {
            const QByteArray pdu = pduOf(bench.transport, request);
            if (pdu.at(0) == 3 || pdu.at(0) == 4)
                return bench.frame(request, pdu.left(1) + '\2' + word);
            word = pdu.right(2);
            return bench.frame(request, pdu.left(5));
        });
    }

    int value() const { return numberAt(word, 0); }

    QByteArray word = QByteArray(2, '\0');
};

class StopAtInput : public TrafficListener
{
public:
    explicit StopAtInput(DrvInterface* driver) : driver_(driver) {}

    void hear(const Traffic& traffic) override
    {
        if (traffic.kind == Traffic::taken)
            driver_->stop_flag = 1;
    }

private:
    DrvInterface* driver_;
};

QList<int> functionsOf(const ModbusBench& bench)
{
    QList<int> functions;
    for (const QByteArray& request : bench.device.requests())
        functions.append(pduOf(bench.transport, request).at(0));
    return functions;
}

} // namespace

class TestModbusDriverBits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reads();
    void writes_data();
    void writes();
    void always16();
    void refusedReadEndsTheWrite();
    void refusedWrite();
    void repeatsBothExchanges();
    void stoppedBetweenTheTwo();
    void refusals_data();
    void refusals();
};

void TestModbusDriverBits::reads()
{
    ModbusBench bench(Transport::Tcp);
    QVERIFY(bench.connectLink());
    const int value = 0xA5C3;
    const RegisterDevice device(bench, value);
    for (const char* area : {"3", "4"}) {
        for (int bit = 0; bit < 16; ++bit) {
            const QByteArray address = QByteArray(area) + "x9." + QByteArray::number(bit);
            const Got got = bench.host->read(readOf(address.constData(), 1));
            COMPARE_STATUS(got.status, Ok);
            QCOMPARE(got.data, QByteArray(1, char((value >> bit) & 1)));
        }
    }
}

void TestModbusDriverBits::writes_data()
{
    QTest::addColumn<Transport>("transport");
    QTest::addColumn<int>("before");
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<int>("written");
    QTest::addColumn<int>("after");
    const auto row = [](const char* name, int before, const char* address, int written, int after) {
        QTest::addRow("RTU, %s", name)
            << Transport::Rtu << before << QByteArray(address) << written << after;
        QTest::addRow("TCP, %s", name)
            << Transport::Tcp << before << QByteArray(address) << written << after;
    };
    row("sets bit 0", 0x0000, "4x17.0", 1, 0x0001);
    row("sets bit 3", 0x1200, "4x17.3", 1, 0x1208);
    row("sets bit 8", 0x0000, "4x17.8", 1, 0x0100);
    row("sets bit 15", 0x0001, "4x17.15", 1, 0x8001);
    row("sets what is set", 0xFFFF, "4x17.8", 1, 0xFFFF);
    row("any byte but 0 sets", 0x0000, "4x17.7", 0x80, 0x0080);
    row("clears bit 0", 0xFFFF, "4x17.0", 0, 0xFFFE);
    row("clears bit 15", 0xFFFF, "4x17.15", 0, 0x7FFF);
    row("clears what is clear", 0x1234, "4X17.0", 0, 0x1234);
}

void TestModbusDriverBits::writes()
{
    QFETCH(Transport, transport);
    QFETCH(int, before);
    QFETCH(QByteArray, address);
    QFETCH(int, written);
    ModbusBench bench(transport);
    QVERIFY(bench.connectLink());
    const RegisterDevice device(bench, before);
    const Got got = bench.host->write(writeOf(address.constData(), QByteArray(1, char(written))));
    QCOMPARE(got.answers, 1);
    COMPARE_STATUS(got.status, Ok);
    QCOMPARE(got.data, QByteArray(1, char(written)));
    QTEST(device.value(), "after");
    QCOMPARE(functionsOf(bench), (QList<int>{3, 6}));
}

void TestModbusDriverBits::always16()
{
    ModbusBench bench(Transport::Tcp);
    QVERIFY(bench.connectLink());
    const RegisterDevice device(bench, 0x00F0);
    Asked asked = writeOf("4x17.0", hex("01"));
    asked.field1 = 1;
    COMPARE_STATUS(bench.host->write(asked).status, Ok);
    QCOMPARE(device.value(), 0x00F1);
    QCOMPARE(functionsOf(bench), (QList<int>{3, 16}));
}

void TestModbusDriverBits::refusedReadEndsTheWrite()
{
    ModbusBench bench(Transport::Tcp);
    QVERIFY(bench.connectLink());
    bench.answerWith(hex("8302"));
    COMPARE_STATUS(bench.host->write(writeOf("4x17.3", hex("01"))).status, 0x400B0002);
    QCOMPARE(functionsOf(bench), QList<int>{3});
}

void TestModbusDriverBits::refusedWrite()
{
    ModbusBench bench(Transport::Tcp);
    QVERIFY(bench.connectLink());
    bench.answerBytes([&](const QByteArray& request) {
        const bool reads = pduOf(bench.transport, request).at(0) == 3;
        return bench.frame(request, hex(reads ? "03020000" : "8604"));
    });
    COMPARE_STATUS(bench.host->write(writeOf("4x17.3", hex("01"))).status, 0x400B0004);
    QCOMPARE(functionsOf(bench), (QList<int>{3, 6}));
}

/// What the register holds may have changed meanwhile.
void TestModbusDriverBits::repeatsBothExchanges()
{
    ModbusBench bench(Transport::Tcp);
    QVERIFY(bench.connectLink());
    bench.setRetries(1);
    int requests = 0;
    bench.answerBytes([&](const QByteArray& request) {
        const char* const answers[] = {"03020100", "8606", "03020200", "0600100208"};
        return bench.frame(request, hex(answers[requests++]));
    });
    COMPARE_STATUS(bench.host->write(writeOf("4x17.3", hex("01"))).status, Ok);
    QCOMPARE(functionsOf(bench), (QList<int>{3, 6, 3, 6}));
}

/// The host stops the driver while that takes the first answer, which is good.
void TestModbusDriverBits::stoppedBetweenTheTwo()
{
    ModbusBench bench(Transport::Tcp);
    StopAtInput listener(bench.driver.get());
    bench.driver->setTrafficListener(&listener);
    QVERIFY(bench.connectLink());
    const RegisterDevice device(bench, 0x00F0);
    COMPARE_STATUS(bench.host->write(writeOf("4x17.0", hex("01"))).status, Stopped);
    QCOMPARE(functionsOf(bench), QList<int>{3});
    bench.driver->setTrafficListener(nullptr);
}

void TestModbusDriverBits::refusals_data()
{
    QTest::addColumn<Asked>("asked");
    QTest::addColumn<int>("status");
    QTest::newRow("two bytes") << writeOf("4x17.3", hex("0101")) << int(BadLength);
    QTest::newRow("no byte") << writeOf("4x17.3", QByteArray()) << int(BadLength);
    QTest::newRow("input register") << writeOf("3x17.3", hex("01")) << int(ReadOnlyArea);
    QTest::newRow("bit 16") << writeOf("4x17.16", hex("01")) << int(BadAddress);
    QTest::newRow("bit of a coil") << writeOf("0x17.3", hex("01")) << int(BadAddress);
    const auto row = [](const char* name, int Asked::*member, int value, int status) {
        Asked asked = writeOf("4x17.3", hex("01"));
        asked.*member = value;
        QTest::newRow(name) << asked << status;
    };
    row("broadcast", &Asked::station, 0, BroadcastRead);
    row("station 248", &Asked::station, 248, BadStation);
    row("order 4", &Asked::extra2, 4, BadOrder);
    row("element of 3 bytes", &Asked::extra1, 3, BadElementSize);
    row("field1 2", &Asked::field1, 2, BadFunctionChoice);
}

void TestModbusDriverBits::refusals()
{
    QFETCH(Asked, asked);
    QFETCH(int, status);
    ModbusBench bench(Transport::Rtu);
    QVERIFY(bench.connectLink());
    COMPARE_STATUS(bench.host->write(asked).status, status);
    QVERIFY(bench.device.requests().isEmpty());
}

QTEST_GUILESS_MAIN(TestModbusDriverBits)
#include "tst_modbus_driver_bits.moc"
