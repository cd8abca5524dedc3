#include "examples/modbus/modbus_address.h"
#include "examples/modbus/modbus_status.h"

#include <QTest>

class TestModbusAddress : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parses_data();
    void parses();
    void refuses_data();
    void refuses();
};

void TestModbusAddress::parses_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("read_function");
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("bit");
    const auto row = [](const char* name, const char* text, int read_function, int start, int bit) {
        QTest::newRow(name) << QString::fromLatin1(text) << read_function << start << bit;
    };
    row("coil", "0x17", 1, 16, -1);
    row("discrete input", "1x17", 2, 16, -1);
    row("input register", "3x17", 4, 16, -1);
    row("holding register", "4x17", 3, 16, -1);
    row("upper-case x", "4X17", 3, 16, -1);
    row("first number", "0x1", 1, 0, -1);
    row("last number", "4x65536", 3, 65535, -1);
    row("zeros before the number", "4x00017", 3, 16, -1);
    row("many zeros", "4x0000000000000000000017", 3, 16, -1);
    row("bit of a holding register", "4x17.3", 3, 16, 3);
    row("bit of an input register", "3x17.3", 4, 16, 3);
    row("lowest bit", "4x17.0", 3, 16, 0);
    row("highest bit", "4x17.15", 3, 16, 15);
    row("zeros before the bit", "4x17.03", 3, 16, 3);
}

void TestModbusAddress::parses()
{
    QFETCH(QString, text);
    modbus::Address address;
    QCOMPARE(modbus::parseAddress(text, &address), int(modbus::Ok));
    QVERIFY(address.area);
    QTEST(address.area->read, "read_function");
    QTEST(address.start, "start");
    QTEST(address.bit, "bit");
}

void TestModbusAddress::refuses_data()
{
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, const char* text) {
        QTest::newRow(name) << QString::fromUtf8(text);
    };
    row("empty", "");
    row("area alone", "4");
    row("no number", "4x");
    row("number 0", "4x0");
    row("number 65537", "4x65537");
    row("number beyond 32 bits", "4x4294967297");
    row("negative number", "4x-1");
    row("plus sign", "4x+1");
    row("no such area", "2x17");
    row("area in letters", "Dx17");
    row("no x", "417");
    row("other letter", "4y17");
    row("blank before", " 4x17");
    row("blank after", "4x17 ");
    row("blank inside", "4x 17");
    row("hexadecimal number", "4xFF");
    row("the character after the nine", "4x1:");
    row("digits that are not ASCII", "4x١٧");
    QTest::newRow("zero character") << QString::fromLatin1("4x17") + QChar(0);
    row("bit 16", "4x17.16");
    row("negative bit", "4x17.-1");
    row("no bit after the point", "4x17.");
    row("no number before the point", "4x.3");
    row("two points", "4x17.3.1");
    row("bit of a coil", "0x17.3");
    row("bit of a discrete input", "1x17.0");
    row("comma", "4x17,3");
}

void TestModbusAddress::refuses()
{
    QFETCH(QString, text);
    modbus::Address address;
    address.start = 12345;
    QCOMPARE(modbus::parseAddress(text, &address), int(modbus::BadAddress));
    QCOMPARE(address.start, 12345);
    QVERIFY(!address.area);
}

QTEST_GUILESS_MAIN(TestModbusAddress)
#include "tst_modbus_address.moc"
