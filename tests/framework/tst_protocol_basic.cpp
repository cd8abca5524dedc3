#include "framework/protocol_basic.h"
#include "tests/support/log_recorder.h"

#include <QTest>

#include <limits>
#include <random>

namespace {

QByteArray hex(const char* digits)
{
    return QByteArray::fromHex(digits);
}

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

const int smallest = std::numeric_limits<int>::min();

} // namespace

/// Characters, byte order, single numbers and numbers as text.
class TestProtocolBasic : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void byteOrder();
    void digits();
    void digitsInPlace();
    void array2Number_data();
    void array2Number();
    void array2NumberAgreesWithArithmetic();
    void addNumber_data();
    void addNumber();
    void number2Str_data();
    void number2Str();
    void number2StrOfUnsigned();
    void number2StrAgreesWithQt();
    void badFormats();
    void str2Number_data();
    void str2Number();
    void digitBaseTransform_data();
    void digitBaseTransform();
    void bcdBothWays();
};

void TestProtocolBasic::byteOrder()
{
    QCOMPARE(ProtocolBasic::hostByteOrder(), 1);
    const quint16 half = 0x1234;
    const quint32 whole = 0x12345678;
    for (const int order : {0, 2, -1}) {
        QCOMPARE(ProtocolBasic::byteOrderChange(half, order), quint16(0x3412));
        QCOMPARE(ProtocolBasic::byteOrderChange(whole, order), 0x78563412U);
    }
    QCOMPARE(ProtocolBasic::byteOrderChange(half, 1), half);
    QCOMPARE(ProtocolBasic::byteOrderChange(whole, 1), whole);
    for (int value = 0; value <= 0xFFFF; ++value) {
        const quint16 swapped = ProtocolBasic::byteOrderChange(quint16(value), 0);
        QCOMPARE(int(swapped), value % 256 * 256 + value / 256);
    }
}

void TestProtocolBasic::digits()
{
    const QByteArray upper("0123456789ABCDEF");
    for (int c = 0; c < 256; ++c) {
        const int digit = upper.indexOf(QByteArray(1, char(c)).toUpper());
        QCOMPARE(int(ProtocolBasic::ascii2Hex(char(c))), qMax(digit, 0));
    }
    for (int v = 0; v < 256; ++v) {
        const int expected = (v <= 9 ? v + '0' : v + 55) & 0xFF;
        QCOMPARE(int(quint8(ProtocolBasic::hex2Ascii(char(v)))), expected);
    }
    QCOMPARE(ProtocolBasic::hex2Ascii(16), 'G');
}

void TestProtocolBasic::digitsInPlace()
{
    char text[] = {'1', 'a', 'F', 'G', '9'};
    QVERIFY(ProtocolBasic::ascii2Hex(text, 4));
    QCOMPARE(QByteArray(text, 5), QByteArray("\x01\x0A\x0F\x00\x39", 5));
    QVERIFY(ProtocolBasic::hex2Ascii(text, 4));
    QCOMPARE(QByteArray(text, 5), QByteArray("1AF09"));
    QVERIFY(ProtocolBasic::ascii2Hex(text + 4, 1));
    QCOMPARE(QByteArray(text, 5), QByteArray("1AF0\x09"));
    QVERIFY(ProtocolBasic::hex2Ascii(text + 4, 1));
    QCOMPARE(QByteArray(text, 5), QByteArray("1AF09"));
    QVERIFY(!ProtocolBasic::ascii2Hex(nullptr, 4));
    QVERIFY(!ProtocolBasic::hex2Ascii(nullptr, 4));
    for (const int len : {0, -1, smallest}) {
        QVERIFY(!ProtocolBasic::ascii2Hex(text, len));
        QVERIFY(!ProtocolBasic::hex2Ascii(text, len));
    }
    QCOMPARE(QByteArray(text, 5), QByteArray("1AF09"));
}

void TestProtocolBasic::array2Number_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<int>("order");
    QTest::addColumn<int>("ascii");
    QTest::addColumn<int>("expected");
    QTest::newRow("empty") << QByteArray() << 0 << 0 << 0;
    QTest::newRow("empty characters") << QByteArray() << 1 << 1 << 0;
    QTest::newRow("most significant first") << hex("12345678") << 0 << 0 << 0x12345678;
    QTest::newRow("least significant first") << hex("78563412") << 1 << 0 << 0x12345678;
    QTest::newRow("order 2 is least significant first") << hex("3412") << 2 << 0 << 0x1234;
    QTest::newRow("negative") << hex("fffffffe") << 0 << 0 << -2;
    QTest::newRow("six bytes keep their last four") << hex("aabb12345678") << 0 << 0 << 0x12345678;
    QTest::newRow("six bytes keep their first four") << hex("78563412aabb") << 1 << 0 << 0x12345678;
    QTest::newRow("characters") << QByteArray("12ab") << 0 << 1 << 0x12ab;
    QTest::newRow("characters, least significant first") << QByteArray("AB12") << 1 << 1 << 0x12ab;
    QTest::newRow("one character") << QByteArray("F") << 0 << 1 << 0;
    QTest::newRow("three characters: the last is read again as the first byte's")
        << QByteArray("124") << 1 << 1 << (0x12 | 0x40);
    QTest::newRow("five characters, most significant first")
        << QByteArray("12348") << 0 << 1 << (0x1234 | 0x8000);
    QTest::newRow("eleven characters, most significant first: beyond 32 bits")
        << QByteArray("1122334455F") << 0 << 1 << 0x22334455;
}

void TestProtocolBasic::array2Number()
{
    QFETCH(QByteArray, data);
    QFETCH(int, order);
    QFETCH(int, ascii);
    QTEST(ProtocolBasic::array2Number(data, order, ascii), "expected");
}

void TestProtocolBasic::array2NumberAgreesWithArithmetic()
{
    std::mt19937 random(6101);
    for (int i = 0; i < 20000; ++i) {
        const int size = int(random() % 5);
        QByteArray data(size, '\0');
        qint64 most_first = 0;
        qint64 least_first = 0;
        for (int k = 0; k < size; ++k) {
            const qint64 byte = qint64(random() % 256);
            data[k] = char(byte);
            most_first = most_first * 256 + byte;
            least_first += byte * (Q_INT64_C(1) << (8 * k));
        }
        const QByteArray text = data.toHex();
        QCOMPARE(quint32(ProtocolBasic::array2Number(data, 0, 0)), quint32(most_first));
        QCOMPARE(quint32(ProtocolBasic::array2Number(data, 1, 0)), quint32(least_first));
        QCOMPARE(quint32(ProtocolBasic::array2Number(text, 0, 1)), quint32(most_first));
        QCOMPARE(quint32(ProtocolBasic::array2Number(text, 7, 1)), quint32(least_first));
    }
}

void TestProtocolBasic::addNumber_data()
{
    QTest::addColumn<int>("order");
    QTest::addColumn<int>("ascii");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("most significant first") << 0 << 0 << hex("abbb1234bb12345678");
    QTest::newRow("least significant first") << 1 << 0 << hex("abbb3412bb78563412");
    QTest::newRow("order 2 is least significant first") << 2 << 0 << hex("abbb3412bb78563412");
    QTest::newRow("characters") << 0 << 1
                                << QByteArray("AB\xBB\x31\x32\x33\x34\xBB\x31\x32"
                                              "345678");
    QTest::newRow("characters, least significant first")
        << 1 << 1
        << QByteArray("AB\xBB\x33\x34\x31\x32\xBB\x37\x38"
                      "563412");
}

void TestProtocolBasic::addNumber()
{
    QFETCH(int, order);
    QFETCH(int, ascii);
    const quint8 byte = 0xAB;
    const quint16 half = 0x1234;
    QByteArray out;
    ProtocolBasic::addNumber(out, byte, ascii);
    out.append('\xBB');
    ProtocolBasic::addNumber(out, half, order, ascii);
    out.append('\xBB');
    ProtocolBasic::addNumber(out, 0x12345678U, order, ascii);
    QTEST(out, "expected");
}

void TestProtocolBasic::number2Str_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("base");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("a zero without width is no digit") << 0 << 0 << 10 << QByteArray("");
    QTest::newRow("a zero with negative width") << 0 << -4 << 10 << QByteArray("");
    QTest::newRow("a zero in width 3") << 0 << 3 << 10 << QByteArray("000");
    QTest::newRow("hexadecimal") << 255 << 0 << 16 << QByteArray("FF");
    QTest::newRow("minus one in base 16") << -1 << 0 << 16 << QByteArray("FFFFFFFF");
    QTest::newRow("minus one in base 2") << -1 << 32 << 2 << QByteArray(32, '1');
    QTest::newRow("negative") << -42 << 0 << 10 << QByteArray("-42");
    QTest::newRow("zeros before the sign, one short") << -42 << 5 << 10 << QByteArray("0-42");
    QTest::newRow("width 6") << -5 << 6 << 10 << QByteArray("000-5");
    QTest::newRow("sign and digit fill the width") << -5 << 2 << 10 << QByteArray("-5");
    QTest::newRow("sign and digit one short") << -5 << 3 << 10 << QByteArray("-5");
    QTest::newRow("smallest") << smallest << 0 << 10 << QByteArray("-2147483648");
    QTest::newRow("padded") << 7 << 4 << 10 << QByteArray("0007");
    QTest::newRow("not cut") << 12345 << 2 << 10 << QByteArray("12345");
    QTest::newRow("base 36") << 35 << 1 << 36 << QByteArray("Z");
    QTest::newRow("widest") << 1 << 32 << 2 << QByteArray(31, '0') + '1';
}

void TestProtocolBasic::number2Str()
{
    QFETCH(int, value);
    QFETCH(int, width);
    QFETCH(int, base);
    const LogRecorder log;
    const QByteArray text = ProtocolBasic::number2Str(value, width, base);
    QTEST(text, "expected");
    QVERIFY(!text.isNull());
    QVERIFY(log.lines().isEmpty());
}

void TestProtocolBasic::number2StrOfUnsigned()
{
    QCOMPARE(ProtocolBasic::number2Str(4294967295U, 0, 10), QByteArray("4294967295"));
    QCOMPARE(ProtocolBasic::number2Str(5U, 3, 10), QByteArray("005"));
    QCOMPARE(ProtocolBasic::number2Str(0U, 0, 10), QByteArray(""));
}

void TestProtocolBasic::number2StrAgreesWithQt()
{
    std::mt19937 random(6102);
    for (int i = 0; i < 20000; ++i) {
        const quint32 value = quint32(random()) | 1;
        const int base = int(random() % 35) + 2;
        const int width = int(random() % 33);
        const QByteArray digits = QByteArray::number(value, base).toUpper();
        QCOMPARE(ProtocolBasic::number2Str(value, width, base), digits.rightJustified(width, '0'));
        if (base <= 16)
            QCOMPARE(quint32(ProtocolBasic::str2Number(digits, base)), value);
    }
}

void TestProtocolBasic::badFormats()
{
    const QString base_error = latin1("number2Str: Numerical base error!");
    const QString width_error = latin1("number2Str: Filed width error!");
    LogRecorder log;
    for (const int base : {1, 37, 0, -10, smallest}) {
        for (const int value : {7, -7, 0}) {
            QVERIFY(ProtocolBasic::number2Str(value, 99, base).isNull());
            QCOMPARE(log.take(), QStringList{base_error});
        }
        QVERIFY(ProtocolBasic::number2Str(7U, 0, base).isNull());
        QCOMPARE(log.take(), QStringList{base_error});
        QCOMPARE(ProtocolBasic::str2Number("7", base), 0);
        QCOMPARE(log.take(), QStringList{latin1("str2Number: Numerical base error!")});
    }
    for (const int value : {7, -7, 0}) {
        QVERIFY(ProtocolBasic::number2Str(value, 33, 10).isNull());
        QCOMPARE(log.take(), QStringList{width_error});
    }
    QVERIFY(ProtocolBasic::number2Str(7U, 33, 10).isNull());
    QCOMPARE(log.take(), QStringList{width_error});
}

void TestProtocolBasic::str2Number_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("base");
    QTest::addColumn<int>("expected");
    QTest::newRow("empty") << QByteArray() << 10 << 0;
    QTest::newRow("minus in the middle") << QByteArray("1-2") << 10 << -12;
    QTest::newRow("minus twice") << QByteArray("--7") << 10 << -7;
    QTest::newRow("no digit counts as zero") << QByteArray("1G") << 16 << 16;
    QTest::newRow("digits beyond the base") << QByteArray("19") << 2 << 11;
    QTest::newRow("ends at a zero byte") << QByteArray("12\0003", 4) << 10 << 12;
    QTest::newRow("smallest") << QByteArray("-2147483648") << 10 << smallest;
    QTest::newRow("wraps") << QByteArray("4294967297") << 10 << 1;
}

void TestProtocolBasic::str2Number()
{
    QFETCH(QByteArray, text);
    QFETCH(int, base);
    QTEST(ProtocolBasic::str2Number(text, base), "expected");
}

void TestProtocolBasic::digitBaseTransform_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("to");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("expected");
    QTest::newRow("number to BCD") << 1234 << 16 << 10 << 0x1234;
    QTest::newRow("BCD to number") << 0x1234 << 10 << 16 << 1234;
    QTest::newRow("zero") << 0 << 16 << 10 << 0;
    QTest::newRow("nine digits lose the highest") << 123456789 << 16 << 10 << 0x23456789;
    QTest::newRow("nine digits lose it in a small base, too") << 123456789 << 10 << 10 << 23456789;
    QTest::newRow("negative") << -12 << 16 << 10 << -0x12;
    QTest::newRow("digits of base 0") << 12 << 16 << 0 << 0;
    QTest::newRow("digits of base 1 are zeros") << 12 << 16 << 1 << 0;
    QTest::newRow("smallest in base -1") << smallest << 10 << -1 << 0;
    QTest::newRow("power beyond 64 bits") << 10000000 << 1000000 << 10 << -1650982912;
    QTest::newRow("negative power beyond 64 bits") << 10000000 << -1000000 << 10 << 1650982912;
    QTest::newRow("to base 0: only the last digit") << 1234 << 0 << 10 << 4;
}

void TestProtocolBasic::digitBaseTransform()
{
    QFETCH(int, value);
    QFETCH(int, to);
    QFETCH(int, from);
    ProtocolBasic protocol;
    QTEST(protocol.digitBaseTransform(value, to, from), "expected");
}

void TestProtocolBasic::bcdBothWays()
{
    ProtocolBasic protocol;
    for (int value = 0; value <= 99999999; value += value < 10000 ? 1 : 9973) {
        const int bcd = QByteArray::number(value).toInt(nullptr, 16);
        const quint32 bits = QByteArray::number(value).toUInt(nullptr, 16);
        if (value < 80000000)
            QCOMPARE(protocol.digitBaseTransform(value, 16, 10), bcd);
        else
            QCOMPARE(quint32(protocol.digitBaseTransform(value, 16, 10)), bits);
        if (value < 80000000)
            QCOMPARE(protocol.digitBaseTransform(bcd, 10, 16), value);
    }
}

QTEST_APPLESS_MAIN(TestProtocolBasic)
#include "tst_protocol_basic.moc"
