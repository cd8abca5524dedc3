#include "cloud/json_number.h"

#include <QTest>

#include <clocale>
#include <cmath>
#include <limits>
#include <locale>
#include <random>

Q_DECLARE_METATYPE(std::string)

class TestJsonNumber : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void toInt32_data();
    void toInt32();
    void toUInt32_data();
    void toUInt32();
    void toFloat_data();
    void toFloat();
    void toFloatAgreesWithTheProcessor();
    void toWire_data();
    void toWire();
    void toWireIgnoresTheLocale();
};

namespace {

const double infinity = std::numeric_limits<double>::infinity();
const double not_a_number = std::numeric_limits<double>::quiet_NaN();

} // namespace

void TestJsonNumber::toInt32_data()
{
    QTest::addColumn<double>("number");
    QTest::addColumn<int>("expected");
    QTest::newRow("zero") << 0.0 << 0;
    QTest::newRow("fraction is cut") << 0.9 << 0;
    QTest::newRow("negative fraction is cut toward zero") << -1.7 << -1;
    QTest::newRow("largest") << 2147483647.0 << 2147483647;
    QTest::newRow("fraction above the largest") << 2147483647.5 << 2147483647;
    QTest::newRow("one above the largest saturates") << 2147483648.0 << 2147483647;
    QTest::newRow("3e10 saturates") << 3e10 << 2147483647;
    QTest::newRow("smallest") << -2147483648.0 << std::numeric_limits<int>::min();
    QTest::newRow("below the smallest saturates") << -3e10 << std::numeric_limits<int>::min();
    QTest::newRow("1e308 saturates") << 1e308 << 2147483647;
    QTest::newRow("infinity saturates") << infinity << 2147483647;
    QTest::newRow("minus infinity saturates") << -infinity << std::numeric_limits<int>::min();
    QTest::newRow("not a number is zero") << not_a_number << 0;
}

void TestJsonNumber::toInt32()
{
    QFETCH(double, number);
    QTEST(json_number::toInt32(number), "expected");
}

void TestJsonNumber::toUInt32_data()
{
    QTest::addColumn<double>("number");
    QTest::addColumn<uint>("expected");
    QTest::newRow("zero") << 0.0 << 0U;
    QTest::newRow("minus zero") << -0.0 << 0U;
    QTest::newRow("fraction is cut") << 1.99 << 1U;
    QTest::newRow("negative is zero") << -1.0 << 0U;
    QTest::newRow("above the signed limit") << 2147483648.0 << 2147483648U;
    QTest::newRow("largest") << 4294967295.0 << 4294967295U;
    QTest::newRow("one above the largest saturates") << 4294967296.0 << 4294967295U;
    QTest::newRow("3e10 saturates") << 3e10 << 4294967295U;
    QTest::newRow("minus infinity is zero") << -infinity << 0U;
    QTest::newRow("infinity saturates") << infinity << 4294967295U;
    QTest::newRow("not a number is zero") << not_a_number << 0U;
}

void TestJsonNumber::toUInt32()
{
    QFETCH(double, number);
    QTEST(json_number::toUInt32(number), "expected");
}

void TestJsonNumber::toFloat_data()
{
    const float largest = std::numeric_limits<float>::max();
    const float endless = std::numeric_limits<float>::infinity();
    const double half_above = 340282356779733661637539395458142568448.0;
    QTest::addColumn<double>("number");
    QTest::addColumn<float>("expected");
    QTest::newRow("exact") << 1.5 << 1.5F;
    QTest::newRow("rounded") << 0.1 << 0.1F;
    QTest::newRow("largest") << double(largest) << largest;
    QTest::newRow("just above the largest rounds down")
        << std::nextafter(double(largest), infinity) << largest;
    QTest::newRow("below halfway rounds down") << std::nextafter(half_above, 0) << largest;
    QTest::newRow("halfway rounds to infinity") << half_above << endless;
    QTest::newRow("too large is infinity") << 1e39 << endless;
    QTest::newRow("too small is minus infinity") << -1e39 << -endless;
    QTest::newRow("just below the smallest rounds up")
        << std::nextafter(-double(largest), -infinity) << -largest;
    QTest::newRow("tiny becomes zero") << 1e-60 << 0.0F;
}

void TestJsonNumber::toFloat()
{
    QFETCH(double, number);
    QFETCH(float, expected);
    // operator== tells infinities and neighbours apart; QCOMPARE would compare floats fuzzily.
    QVERIFY(json_number::toFloat(number) == expected);
}

void TestJsonNumber::toFloatAgreesWithTheProcessor()
{
    std::mt19937_64 random(20261121);
    std::uniform_real_distribution<double> mantissa(-2, 2);
    std::uniform_int_distribution<int> exponent(-160, 126);
    for (int i = 0; i < 100000; ++i) {
        const double number = std::ldexp(mantissa(random), exponent(random));
        QVERIFY(json_number::toFloat(number) == static_cast<float>(number));
    }
}

void TestJsonNumber::toWire_data()
{
    QTest::addColumn<double>("number");
    QTest::addColumn<std::string>("expected");
    QTest::newRow("zero") << 0.0 << std::string("0");
    QTest::newRow("integral") << 12.0 << std::string("12");
    QTest::newRow("negative") << -3.0 << std::string("-3");
    QTest::newRow("largest unsigned") << 4294967295.0 << std::string("4294967295");
    QTest::newRow("half") << 12.5 << std::string("12.500000");
    QTest::newRow("a quarter") << 2.25 << std::string("2.250000");
    QTest::newRow("a float's tenth") << double(0.1F) << std::string("0.100000");
    QTest::newRow("rounds to six decimals") << 1.0 / 3 << std::string("0.333333");
    QTest::newRow("vanishes in six decimals") << 1e-9 << std::string("0.000000");
    QTest::newRow("below 2^53") << 9007199254740991.0 << std::string("9007199254740991");
    QTest::newRow("2^53 has decimals")
        << 9007199254740992.0 << std::string("9007199254740992.000000");
    QTest::newRow("minus 2^53 has decimals")
        << -9007199254740992.0 << std::string("-9007199254740992.000000");
    QTest::newRow("1e17") << 1e17 << std::string("100000000000000000.000000");
    QTest::newRow("largest float") << double(std::numeric_limits<float>::max())
                                   << std::string("340282346638528859811704183484516925440.000000");
}

void TestJsonNumber::toWire()
{
    QFETCH(double, number);
    QFETCH(std::string, expected);
    QCOMPARE(json_number::toWire(number), expected);
}

namespace {

/// A decimal comma and grouping, as some hosts set them, without a locale to be installed.
class CommaPunctuation : public std::numpunct<char>
{
protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

} // namespace

void TestJsonNumber::toWireIgnoresTheLocale()
{
    const std::locale before =
        std::locale::global(std::locale(std::locale(), new CommaPunctuation));
    const std::string half = json_number::toWire(1234567.5);
    const std::string whole = json_number::toWire(1234567);
    std::locale::global(before);
    QCOMPARE(half, std::string("1234567.500000"));
    QCOMPARE(whole, std::string("1234567"));
}

QTEST_APPLESS_MAIN(TestJsonNumber)
#include "tst_json_number.moc"
