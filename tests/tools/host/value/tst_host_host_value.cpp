#include "tools/host/terminal/exit_code.h"
#include "tools/host/value/host_value.h"

#include <QTest>

using namespace tovik_host;
using namespace tovik_host::value;

class TestHostHostValue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void convertsBothWays_data();
    void convertsBothWays();
    void acceptsOtherSpellings_data();
    void acceptsOtherSpellings();
    void refuses_data();
    void refuses();
    void decodesNothing_data();
    void decodesNothing();
    void comparesAsTheServiceTells_data();
    void comparesAsTheServiceTells();
    void knowsItsTypes();
};

namespace {

const ItemType& typeOf(const QString& name)
{
    return *findItemType(name);
}

} // namespace

void TestHostHostValue::convertsBothWays_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("hex");
    const auto row = [](const char* name, const char* type, const char* text, const char* hex) {
        QTest::newRow(name) << QString::fromLatin1(type) << QString::fromUtf8(text)
                            << QByteArray(hex);
    };
    row("bit off", "Bit", "0", "00");
    row("bit on", "Bit", "1", "01");
    row("16-bit BCD", "16Bit-BCD", "1234", "3412");
    row("16-bit BCD, largest", "16Bit-BCD", "9999", "9999");
    row("16-bit INT, smallest", "16Bit-INT", "-32768", "0080");
    row("16-bit INT, minus two", "16Bit-INT", "-2", "feff");
    row("16-bit INT, largest", "16Bit-INT", "32767", "ff7f");
    row("16-bit UINT, largest", "16Bit-UINT", "65535", "ffff");
    row("16-bit HEX, small", "16Bit-HEX", "00FF", "ff00");
    row("16-bit HEX, largest", "16Bit-HEX", "FFFF", "ffff");
    row("32-bit BCD", "32Bit-BCD", "12345678", "78563412");
    row("32-bit BCD, largest", "32Bit-BCD", "99999999", "99999999");
    row("32-bit INT, smallest", "32Bit-INT", "-2147483648", "00000080");
    row("32-bit INT, minus one", "32Bit-INT", "-1", "ffffffff");
    row("32-bit INT, largest", "32Bit-INT", "2147483647", "ffffff7f");
    row("32-bit UINT, largest", "32Bit-UINT", "4294967295", "ffffffff");
    row("32-bit HEX", "32Bit-HEX", "1A2B3C4D", "4d3c2b1a");
    row("32-bit FLOAT", "32Bit-FLOAT", "12.5", "00004841");
    row("32-bit FLOAT, shortest digits", "32Bit-FLOAT", "0.1", "cdcccc3d");
    row("32-bit FLOAT, negative", "32Bit-FLOAT", "-273.15", "339388c3");
    row("32-bit FLOAT, largest", "32Bit-FLOAT", "3.4028235e+38", "ffff7f7f");
    row("text", "String", "abc", "616263");
    row("text, Latin-1", "String", "Grüße", "4772fcdf65");
    row("text, empty", "String", "", "");
}

void TestHostHostValue::convertsBothWays()
{
    QFETCH(QString, type);
    QFETCH(QString, text);
    QFETCH(QByteArray, hex);
    const QByteArray encoded = encodeValue(typeOf(type), text, 0);
    QCOMPARE(encoded.toHex(), hex);
    QCOMPARE(decodeValue(typeOf(type), encoded), std::optional<QString>(text));
}

void TestHostHostValue::acceptsOtherSpellings_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("length");
    QTest::addColumn<QByteArray>("hex");
    const auto row = [](const char* name, const char* type, const char* text, int length,
                        const char* hex) {
        QTest::newRow(name) << QString::fromLatin1(type) << QString::fromUtf8(text) << length
                            << QByteArray(hex);
    };
    row("bit, on", "Bit", "on", 0, "01");
    row("bit, False", "Bit", "False", 0, "00");
    row("plus sign", "16Bit-INT", "+5", 0, "0500");
    row("spaces around", "16Bit-UINT", " 7 ", 0, "0700");
    row("leading zeros", "16Bit-BCD", "0012", 0, "1200");
    row("hexadecimal in either case", "16Bit-HEX", "00fF", 0, "ff00");
    row("hexadecimal with prefix", "32Bit-HEX", "0xAB", 0, "ab000000");
    row("float as a whole number", "32Bit-FLOAT", "+2", 0, "00000040");
    row("float with exponent", "32Bit-FLOAT", "1e3", 0, "00007a44");
    row("text filled up", "String", "ab", 4, "61620000");
    row("text that fills its room", "String", "abcd", 4, "61626364");
}

void TestHostHostValue::acceptsOtherSpellings()
{
    QFETCH(QString, type);
    QFETCH(QString, text);
    QFETCH(int, length);
    QFETCH(QByteArray, hex);
    QCOMPARE(encodeValue(typeOf(type), text, length).toHex(), hex);
}

void TestHostHostValue::refuses_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("problem");
    const auto row = [](const char* name, const char* type, const char* text, const char* problem) {
        QTest::newRow(name) << QString::fromLatin1(type) << QString::fromUtf8(text)
                            << QString::fromUtf8(problem);
    };
    row("bit, two", "Bit", "2", "not a bit");
    row("BCD, negative", "16Bit-BCD", "-1", "out of range for 16Bit-BCD: 0 to 9999");
    row("BCD, five digits", "16Bit-BCD", "10000", "out of range for 16Bit-BCD: 0 to 9999");
    row("INT, too small", "16Bit-INT", "-32769", "-32768 to 32767");
    row("INT, too large", "16Bit-INT", "32768", "-32768 to 32767");
    row("UINT, negative", "16Bit-UINT", "-1", "0 to 65535");
    row("UINT, letters", "16Bit-UINT", "12a", "not a whole number");
    row("UINT, empty", "16Bit-UINT", "", "not a whole number");
    row("UINT, sign alone", "16Bit-UINT", "-", "not a whole number");
    row("UINT, a fraction", "16Bit-UINT", "1.5", "not a whole number");
    row("HEX, too large", "16Bit-HEX", "10000", "out of range for 16Bit-HEX: 0 to FFFF");
    row("HEX, no digit", "16Bit-HEX", "0xG", "not a hexadecimal number");
    row("HEX, negative", "16Bit-HEX", "-1", "not a hexadecimal number");
    row("32-bit BCD, nine digits", "32Bit-BCD", "100000000", "0 to 99999999");
    row("32-bit INT, too large", "32Bit-INT", "2147483648", "-2147483648 to 2147483647");
    row("32-bit UINT, too large", "32Bit-UINT", "4294967296", "0 to 4294967295");
    row("32-bit UINT, beyond any integer", "32Bit-UINT", "99999999999999999999", "out of range");
    row("32-bit HEX, nine digits", "32Bit-HEX", "100000000", "0 to FFFFFFFF");
    row("FLOAT, words", "32Bit-FLOAT", "warm", "not a decimal number");
    row("FLOAT, not a number", "32Bit-FLOAT", "nan", "not a decimal number");
    row("FLOAT, infinite", "32Bit-FLOAT", "inf", "not a decimal number");
    row("FLOAT, decimal comma", "32Bit-FLOAT", "1,5", "not a decimal number");
    row("FLOAT, beyond a single", "32Bit-FLOAT", "3.5e38", "out of range");
    row("FLOAT, beyond a double", "32Bit-FLOAT", "1e400", "out of range");
    row("text, not Latin-1", "String", "5 €", "not Latin-1");
    row("text, too long", "String", "abcde", "has 5 characters; the item has room for 4");
}

void TestHostHostValue::refuses()
{
    QFETCH(QString, type);
    QFETCH(QString, text);
    QFETCH(QString, problem);
    try {
        encodeValue(typeOf(type), text, 4);
    } catch (const terminal::UsageError& error) {
        QVERIFY2(error.message().contains(problem), error.what());
        return;
    }
    QFAIL("no error");
}

void TestHostHostValue::decodesNothing_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QByteArray>("hex");
    QTest::newRow("no byte of a bit") << QStringLiteral("Bit") << QByteArray();
    QTest::newRow("one byte of two") << QStringLiteral("16Bit-INT") << QByteArray("00");
    QTest::newRow("one byte of four") << QStringLiteral("32Bit-FLOAT") << QByteArray("00");
    QTest::newRow("BCD with a digit above nine")
        << QStringLiteral("16Bit-BCD") << QByteArray("0a00");
}

void TestHostHostValue::decodesNothing()
{
    QFETCH(QString, type);
    QFETCH(QByteArray, hex);
    QVERIFY(!decodeValue(typeOf(type), QByteArray::fromHex(hex)));
}

void TestHostHostValue::comparesAsTheServiceTells_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QByteArray>("shown");
    QTest::addColumn<QByteArray>("wanted");
    QTest::addColumn<bool>("same");
    const auto row = [](const char* name, const char* type, const char* shown, const char* wanted,
                        bool same) {
        QTest::newRow(name) << QString::fromLatin1(type) << QByteArray(shown) << QByteArray(wanted)
                            << same;
    };
    row("equal numbers", "16Bit-INT", "0500", "0500", true);
    row("different numbers", "16Bit-INT", "0500", "0600", false);
    row("float with six decimals", "32Bit-FLOAT", "a9aaaa41", "abaaaa41", true);
    row("another float", "32Bit-FLOAT", "00004841", "00004941", false);
    row("text with other padding", "String", "616200", "6162000000", true);
    row("text shown as UTF-8", "String", "c3bc", "fc00", true);
    row("another text", "String", "6163", "6162", false);
    row("too few bytes", "16Bit-INT", "00", "0000", false);
}

void TestHostHostValue::comparesAsTheServiceTells()
{
    QFETCH(QString, type);
    QFETCH(QByteArray, shown);
    QFETCH(QByteArray, wanted);
    QFETCH(bool, same);
    QCOMPARE(sameValue(typeOf(type), QByteArray::fromHex(shown), QByteArray::fromHex(wanted)),
             same);
}

void TestHostHostValue::knowsItsTypes()
{
    QCOMPARE(allItemTypeNames().split(QStringLiteral(", ")).size(), 11);
    QVERIFY(findItemType(QStringLiteral("16Bit-HEX")));
    QVERIFY(!findItemType(QStringLiteral("16bit-hex")));
    QVERIFY(!findItemType(QString()));
}

QTEST_APPLESS_MAIN(TestHostHostValue)
#include "tst_host_host_value.moc"
