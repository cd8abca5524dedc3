#include "tools/service/plant/value_type.h"

#include <QTest>

using namespace tovik_service::plant;

class TestCloudValueType : public QObject
{
    Q_OBJECT

private slots:
    void acceptsAndNormalises_data();
    void acceptsAndNormalises();
    void rejects_data();
    void rejects();
    void makesValuesFromNumbers_data();
    void makesValuesFromNumbers();
    void namesLeadBackToTypes();
    void texts();
};

namespace {

ValueType type(const QByteArray& name)
{
    return typeFromName(name.toStdString()).value();
}

void row(const char* title, const char* type, const char* value, const char* result)
{
    QTest::newRow(title) << QByteArray(type) << QByteArray(value) << QByteArray(result);
}

} // namespace

void TestCloudValueType::acceptsAndNormalises_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QByteArray>("result");
    row("bit", "Bit", "true", "true");
    row("BCD holds four decimal digits", "16Bit-BCD", "9999", "9999");
    row("lowest 16 bit integer", "16Bit-INT", "-32768", "-32768");
    row("highest 16 bit unsigned", "16Bit-UINT", "65535", "65535");
    row("hexadecimal is padded and upper case", "16Bit-HEX", "\"a1\"", "\"00A1\"");
    row("highest 32 bit BCD", "32Bit-BCD", "99999999", "99999999");
    row("lowest 32 bit integer", "32Bit-INT", "-2147483648", "-2147483648");
    row("highest 32 bit unsigned", "32Bit-UINT", "4294967295", "4294967295");
    row("eight hexadecimal digits", "32Bit-HEX", "\"deadBEEF\"", "\"DEADBEEF\"");
    row("float keeps seven digits", "32Bit-FLOAT", "21.29999923706", "21.3");
    row("a whole number may have a fraction of zero", "16Bit-UINT", "7.0", "7");
}

void TestCloudValueType::acceptsAndNormalises()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, value);
    QFETCH(QByteArray, result);
    const CheckedValue checked = checkValue(type(name), 32, Json::parse(value.toStdString()));
    QVERIFY2(checked.ok(), checked.problem.c_str());
    QCOMPARE(QByteArray::fromStdString(toText(checked.value)), result);
}

void TestCloudValueType::rejects_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QByteArray>("problem");
    row("number for a bit", "Bit", "1", "true or false");
    row("string for a number", "16Bit-UINT", "\"7\"", "needs a number, not string");
    row("negative unsigned", "16Bit-UINT", "-1", "from 0 to 65535");
    row("five BCD digits", "16Bit-BCD", "10000", "from 0 to 9999");
    row("too large integer", "16Bit-INT", "32768", "from -32768 to 32767");
    row("fraction", "32Bit-INT", "1.5", "whole number");
    row("beyond 32 bits", "32Bit-UINT", "4294967296", "from 0 to 4294967295");
    row("beyond a float", "32Bit-FLOAT", "1e39", "needs a number from");
    row("number for hexadecimal", "16Bit-HEX", "10", "hexadecimal digits");
    row("five hexadecimal digits", "16Bit-HEX", "\"12345\"", "1 to 4 hexadecimal");
    row("no hexadecimal digit", "32Bit-HEX", "\"xyz\"", "1 to 8 hexadecimal");
    row("empty hexadecimal", "16Bit-HEX", "\"\"", "1 to 4 hexadecimal");
    row("null", "16Bit-UINT", "null", "not null");
}

void TestCloudValueType::rejects()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, value);
    QFETCH(QByteArray, problem);
    const CheckedValue checked = checkValue(type(name), 32, Json::parse(value.toStdString()));
    QVERIFY(!checked.ok());
    QVERIFY2(QByteArray::fromStdString(checked.problem).contains(problem), checked.problem.c_str());
}

void TestCloudValueType::makesValuesFromNumbers_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<double>("number");
    QTest::addColumn<QByteArray>("result");
    QTest::newRow("half turns a bit on") << QByteArray("Bit") << 0.5 << QByteArray("true");
    QTest::newRow("less leaves it off") << QByteArray("Bit") << 0.49 << QByteArray("false");
    QTest::newRow("rounded") << QByteArray("16Bit-INT") << -2.6 << QByteArray("-3");
    QTest::newRow("clamped above") << QByteArray("16Bit-BCD") << 1e6 << QByteArray("9999");
    QTest::newRow("clamped below") << QByteArray("32Bit-UINT") << -5.0 << QByteArray("0");
    QTest::newRow("hexadecimal") << QByteArray("32Bit-HEX") << 255.0 << QByteArray("\"000000FF\"");
}

void TestCloudValueType::makesValuesFromNumbers()
{
    QFETCH(QByteArray, name);
    QFETCH(double, number);
    QFETCH(QByteArray, result);
    QCOMPARE(QByteArray::fromStdString(toText(valueFromNumber(type(name), number))), result);
}

void TestCloudValueType::namesLeadBackToTypes()
{
    for (int i = 0; i <= static_cast<int>(ValueType::String); ++i) {
        const auto type = static_cast<ValueType>(i);
        QVERIFY(typeFromName(typeName(type)) == type);
        QVERIFY(checkValue(type, defaultLength(type), defaultValue(type)).ok());
    }
    QVERIFY(!typeFromName("64Bit-INT"));
}

void TestCloudValueType::texts()
{
    QVERIFY(checkValue(ValueType::String, 4, Json("Grüß")).ok());
    QVERIFY(!checkValue(ValueType::String, 3, Json("Grüß")).ok());
    QVERIFY(!checkValue(ValueType::AsciiString, 4, Json("Grüß")).ok());
    QVERIFY(!checkValue(ValueType::AsciiString, 4, Json("a\n")).ok());
    QVERIFY(checkValue(ValueType::AsciiString, 4, Json("a ~")).ok());
}

QTEST_APPLESS_MAIN(TestCloudValueType)
#include "tst_cloud_value_type.moc"
