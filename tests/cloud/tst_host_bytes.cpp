#include "cloud/host_bytes.h"
#include "compat/twos_complement.h"

#include <QTest>

#include <cmath>

class TestHostBytes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fromNumber_data();
    void fromNumber();
    void toNumber_data();
    void toNumber();
    void floats_data();
    void floats();
    void twosComplement();
};

void TestHostBytes::fromNumber_data()
{
    QTest::addColumn<uint>("number");
    QTest::addColumn<int>("size");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("one byte") << 0x12345678U << 1 << QByteArray::fromHex("78");
    QTest::newRow("two bytes, low first") << 0x12345678U << 2 << QByteArray::fromHex("7856");
    QTest::newRow("four bytes, low first") << 0x12345678U << 4 << QByteArray::fromHex("78563412");
    QTest::newRow("high bytes are zero") << 0xFFU << 4 << QByteArray::fromHex("ff000000");
}

void TestHostBytes::fromNumber()
{
    QFETCH(uint, number);
    QFETCH(int, size);
    QTEST(host_bytes::fromNumber(number, size), "expected");
}

void TestHostBytes::toNumber_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("size");
    QTest::addColumn<uint>("expected");
    QTest::newRow("one byte") << QByteArray::fromHex("80") << 1 << 0x80U;
    QTest::newRow("two bytes") << QByteArray::fromHex("3412") << 2 << 0x1234U;
    QTest::newRow("four bytes") << QByteArray::fromHex("ffffffff") << 4 << 0xFFFFFFFFU;
    QTest::newRow("extra bytes are ignored") << QByteArray::fromHex("341256") << 2 << 0x1234U;
    QTest::newRow("none of one is zero") << QByteArray() << 1 << 0U;
    QTest::newRow("one of two is zero as a whole") << QByteArray::fromHex("05") << 2 << 0U;
    QTest::newRow("three of four is zero as a whole") << QByteArray::fromHex("010203") << 4 << 0U;
}

void TestHostBytes::toNumber()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, size);
    QTEST(host_bytes::toNumber(bytes, size), "expected");
}

void TestHostBytes::floats_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<float>("number");
    QTest::addColumn<QByteArray>("written");
    const QByteArray one_and_half = QByteArray::fromHex("0000c03f");
    QTest::newRow("1.5") << one_and_half << 1.5F << one_and_half;
    QTest::newRow("-12.625") << QByteArray::fromHex("00004ac1") << -12.625F
                             << QByteArray::fromHex("00004ac1");
    QTest::newRow("only the first four count")
        << QByteArray::fromHex("0000c03fff") << 1.5F << one_and_half;
    QTest::newRow("missing high bytes are zero")
        << QByteArray::fromHex("0100") << std::ldexp(1.0F, -149) << QByteArray::fromHex("01000000");
    QTest::newRow("no byte is zero") << QByteArray() << 0.0F << QByteArray::fromHex("00000000");
}

void TestHostBytes::floats()
{
    QFETCH(QByteArray, bytes);
    QFETCH(float, number);
    QFETCH(QByteArray, written);
    QVERIFY(host_bytes::toFloat(bytes) == number);
    QCOMPARE(host_bytes::fromFloat(number), written);
}

void TestHostBytes::twosComplement()
{
    QCOMPARE(twos_complement::signed16(0x7FFF), qint16(32767));
    QCOMPARE(twos_complement::signed16(0x8000), qint16(-32768));
    QCOMPARE(twos_complement::signed16(0xFFFE), qint16(-2));
    QCOMPARE(twos_complement::signed16(0x12340001), qint16(1));
    QCOMPARE(twos_complement::signed32(0x80000000), std::numeric_limits<qint32>::min());
    QCOMPARE(twos_complement::signed32(0xFFFFFFFF), -1);
}

QTEST_APPLESS_MAIN(TestHostBytes)
#include "tst_host_bytes.moc"
