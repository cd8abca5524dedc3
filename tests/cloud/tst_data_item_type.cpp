#include "cloud/data_item_type.h"

#include <QTest>

#include <limits>
#include <stdexcept>

namespace {

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

QByteArray hex(const char* digits)
{
    return QByteArray::fromHex(digits);
}

const char* const names[] = {"Bit",       "16Bit-BCD",   "16Bit-INT", "16Bit-UINT",
                             "16Bit-HEX", "32Bit-BCD",   "32Bit-INT", "32Bit-UINT",
                             "32Bit-HEX", "32Bit-FLOAT", "String"};

} // namespace

class TestDataItemType : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyNameIsFound();
    void unknownNames_data();
    void unknownNames();
    void serviceNames();
    void fromJson_data();
    void fromJson();
    void unexpectedJson();
    void toJson_data();
    void toJson();
    void numbersThatJsonCannotHold();
    void toHost_data();
    void toHost();
    void fromHost_data();
    void fromHost();
};

void TestDataItemType::everyNameIsFound()
{
    for (const char* name : names) {
        const DataItemType* type = findDataItemType(latin1(name));
        QVERIFY2(type, name);
        QCOMPARE(type->name, name);
        QCOMPARE(findServiceType(latin1(name)), type);
    }
}

void TestDataItemType::unknownNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QString();
    QTest::newRow("other case") << latin1("16bit-int");
    QTest::newRow("trailing blank") << latin1("Bit ");
    QTest::newRow("leading part") << latin1("16Bit");
    QTest::newRow("trailing NUL") << QString(latin1("Bit") + QChar(0));
    QTest::newRow("other") << latin1("64Bit-INT");
}

void TestDataItemType::unknownNames()
{
    QFETCH(QString, name);
    QVERIFY(!findDataItemType(name));
    QVERIFY(!findServiceType(name));
}

void TestDataItemType::serviceNames()
{
    QCOMPARE(findServiceType(latin1("Ascii String")), findDataItemType(latin1("String")));
    QVERIFY(!findDataItemType(latin1("Ascii String")));
    QVERIFY(!findServiceType(latin1("ascii string")));
}

void TestDataItemType::fromJson_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QVariant>("expected");
    auto row = [](const char* name, const char* type, const char* json, const QVariant& value) {
        QTest::newRow(name) << latin1(type) << QByteArray(json) << value;
    };
    auto u16 = [](int n) { return QVariant::fromValue<unsigned short>(quint16(n)); };
    auto i16 = [](int n) { return QVariant::fromValue<short>(qint16(n)); };
    row("true", "Bit", "true", true);
    row("false", "Bit", "false", false);
    row("sixteen bit BCD is a plain number", "16Bit-BCD", "1234", u16(1234));
    row("sixteen bit BCD above 65535 keeps its low half", "16Bit-BCD", "65537", u16(1));
    row("minus one stays minus one", "16Bit-INT", "-1", i16(-1));
    row("sixteen bit integer above its limit is cut", "16Bit-INT", "70000.9", i16(4464));
    row("sixteen bit integer wraps its sign", "16Bit-INT", "32768", i16(-32768));
    row("sixteen bit integer beyond 32 bits", "16Bit-INT", "3e10", i16(-1));
    row("sixteen bit integer below 32 bits", "16Bit-INT", "-3e10", i16(0));
    row("sixteen bit value above 65535 keeps its low half", "16Bit-UINT", "65537", u16(1));
    row("negative unsigned is zero", "16Bit-UINT", "-1", u16(0));
    row("sixteen bit unsigned beyond 32 bits", "16Bit-UINT", "3e10", u16(65535));
    row("hexadecimal stays text", "16Bit-HEX", "\"00fF\"", latin1("00fF"));
    row("32 bit BCD", "32Bit-BCD", "12345678", 12345678U);
    row("32 bit BCD saturates", "32Bit-BCD", "3e10", 4294967295U);
    row("32 bit integer", "32Bit-INT", "-2147483648", std::numeric_limits<int>::min());
    row("32 bit integer saturates", "32Bit-INT", "3e10", 2147483647);
    row("32 bit integer is cut toward zero", "32Bit-INT", "-1.9", -1);
    row("32 bit unsigned", "32Bit-UINT", "4294967295", 4294967295U);
    row("32 bit unsigned below zero", "32Bit-UINT", "-1", 0U);
    row("32 bit hexadecimal stays text", "32Bit-HEX", "\"deadbeef\"", latin1("deadbeef"));
    row("float", "32Bit-FLOAT", "1.5", QVariant::fromValue<float>(1.5F));
    row("float narrows", "32Bit-FLOAT", "0.1", QVariant::fromValue<float>(0.1F));
    row("float beyond its range is infinite", "32Bit-FLOAT", "1e39",
        QVariant::fromValue<float>(std::numeric_limits<float>::infinity()));
    row("text", "String", "\"AB\"", latin1("AB"));
    row("empty text", "String", "\"\"", latin1(""));
    row("quote, backslash and slash", "String", "\"\\\"\\\\\\/\"", latin1("\"\\/"));
    row("control characters", "String", "\"\\b\\f\\n\\r\\t\\u0001\"", latin1("\b\f\n\r\t\1"));
    row("bytes above 0x7F are Latin-1", "String", "\"\xE9\xFF\"", latin1("\xE9\xFF"));
    row("UTF-8 bytes are Latin-1 too", "String", "\"\xC3\xA9\"", latin1("\xC3\xA9"));
    row("an escape becomes UTF-8 bytes", "String", "\"\\u00e9\"", latin1("\xC3\xA9"));
    row("NUL stays in the text", "String", "\"A\\u0000B\"",
        QString(latin1("A") + QChar(0) + latin1("B")));
}

void TestDataItemType::fromJson()
{
    QFETCH(QString, type);
    QFETCH(QByteArray, json);
    QFETCH(QVariant, expected);
    picojson::value value;
    QVERIFY(picojson::parse(value, json.toStdString()).empty());
    const DataItemType* row = findDataItemType(type);
    QVERIFY((value.*row->is_expected)());
    const QVariant result = row->from_json(value);
    QCOMPARE(result.userType(), expected.userType());
    QCOMPARE(result, expected);
}

void TestDataItemType::unexpectedJson()
{
    const char* const kinds[] = {"null", "true", "5", "\"5\"", "[5]", "{}"};
    const char* const expected[] = {"true", "5", "5",     "5", "\"5\"", "5",
                                    "5",    "5", "\"5\"", "5", "\"5\""};
    for (int type = 0; type < 11; ++type) {
        for (const char* kind : kinds) {
            picojson::value value;
            QVERIFY(picojson::parse(value, std::string(kind)).empty());
            const bool accepted = (value.*findDataItemType(latin1(names[type]))->is_expected)();
            QVERIFY2(accepted == (std::string(kind) == expected[type]),
                     qPrintable(latin1(names[type]) + latin1(" given ") + latin1(kind)));
        }
    }
}

void TestDataItemType::toJson_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QByteArray>("expected");
    auto row = [](const char* name, const char* type, const QVariant& value, const char* json) {
        QTest::newRow(name) << latin1(type) << value << QByteArray(json);
    };
    row("five is true", "Bit", 5, "true");
    row("zero is false", "Bit", 0, "false");
    row("no value is false", "Bit", QVariant(), "false");
    row("BCD goes as a plain number", "16Bit-BCD", 1234, "1234");
    row("sixteen bits are not cut", "16Bit-UINT", 70000U, "70000");
    row("text of minus three", "16Bit-INT", latin1("-3"), "-3");
    row("letters give zero", "16Bit-INT", latin1("abc"), "0");
    row("32 bit BCD", "32Bit-BCD", 99999999U, "99999999");
    row("32 bit integer", "32Bit-INT", std::numeric_limits<int>::min(), "-2147483648");
    row("32 bit unsigned", "32Bit-UINT", 4294967295U, "4294967295");
    row("whole float", "32Bit-FLOAT", QVariant::fromValue<float>(2.0F), "2");
    row("broken float", "32Bit-FLOAT", QVariant::fromValue<float>(2.25F), "2.25");
    row("no value is zero", "32Bit-FLOAT", QVariant(), "0");
    row("hexadecimal text", "16Bit-HEX", QByteArray("ab"), "\"ab\"");
    row("32 bit hexadecimal text", "32Bit-HEX", QByteArray("deadbeef"), "\"deadbeef\"");
    row("text", "String", latin1("HI"), "\"HI\"");
    row("text traps", "String", latin1("\"\\/\n\x7F"), "\"\\\"\\\\\\/\\n\\u007f\"");
    row("Latin-1 bytes", "String", latin1("\xE9"), "\"\xE9\"");
    row("outside Latin-1", "String", QString(QChar(0x20AC)), "\"?\"");
    row("NUL", "String", QString(QChar(0)), "\"\\u0000\"");
}

void TestDataItemType::toJson()
{
    QFETCH(QString, type);
    QFETCH(QVariant, value);
    QFETCH(QByteArray, expected);
    const std::string json = findDataItemType(type)->to_json(value).serialize();
    QCOMPARE(QByteArray::fromStdString(json), expected);
}

void TestDataItemType::numbersThatJsonCannotHold()
{
    const DataItemType* type = findDataItemType(latin1("32Bit-FLOAT"));
    const float bad[] = {std::numeric_limits<float>::quiet_NaN(),
                         std::numeric_limits<float>::infinity(),
                         -std::numeric_limits<float>::infinity()};
    for (const float number : bad)
        QVERIFY_EXCEPTION_THROWN(type->to_json(QVariant::fromValue<float>(number)),
                                 std::overflow_error);
}

void TestDataItemType::toHost_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<int>("data_length");
    QTest::addColumn<QByteArray>("expected");
    auto row = [](const char* name, const char* type, const QVariant& value,
                  const QByteArray& expected, int data_length = 0) {
        QTest::newRow(name) << latin1(type) << value << data_length << expected;
    };
    row("set bit", "Bit", true, hex("01"));
    row("cleared bit", "Bit", false, hex("00"));
    row("bit without a value", "Bit", QVariant(), hex("00"));
    row("BCD digits become hexadecimal", "16Bit-BCD", QVariant::fromValue<unsigned short>(1234),
        hex("3412"));
    row("BCD of five digits fails", "16Bit-BCD", QVariant::fromValue<unsigned short>(12345),
        hex("0000"));
    row("BCD of a fraction fails", "16Bit-BCD", QVariant::fromValue<float>(12.5F), hex("0000"));
    row("minus two", "16Bit-INT", QVariant::fromValue<short>(-2), hex("feff"));
    row("sixteen bit integer keeps its low bits", "16Bit-INT", 70000, hex("7011"));
    row("float for an integer is rounded", "16Bit-INT", QVariant::fromValue<float>(12.5F),
        hex("0d00"));
    row("unsigned", "16Bit-UINT", QVariant::fromValue<unsigned short>(65535), hex("ffff"));
    row("unsigned is masked", "16Bit-UINT", 70000U, hex("7011"));
    row("hexadecimal text", "16Bit-HEX", latin1("00fF"), hex("ff00"));
    row("hexadecimal text with a prefix", "16Bit-HEX", latin1("0x12"), hex("1200"));
    row("hexadecimal text too long", "16Bit-HEX", latin1("12345"), hex("0000"));
    row("hexadecimal text with a sign", "16Bit-HEX", latin1("-1"), hex("0000"));
    row("no hexadecimal digit", "16Bit-HEX", latin1("xyz"), hex("0000"));
    row("hexadecimal bytes as written by the host", "16Bit-HEX", QByteArray("ab"), hex("ab00"));
    row("32 bit BCD", "32Bit-BCD", 12345678U, hex("78563412"));
    row("32 bit BCD of nine digits fails", "32Bit-BCD", 123456789U, hex("00000000"));
    row("32 bit integer", "32Bit-INT", -2, hex("feffffff"));
    row("text beyond a signed integer is minus one", "32Bit-INT", latin1("4294967295"),
        hex("ffffffff"));
    row("32 bit unsigned", "32Bit-UINT", 4294967295U, hex("ffffffff"));
    row("32 bit hexadecimal", "32Bit-HEX", latin1("deadbeef"), hex("efbeadde"));
    row("32 bit hexadecimal too long", "32Bit-HEX", latin1("123456789"), hex("00000000"));
    row("float", "32Bit-FLOAT", QVariant::fromValue<float>(1.5F), hex("0000c03f"));
    row("no number yet", "32Bit-FLOAT", QVariant(), hex("00000000"));
    row("empty text as a number", "32Bit-INT", latin1(""), hex("00000000"));
    row("text is padded", "String", latin1("AB"), hex("4142000000"), 5);
    row("text is not cut", "String", latin1("AB"), hex("4142"), 1);
    row("no text and no length", "String", QVariant(), QByteArray());
    row("empty text is only padding", "String", latin1(""), hex("000000"), 3);
    row("negative length", "String", latin1("AB"), hex("4142"), -7);
    row("most negative length", "String", latin1("A"), hex("41"), std::numeric_limits<int>::min());
    row("Latin-1 text", "String", latin1("\xE9"), hex("e9"));
    row("text outside Latin-1", "String", QString(QChar(0x20AC)), hex("3f"));
    row("text with NUL", "String", QString(latin1("A") + QChar(0) + latin1("B")), hex("410042"));
}

void TestDataItemType::toHost()
{
    QFETCH(QString, type);
    QFETCH(QVariant, value);
    QFETCH(int, data_length);
    QTEST(findDataItemType(type)->to_host(value, data_length), "expected");
}

void TestDataItemType::fromHost_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QVariant>("expected");
    auto row = [](const char* name, const char* type, const QByteArray& bytes,
                  const QVariant& expected) {
        QTest::newRow(name) << latin1(type) << bytes << expected;
    };
    row("any bit sets", "Bit", hex("80"), true);
    row("no bit clears", "Bit", hex("00"), false);
    row("no byte clears", "Bit", QByteArray(), false);
    row("BCD", "16Bit-BCD", hex("3412"), 1234);
    row("BCD with a letter", "16Bit-BCD", hex("ab00"), 0);
    row("largest BCD", "16Bit-BCD", hex("9999"), 9999);
    row("sixteen bit integer", "16Bit-INT", hex("3412"), 4660);
    row("sixteen bit integer keeps its sign", "16Bit-INT", hex("feff"), -2);
    row("half a sixteen bit integer", "16Bit-INT", hex("05"), 0);
    row("sixteen bit unsigned", "16Bit-UINT", hex("ffff"), 65535);
    row("hexadecimal", "16Bit-HEX", hex("3412"), QByteArray("1234"));
    row("hexadecimal is lower case without zeros", "16Bit-HEX", hex("ab00"), QByteArray("ab"));
    row("32 bit BCD", "32Bit-BCD", hex("78563412"), 12345678U);
    row("32 bit BCD with a letter", "32Bit-BCD", hex("0a000000"), 0U);
    row("32 bit integer", "32Bit-INT", hex("ffffffff"), -1);
    row("32 bit unsigned", "32Bit-UINT", hex("ffffffff"), 4294967295U);
    row("32 bit hexadecimal", "32Bit-HEX", hex("efbeadde"), QByteArray("deadbeef"));
    row("zero hexadecimal", "32Bit-HEX", hex("00000000"), QByteArray("0"));
    row("float", "32Bit-FLOAT", hex("0000c03f"), QVariant::fromValue<float>(1.5F));
    row("float from five bytes", "32Bit-FLOAT", hex("0000c03fff"),
        QVariant::fromValue<float>(1.5F));
    row("float from two bytes", "32Bit-FLOAT", hex("0000"), QVariant::fromValue<float>(0.0F));
    row("text ends at the first zero", "String", hex("48490041"), latin1("HI"));
    row("text without a zero", "String", hex("4849"), latin1("HI"));
    row("Latin-1 text", "String", hex("e9"), latin1("\xE9"));
    row("no text", "String", QByteArray(), latin1(""));
    row("extra bytes are ignored", "16Bit-UINT", hex("0100ffff"), 1);
}

void TestDataItemType::fromHost()
{
    QFETCH(QString, type);
    QFETCH(QByteArray, bytes);
    QFETCH(QVariant, expected);
    const QVariant result = findDataItemType(type)->from_host(bytes);
    QCOMPARE(result.userType(), expected.userType());
    QCOMPARE(result, expected);
}

QTEST_APPLESS_MAIN(TestDataItemType)
#include "tst_data_item_type.moc"
