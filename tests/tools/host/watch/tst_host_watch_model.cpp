#include "tools/host/watch/watch_model.h"

#include <QTest>

using namespace tovik_host;
using namespace tovik_host::watch;

Q_DECLARE_METATYPE(tovik_host::driver::Answer)

class TestHostWatchModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstAnswerIsAChange();
    void sameBytesAreNoChange();
    void missingAnswerIsAChange();
    void failureIsAChange();
    void statusIsFirstErrorOfRound();
    void cacheOfTheDriverIsNoValue();
    void valueWithoutNewsIsStale();
    void staleCountsInCyclesOfTheDriver();
    void itemAtWhoseErrorTheCycleEnds();
    void refusedLoginEndsNoCycle();
    void keepsTheFirstTrouble_data();
    void keepsTheFirstTrouble();
};

namespace {

const QDateTime start(QDate(2024, 5, 1), QTime(12, 0));

config::ItemConfig item(const char* name)
{
    return {QLatin1String(name), QStringLiteral("id"),
            value::findItemType(QStringLiteral("16Bit-INT")), 0};
}

driver::Answer answer(const char* hex, int status = 0)
{
    return {true, QByteArray::fromHex(hex), status};
}

} // namespace

void TestHostWatchModel::firstAnswerIsAChange()
{
    WatchModel model({item("a")}, start);
    QVERIFY(model.take(0, answer("0500"), start.addSecs(1)));
    QCOMPARE(model.items().at(0).value, std::optional<QString>(QStringLiteral("5")));
    QCOMPARE(model.items().at(0).changed_at, start.addSecs(1));
}

void TestHostWatchModel::sameBytesAreNoChange()
{
    WatchModel model({item("a")}, start);
    model.take(0, answer("0500"), start.addSecs(1));
    QVERIFY(!model.take(0, answer("0500", 0x400F0007), start.addSecs(2)));
    QCOMPARE(model.items().at(0).answer.status, 0x400F0007);
    QCOMPARE(model.items().at(0).changed_at, start.addSecs(1));
    QVERIFY(model.take(0, answer("0600"), start.addSecs(3)));
    QCOMPARE(model.items().at(0).changed_at, start.addSecs(3));
}

void TestHostWatchModel::missingAnswerIsAChange()
{
    WatchModel model({item("a")}, start);
    QVERIFY(model.take(0, driver::Answer(), start));
    QVERIFY(!model.items().at(0).value);
    QVERIFY(!model.take(0, driver::Answer(), start));
    QVERIFY(model.take(0, answer("0500"), start));
    QVERIFY(model.take(0, driver::Answer(), start));
    QVERIFY(!model.items().at(0).value);
}

void TestHostWatchModel::failureIsAChange()
{
    config::ItemConfig text = item("a");
    text.type = value::findItemType(QStringLiteral("String"));
    WatchModel model({text}, start);
    const driver::Answer failed = {true, QByteArray(), 0x400A0000, false, value::StatusOf::device};
    QVERIFY(model.take(0, answer(""), start));
    QVERIFY(model.items().at(0).value);
    QVERIFY(model.take(0, failed, start));
    QVERIFY(!model.items().at(0).value);
    QVERIFY(!model.take(0, failed, start));
    QCOMPARE(model.statusOf(), value::StatusOf::device);
}

void TestHostWatchModel::statusIsFirstErrorOfRound()
{
    WatchModel model({item("a"), item("b"), item("c")}, start);
    const auto round = [&model](int a, int b, int c) {
        model.take(0, answer("0000", a), start);
        model.take(1, answer("0000", b), start);
        model.take(2, answer("0000", c), start);
        return model.endRound(start.addSecs(a + b + c));
    };
    QVERIFY(!round(0, 0, 0));
    QVERIFY(round(0, 7, 9));
    QCOMPARE(model.status(), 7);
    QCOMPARE(model.statusSince(), start.addSecs(16));
    QVERIFY(!round(7, 0, 7));
    QCOMPARE(model.statusSince(), start.addSecs(16));
    QVERIFY(round(0, 0, 0));
    QCOMPARE(model.status(), 0);
}

/// The driver tells that the service has delivered nothing yet.
void TestHostWatchModel::cacheOfTheDriverIsNoValue()
{
    WatchModel model({item("a"), item("b")}, start);
    value::DriverNumbers numbers;
    numbers.tells_ages = true;
    numbers.ages = {std::nullopt, std::nullopt};
    model.takeNumbers(numbers, 0);
    QVERIFY(model.take(0, answer("0000"), start));
    QVERIFY(model.take(1, answer("0000"), start));
    QCOMPARE(model.waitingCount(), 2);
    QVERIFY(model.items().at(0).is_waited_for);
    QVERIFY(!model.items().at(0).value);
    QVERIFY(model.items().at(0).answer.bytes.isEmpty());
    QVERIFY(!model.take(0, answer("0000"), start));
    QCOMPARE(model.valueCount(), 0);

    numbers.ages = {20, std::nullopt};
    model.takeNumbers(numbers, 1000);
    // The same bytes are news now.
    QVERIFY(model.take(0, answer("0000"), start.addSecs(1)));
    QVERIFY(!model.take(1, answer("0000"), start.addSecs(1)));
    QCOMPARE(model.waitingCount(), 1);
    QCOMPARE(model.items().at(0).value, std::optional<QString>(QStringLiteral("0")));
    QCOMPARE(model.valueCount(), 1);
}

void TestHostWatchModel::valueWithoutNewsIsStale()
{
    WatchModel model({item("a"), item("b")}, start, 3);
    value::DriverNumbers numbers;
    numbers.tells_ages = true;
    const auto judge = [&](std::optional<int> a, std::optional<int> b) {
        numbers.ages = {a, b};
        model.takeNumbers(numbers, 0);
        return model.judgeAges(start);
    };
    QCOMPARE(judge(3000, std::nullopt), QVector<int>());
    QCOMPARE(judge(3001, std::nullopt), QVector<int>({0}));
    QVERIFY(model.items().at(0).is_stale);
    QCOMPARE(model.staleCount(), 1);
    QCOMPARE(judge(9000, 9000), QVector<int>({1}));
    QCOMPARE(judge(10, 9000), QVector<int>({0}));
    QVERIFY(!model.items().at(0).is_stale);
    QCOMPARE(model.firstTrouble(), QStringLiteral("a was stale at 12:00:00"));

    WatchModel patient({item("a"), item("b")}, start, 0);
    patient.takeNumbers(numbers, 0);
    QCOMPARE(patient.judgeAges(start), QVector<int>());
    QCOMPARE(patient.firstTrouble(), QString());
}

/// Cycles begin at whole seconds.
void TestHostWatchModel::staleCountsInCyclesOfTheDriver()
{
    WatchModel model({item("a")}, start, 3);
    value::DriverNumbers numbers;
    QCOMPARE(model.staleAfter(), 3000);
    const auto after = [&](int cycle) {
        numbers.cycle = cycle;
        model.takeNumbers(numbers, 0);
        return model.staleAfter();
    };
    QCOMPARE(after(999), 3000);
    QCOMPARE(after(1000), 3000);
    QCOMPARE(after(1001), 6000);
}

namespace {

/// One round in which the first item has a value and the others wait; every answer has the status.
bool round(WatchModel& model, int status, const QDateTime& now)
{
    value::DriverNumbers numbers;
    numbers.connected = status == 0;
    numbers.tells_ages = true;
    numbers.ages = {100, std::nullopt, std::nullopt};
    model.takeNumbers(numbers, start.msecsTo(now));
    for (int i = 0; i < model.items().size(); ++i)
        model.take(i, answer("0500", status), now);
    return model.endRound(now);
}

} // namespace

void TestHostWatchModel::itemAtWhoseErrorTheCycleEnds()
{
    WatchModel model({item("a"), item("b"), item("c")}, start, 3);
    round(model, 0, start);
    QCOMPARE(model.cycleEnd(), -1);
    QVERIFY(round(model, 0x400F0007, start.addSecs(1)));
    QCOMPARE(model.cycleEnd(), 1);
    QVERIFY(!model.isNotReached(0));
    QVERIFY(!model.isNotReached(1));
    QVERIFY(model.isNotReached(2));
    QCOMPARE(model.statusText(), QStringLiteral("service error 7 (0x400F0007): b ends the cycle, "
                                                "items not reached: 1"));
    QVERIFY(!round(model, 0x400F0007, start.addSecs(2)));
    // Connected anew, and soon refused again.
    QVERIFY(!round(model, 0, start.addSecs(3)));
    QCOMPARE(model.cycleEnd(), 1);
    QCOMPARE(model.status(), 0x400F0007);
    QVERIFY(!round(model, 0x400F0007, start.addSecs(4)));
    QVERIFY(!round(model, 0, start.addSecs(5)));
    QVERIFY(round(model, 0, start.addSecs(8)));
    QCOMPARE(model.cycleEnd(), -1);
    QCOMPARE(model.statusText(), QStringLiteral("ok"));
}

void TestHostWatchModel::refusedLoginEndsNoCycle()
{
    WatchModel model({item("a"), item("b"), item("c")}, start, 3);
    round(model, 0x400F0001, start);
    QCOMPARE(model.cycleEnd(), -1);
    round(model, 0, start.addSecs(1));
    round(model, 0x400F0256, start.addSecs(2));
    round(model, 0x400F0001, start.addSecs(3));
    QCOMPARE(model.cycleEnd(), -1);
    QVERIFY(!model.isNotReached(2));
}

void TestHostWatchModel::keepsTheFirstTrouble_data()
{
    QTest::addColumn<driver::Answer>("given");
    QTest::addColumn<QString>("trouble");
    QTest::newRow("none") << answer("0500") << QString();
    QTest::newRow("no answer") << driver::Answer()
                               << QStringLiteral("a was not answered by the driver at 12:00:00");
    QTest::newRow("error") << answer("0500", 0x400F0007)
                           << QStringLiteral("a was service error 7 (0x400F0007) at 12:00:00");
    QTest::newRow("bytes of no value")
        << answer("05") << QStringLiteral("a was no value of its type at 12:00:00");
}

void TestHostWatchModel::keepsTheFirstTrouble()
{
    QFETCH(driver::Answer, given);
    QFETCH(QString, trouble);
    WatchModel model({item("a")}, start);
    model.take(0, given, start);
    QCOMPARE(model.firstTrouble(), trouble);
    model.take(0, answer("0600", 0x400F0001), start);
    QVERIFY(trouble.isEmpty() || model.firstTrouble() == trouble);
}

QTEST_APPLESS_MAIN(TestHostWatchModel)
#include "tst_host_watch_model.moc"
