#include "examples/modbus/modbus_value.h"
#include "tests/examples/modbus/modbus_bench.h"

#include <QTest>

#include <cstring>

namespace {

QByteArray floatBytes(float value)
{
    QByteArray bytes(int(sizeof(value)), '\0');
    std::memcpy(bytes.data(), &value, sizeof(value));
    return bytes;
}

} // namespace

class TestModbusValue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void elementSizesAndOrders();
    void orders_data();
    void orders();
    void bits_data();
    void bits();
    void anyByteButZeroIsOn();
};

void TestModbusValue::elementSizesAndOrders()
{
    QList<int> sizes;
    QList<int> orders;
    for (int number = -5; number < 10; ++number) {
        if (modbus::isElementSize(number))
            sizes.append(number);
        if (modbus::isOrder(number))
            orders.append(number);
    }
    QCOMPARE(sizes, (QList<int>{0, 2, 4}));
    QCOMPARE(orders, (QList<int>{0, 1, 2, 3}));
}

void TestModbusValue::orders_data()
{
    QTest::addColumn<QByteArray>("wire");
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("order");
    QTest::addColumn<QByteArray>("host");
    const auto row = [](const char* name, const char* wire, int size, int order, const char* host) {
        QTest::newRow(name) << hex(wire) << size << order << hex(host);
    };
    row("16 bits, ABCD", "1234", 2, 0, "3412");
    row("16 bits, CDAB", "1234", 2, 1, "3412");
    row("16 bits, BADC", "3412", 2, 2, "3412");
    row("16 bits, DCBA", "3412", 2, 3, "3412");
    row("0x12345678, ABCD", "12345678", 4, 0, "78563412");
    row("0x12345678, CDAB", "56781234", 4, 1, "78563412");
    row("0x12345678, BADC", "34127856", 4, 2, "78563412");
    row("0x12345678, DCBA", "78563412", 4, 3, "78563412");
    row("several of 16 bits", "123456789ABC", 2, 0, "34127856BC9A");
    row("several of 32 bits", "1122334455667788", 4, 1, "2211443366558877");
    row("nothing", "", 4, 2, "");
    const auto number = [](const char* name, const char* wire, int order, float value) {
        QTest::newRow(name) << hex(wire) << 4 << order << floatBytes(value);
    };
    number("1.5, ABCD", "3FC00000", 0, 1.5F);
    number("1.5, CDAB", "00003FC0", 1, 1.5F);
    number("1.5, BADC", "C03F0000", 2, 1.5F);
    number("1.5, DCBA", "0000C03F", 3, 1.5F);
    number("-123.456, ABCD", "C2F6E979", 0, -123.456F);
}

void TestModbusValue::orders()
{
    QFETCH(QByteArray, wire);
    QFETCH(int, size);
    QFETCH(int, order);
    QFETCH(QByteArray, host);
    QCOMPARE(modbus::reordered(wire, size, order).toHex(), host.toHex());
    QCOMPARE(modbus::reordered(host, size, order).toHex(), wire.toHex());
}

void TestModbusValue::bits_data()
{
    QTest::addColumn<QByteArray>("packed");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("on") << hex("01") << hex("01");
    QTest::newRow("off") << hex("00") << hex("00");
    QTest::newRow("the first is the least significant") << hex("05") << hex("010001");
    QTest::newRow("a whole byte") << hex("CD") << hex("0100010100000101");
    QTest::newRow("ten") << hex("CD01") << hex("01000101000001010100");
    QTest::newRow("none") << QByteArray() << QByteArray();
}

void TestModbusValue::bits()
{
    QFETCH(QByteArray, packed);
    QFETCH(QByteArray, bytes);
    QCOMPARE(modbus::packedBits(bytes).toHex(), packed.toHex());
    QCOMPARE(modbus::unpackedBits(packed, bytes.size()).toHex(), bytes.toHex());
}

void TestModbusValue::anyByteButZeroIsOn()
{
    QCOMPARE(modbus::packedBits(hex("0002FF0080")).toHex(), QByteArray("16"));
}

QTEST_GUILESS_MAIN(TestModbusValue)
#include "tst_modbus_value.moc"
