#include "cloud/driver_metrics.h"

#include <QElapsedTimer>
#include <QTest>
#include <QThread>

#include <atomic>
#include <limits>
#include <memory>
#include <thread>

/// The numbers that the client counts and a host reads.
class TestDriverMetrics : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsWithNothing();
    void keepsLatestAndLongestCycle_data();
    void keepsLatestAndLongestCycle();
    void countsReads();
    void agesOnlyWhatWasTaken();
    void countsConnectionsAfterTheFirst();
    void keepsTheLatestError();
    void isReadWhileItIsCounted();
};

void TestDriverMetrics::startsWithNothing()
{
    const DriverMetrics metrics(2);
    QCOMPARE(metrics.cycleCount(), 0);
    QCOMPARE(metrics.cycleMilliseconds(), -1);
    QCOMPARE(metrics.longestCycleMilliseconds(), -1);
    QCOMPARE(metrics.readCount(), 0u);
    QCOMPARE(metrics.reconnectCount(), 0);
    QCOMPARE(metrics.lastError(), 0);
    QCOMPARE(metrics.lastErrorAge(), -1);
    QCOMPARE(metrics.itemCount(), 2);
    QCOMPARE(metrics.itemAge(0), -1);
    QCOMPARE(metrics.itemAge(1), -1);
}

void TestDriverMetrics::keepsLatestAndLongestCycle_data()
{
    QTest::addColumn<QList<qint64>>("cycles");
    QTest::addColumn<int>("latest");
    QTest::addColumn<int>("longest");
    const int greatest = std::numeric_limits<int>::max();
    QTest::newRow("a cycle of no time is one") << QList<qint64>{0} << 0 << 0;
    QTest::newRow("longest first") << QList<qint64>{90, 20} << 20 << 90;
    QTest::newRow("longest last") << QList<qint64>{20, 90} << 90 << 90;
    QTest::newRow("longer than an int holds")
        << QList<qint64>{qint64(greatest) + 5} << greatest << greatest;
}

void TestDriverMetrics::keepsLatestAndLongestCycle()
{
    QFETCH(QList<qint64>, cycles);
    DriverMetrics metrics(1);
    for (const qint64 cycle : cycles)
        metrics.cycleDone(cycle);
    QCOMPARE(metrics.cycleCount(), cycles.size());
    QTEST(metrics.cycleMilliseconds(), "latest");
    QTEST(metrics.longestCycleMilliseconds(), "longest");
}

void TestDriverMetrics::countsReads()
{
    DriverMetrics metrics(1);
    metrics.valueRead(0, true);
    metrics.valueRead(0, false);
    metrics.valueRead(1, true); // added since
    QCOMPARE(metrics.readCount(), 3u);
    QCOMPARE(metrics.cycleCount(), 0);
}

void TestDriverMetrics::agesOnlyWhatWasTaken()
{
    DriverMetrics metrics(3);
    QElapsedTimer elapsed;
    elapsed.start();
    metrics.valueRead(0, true);
    metrics.valueRead(1, false);
    QCOMPARE(metrics.itemAge(0), -1);
    metrics.valuesDelivered();
    QTRY_VERIFY(metrics.itemAge(0) >= 200);
    QVERIFY(elapsed.elapsed() >= 100);
    QVERIFY(metrics.itemAge(0) <= elapsed.elapsed() + 100);
    QCOMPARE(metrics.itemAge(1), -1);
    QCOMPARE(metrics.itemAge(2), -1);
    const int older = metrics.itemAge(0);
    metrics.valueRead(1, true);
    QCOMPARE(metrics.itemAge(1), -1);
    metrics.valuesDelivered();
    QVERIFY(metrics.itemAge(0) >= older);
    QVERIFY(metrics.itemAge(1) >= 0);
    QVERIFY(metrics.itemAge(1) < metrics.itemAge(0));
}

void TestDriverMetrics::countsConnectionsAfterTheFirst()
{
    DriverMetrics metrics(1);
    metrics.connected();
    QCOMPARE(metrics.reconnectCount(), 0);
    metrics.connected();
    metrics.connected();
    QCOMPARE(metrics.reconnectCount(), 2);
}

void TestDriverMetrics::keepsTheLatestError()
{
    DriverMetrics metrics(1);
    metrics.failed(7);
    metrics.failed(256);
    metrics.connected();
    metrics.valueRead(0, true);
    QCOMPARE(metrics.lastError(), 256);
    QVERIFY(metrics.lastErrorAge() >= 0);
    QTRY_VERIFY(metrics.lastErrorAge() >= 100);
}

/// No age is ever below zero, and no count goes back.
void TestDriverMetrics::isReadWhileItIsCounted()
{
    DriverMetrics metrics(1);
    metrics.valueRead(0, true);
    metrics.valuesDelivered();
    std::atomic<bool> is_over(false);
    std::thread client([&metrics, &is_over] {
        for (int i = 0; i < 200000; ++i) {
            metrics.valueRead(0, true);
            metrics.valuesDelivered();
            metrics.cycleDone(i);
            metrics.failed(1 + i % 9);
        }
        is_over = true;
    });
    uint reads = 0;
    bool is_sound = true;
    while (!is_over) {
        const uint now = metrics.readCount();
        is_sound = is_sound && metrics.itemAge(0) >= 0 && now >= reads &&
                   metrics.lastErrorAge() >= -1 && metrics.lastError() < 10;
        reads = now;
    }
    client.join();
    QVERIFY(is_sound);
    QCOMPARE(metrics.readCount(), 200001u);
    QCOMPARE(metrics.cycleCount(), 200000);
    QCOMPARE(metrics.longestCycleMilliseconds(), 199999);
}

QTEST_GUILESS_MAIN(TestDriverMetrics)
#include "tst_driver_metrics.moc"
