#include "cloud/driver_status.h"

#include <QTest>

class TestDriverStatus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void status_data();
    void status();
    void everyOtherResultIsZero();
};

void TestDriverStatus::status_data()
{
    QTest::addColumn<int>("result");
    QTest::addColumn<int>("expected");
    QTest::newRow("1") << 1 << 0x400F0001;
    QTest::newRow("3") << 3 << 0x400F0003;
    QTest::newRow("4") << 4 << 0x400F0004;
    QTest::newRow("7") << 7 << 0x400F0007;
    QTest::newRow("8") << 8 << 0x400F0008;
    QTest::newRow("9") << 9 << 0x400F0009;
    QTest::newRow("15 keeps its decimal digits") << 15 << 0x400F0015;
    QTest::newRow("255 keeps its decimal digits") << 255 << 0x400F0255;
    QTest::newRow("256 is 1074725462") << 256 << 1074725462;
}

void TestDriverStatus::status()
{
    QFETCH(int, result);
    QTEST(driver_status::fromResult(result), "expected");
}

void TestDriverStatus::everyOtherResultIsZero()
{
    const QList<int> mapped{1, 3, 4, 7, 8, 9, 15, 255, 256};
    for (int result = -1000; result <= 1000; ++result) {
        if (!mapped.contains(result))
            QCOMPARE(driver_status::fromResult(result), 0);
    }
    QCOMPARE(driver_status::fromResult(std::numeric_limits<int>::max()), 0);
    QCOMPARE(driver_status::fromResult(std::numeric_limits<int>::min()), 0);
}

QTEST_APPLESS_MAIN(TestDriverStatus)
#include "tst_driver_status.moc"
