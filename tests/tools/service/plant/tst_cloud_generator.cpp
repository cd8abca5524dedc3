#include "tools/service/plant/generator.h"

#include <QTest>

using namespace tovik_service::plant;

class TestCloudGenerator : public QObject
{
    Q_OBJECT

private slots:
    void movesAsDescribed_data();
    void movesAsDescribed();
    void listCycles();
    void walkIsRepeatable();
    void walkStaysInRange();
    void walkMovesOnlyWithItsPeriod();
};

namespace {

GeneratorSettings settings(GeneratorKind kind, double min, double max, double period)
{
    GeneratorSettings result;
    result.kind = kind;
    result.min = result.start = min;
    result.max = max;
    result.period = period;
    return result;
}

GeneratorSettings walk(std::uint64_t seed)
{
    GeneratorSettings result = settings(GeneratorKind::RandomWalk, -50, 50, 1);
    result.start = 0;
    result.step = 10;
    result.seed = seed;
    return result;
}

void row(const char* title, const char* kind, const char* type, double seconds, const char* result)
{
    QTest::newRow(title) << QByteArray(kind) << QByteArray(type) << seconds << QByteArray(result);
}

} // namespace

void TestCloudGenerator::movesAsDescribed_data()
{
    QTest::addColumn<QByteArray>("kind");
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QByteArray>("result");
    row("counter begins at its start", "counter", "16Bit-UINT", 0, "10");
    row("counter stands between steps", "counter", "16Bit-UINT", 3.9, "10");
    row("counter steps with its period", "counter", "16Bit-UINT", 8, "12");
    row("counter reaches its maximum", "counter", "16Bit-UINT", 40, "20");
    row("counter wraps to its minimum", "counter", "16Bit-UINT", 44, "10");
    row("counter as hexadecimal", "counter", "16Bit-HEX", 4, "\"000B\"");
    row("ramp begins low", "ramp", "32Bit-FLOAT", 0, "10.0");
    row("ramp half way", "ramp", "32Bit-FLOAT", 2, "15.0");
    row("ramp falls back", "ramp", "32Bit-FLOAT", 4, "10.0");
    row("sine begins in the middle", "sine", "16Bit-INT", 0, "15");
    row("sine at its top", "sine", "16Bit-INT", 1, "20");
    row("sine at its bottom", "sine", "16Bit-INT", 3, "10");
}

void TestCloudGenerator::movesAsDescribed()
{
    QFETCH(QByteArray, kind);
    QFETCH(QByteArray, type);
    QFETCH(double, seconds);
    QFETCH(QByteArray, result);
    const auto generator =
        makeGenerator(settings(generatorKindFromName(kind.toStdString()).value(), 10, 20, 4),
                      typeFromName(type.toStdString()).value());
    QCOMPARE(QByteArray::fromStdString(toText(generator->valueAt(seconds))), result);
}

void TestCloudGenerator::listCycles()
{
    GeneratorSettings list = settings(GeneratorKind::List, 0, 0, 5);
    list.values = {"one", "two", "three"};
    const auto generator = makeGenerator(list, ValueType::String);
    QVERIFY(generator->valueAt(0) == "one");
    QVERIFY(generator->valueAt(4.9) == "one");
    QVERIFY(generator->valueAt(5) == "two");
    QVERIFY(generator->valueAt(15) == "one");
}

void TestCloudGenerator::walkIsRepeatable()
{
    const auto first = makeGenerator(walk(7), ValueType::Float32);
    const auto second = makeGenerator(walk(7), ValueType::Float32);
    const auto other = makeGenerator(walk(8), ValueType::Float32);
    for (int second5 = 0; second5 < 20; ++second5)
        first->valueAt(second5);
    QVERIFY(first->valueAt(20) == second->valueAt(20));
    QVERIFY(first->valueAt(20) != other->valueAt(20));
}

void TestCloudGenerator::walkStaysInRange()
{
    const auto generator = makeGenerator(walk(3), ValueType::Int16);
    for (int second = 0; second < 2000; ++second) {
        const int value = generator->valueAt(second).get<int>();
        QVERIFY(value >= -50 && value <= 50);
    }
}

void TestCloudGenerator::walkMovesOnlyWithItsPeriod()
{
    const auto generator = makeGenerator(walk(3), ValueType::Float32);
    QVERIFY(generator->valueAt(0) == 0.0);
    QVERIFY(generator->valueAt(0.99) == 0.0);
    QVERIFY(generator->valueAt(1) != 0.0);
}

QTEST_APPLESS_MAIN(TestCloudGenerator)
#include "tst_cloud_generator.moc"
