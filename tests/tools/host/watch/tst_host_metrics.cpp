#include "tools/host/value/metrics.h"
#include "tools/host/watch/table_view.h"

#include <QTest>

using namespace tovik_host;
using namespace tovik_host::watch;

/// What a driver tells about its work, and how a watch shows it.
class TestHostMetrics : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsWhatADriverHas();
    void findsNothingWhereNothingIs();
    void takesNoTimeForNone();
    void averagesReads_data();
    void averagesReads();
    void saysWhatIsTold_data();
    void saysWhatIsTold();
    void standsInTheTable();
};

namespace {

const QDateTime now(QDate(2024, 5, 1), QTime(12, 0));

} // namespace

void TestHostMetrics::readsWhatADriverHas()
{
    QObject driver;
    driver.setProperty("cycle_count", 3);
    driver.setProperty("cycle_milliseconds", 120);
    driver.setProperty("longest_cycle_milliseconds", 450);
    driver.setProperty("read_count", 4000000000u);
    driver.setProperty("reconnect_count", 2);
    driver.setProperty("last_error", 7);
    driver.setProperty("last_error_age", 1500);
    driver.setProperty("item_ages", QVariantList{100, -1});
    const value::DriverNumbers numbers = value::readNumbers(driver);
    QVERIFY(numbers.isAny());
    QCOMPARE(*numbers.cycle_count, 3);
    QCOMPARE(*numbers.cycle, 120);
    QCOMPARE(*numbers.longest_cycle, 450);
    QCOMPARE(*numbers.read_count, 4000000000u);
    QCOMPARE(*numbers.reconnect_count, 2);
    QCOMPARE(*numbers.last_error, 7);
    QCOMPARE(*numbers.last_error_age, 1500);
    QVERIFY(numbers.tells_ages);
    QCOMPARE(numbers.ages.size(), 2);
    QCOMPARE(*numbers.ages.at(0), 100);
    QVERIFY(!numbers.ages.at(1));
}

void TestHostMetrics::findsNothingWhereNothingIs()
{
    const QObject driver;
    const value::DriverNumbers numbers = value::readNumbers(driver);
    QVERIFY(!numbers.isAny());
    QVERIFY(!numbers.tells_ages);
    QCOMPARE(value::numbersText(numbers, std::nullopt, now), QString());
}

void TestHostMetrics::takesNoTimeForNone()
{
    QObject driver;
    driver.setProperty("cycle_count", 0);
    driver.setProperty("cycle_milliseconds", -1);
    driver.setProperty("item_ages", QVariantList());
    const value::DriverNumbers numbers = value::readNumbers(driver);
    QVERIFY(numbers.isAny());
    QVERIFY(!numbers.cycle);
    QVERIFY(numbers.tells_ages);
    QVERIFY(numbers.ages.isEmpty());
}

void TestHostMetrics::averagesReads_data()
{
    using Samples = QVector<QPair<qint64, uint>>;
    QTest::addColumn<Samples>("samples");
    QTest::addColumn<double>("rate"); // below zero: none
    QTest::newRow("nothing") << Samples{} << -1.0;
    QTest::newRow("too short a time") << Samples{{0, 0}, {1999, 50}} << -1.0;
    QTest::newRow("two seconds") << Samples{{0, 10}, {2000, 50}} << 20.0;
    QTest::newRow("a pause within the memory")
        << Samples{{0, 0}, {5000, 100}, {10000, 100}} << 10.0;
    QTest::newRow("what has long ended is forgotten")
        << Samples{{0, 0}, {5000, 100}, {10000, 100}, {15000, 100}} << 0.0;
    QTest::newRow("a pause longer than the memory") << Samples{{0, 0}, {100000, 100}} << 1.0;
    QTest::newRow("the count starts again") << Samples{{0, 4294967290u}, {2000, 14}} << 10.0;
}

void TestHostMetrics::averagesReads()
{
    using Samples = QVector<QPair<qint64, uint>>;
    QFETCH(Samples, samples);
    value::ReadRate rate;
    for (const auto& sample : samples)
        rate.take(sample.first, sample.second);
    QTEST(rate.perSecond().value_or(-1.0), "rate");
}

void TestHostMetrics::saysWhatIsTold_data()
{
    QTest::addColumn<QVariantMap>("properties");
    QTest::addColumn<double>("rate"); // below zero: none
    QTest::addColumn<QString>("text");
    const auto entry = [](const char* name, int value) {
        return QVariantMap{{QString::fromLatin1(name), value}};
    };
    QVariantMap all = {{QStringLiteral("cycle_count"), 3},
                       {QStringLiteral("cycle_milliseconds"), 120},
                       {QStringLiteral("longest_cycle_milliseconds"), 4500},
                       {QStringLiteral("reconnect_count"), 1},
                       {QStringLiteral("last_error"), 7},
                       {QStringLiteral("last_error_age"), 60000}};
    QTest::newRow("everything") << all << 12.34
                                << QStringLiteral("cycle 0.12 s (longest 4.50 s), 12.3 reads/s, 1 "
                                                  "reconnect, last error: service error 7 at "
                                                  "11:59:00");
    all[QStringLiteral("last_error")] = 256;
    all[QStringLiteral("reconnect_count")] = 0;
    QTest::newRow("a failure on the way")
        << all << 0.0
        << QStringLiteral("cycle 0.12 s (longest 4.50 s), 0.0 reads/s, 0 reconnects, last error: "
                          "service not reachable, or its reply not understood at 11:59:00");
    QTest::newRow("no cycle") << entry("cycle_count", 0) << -1.0
                              << QStringLiteral("no whole cycle yet");
    QTest::newRow("no error") << entry("last_error", 0) << -1.0 << QStringLiteral("no error");
    QTest::newRow("of an error the number alone")
        << entry("last_error", 9) << -1.0 << QStringLiteral("last error: service error 9");
}

void TestHostMetrics::saysWhatIsTold()
{
    QFETCH(QVariantMap, properties);
    QFETCH(double, rate);
    QObject driver;
    for (auto it = properties.cbegin(); it != properties.cend(); ++it)
        driver.setProperty(it.key().toLatin1().constData(), it.value());
    QTEST(value::numbersText(value::readNumbers(driver),
                             rate < 0 ? std::nullopt : std::optional<double>(rate), now),
          "text");
}

/// A line above the table, and ages since the service delivered a value, where the driver tells.
void TestHostMetrics::standsInTheTable()
{
    const value::ItemType* type = value::findItemType(QStringLiteral("16Bit-INT"));
    WatchModel model({{QStringLiteral("A"), QStringLiteral("a"), type, 0},
                      {QStringLiteral("B"), QStringLiteral("b"), type, 0},
                      {QStringLiteral("C"), QStringLiteral("c"), type, 0}},
                     now.addSecs(-600));
    value::DriverNumbers numbers;
    numbers.reconnect_count = 2;
    numbers.tells_ages = true;
    numbers.ages = {3900, std::nullopt, 59900};
    model.takeNumbers(numbers, 0);
    const WatchSubject subject = {QStringLiteral("lib.so"), QStringLiteral("1.2.3"),
                                  QStringLiteral("https://cloud.example"), QStringLiteral("plant")};
    const QVector<ScreenLine> screen = drawTable(subject, model, {}, now, {100, 30});
    QCOMPARE(screen.at(3).text, QStringLiteral("Metrics  2 reconnects"));
    QVERIFY(screen.at(5).text.endsWith(QLatin1String("STATUS     AGE")));
    QVERIFY(screen.at(6).text.endsWith(QLatin1String("  3.9 s")));
    QVERIFY(screen.at(7).text.endsWith(QLatin1String("  never")));
    QVERIFY(screen.at(8).text.endsWith(QLatin1String("  59 s")));
    // Not where it would take the last line for items.
    for (const int rows : {6, 7, 8, 9})
        QVERIFY(drawTable(subject, model, {}, now, {100, rows}).size() <= rows);
}

QTEST_GUILESS_MAIN(TestHostMetrics)
#include "tst_host_metrics.moc"
