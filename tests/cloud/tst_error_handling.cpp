#include "cloud/error_handling.h"
#include "interface/drv_ethernet.h"

#include <QTest>

#include <limits>

/// The host's settings for what follows a failure, and the questions asked of them.
class TestErrorHandling : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void policy_data();
    void policy();
    void interval_data();
    void interval();
    void ofALink();
    void ofALinkWithoutSettings();
};

void TestErrorHandling::policy_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("return_time_en");
    QTest::addColumn<bool>("restore_switch_bs_en");
    QTest::addColumn<bool>("by_timer");
    QTest::addColumn<bool>("by_reads");
    for (const int type : {-1, 4})
        QTest::addRow("type %d never", type) << type << true << true << false << false;
    for (const int type : {0, 2}) {
        QTest::addRow("type %d by timer", type) << type << false << false << true << false;
        QTest::addRow("type %d by timer, whatever is set", type)
            << type << true << true << true << false;
    }
    QTest::newRow("type 1 with return time by timer") << 1 << true << false << true << false;
    QTest::newRow("type 1 with both by timer only") << 1 << true << true << true << false;
    QTest::newRow("type 1 with the switch alone by reads") << 1 << false << true << false << true;
    QTest::newRow("type 1 with neither never") << 1 << false << false << false << false;
    QTest::newRow("type 3 by reads") << 3 << false << false << false << true;
    QTest::newRow("type 3 by reads, whatever is set") << 3 << true << true << false << true;
}

void TestErrorHandling::policy()
{
    QFETCH(int, type);
    ErrorHandling handling;
    handling.type = type;
    QFETCH(bool, return_time_en);
    handling.return_time_en = return_time_en;
    QFETCH(bool, restore_switch_bs_en);
    handling.restore_switch_bs_en = restore_switch_bs_en;
    QTEST(handling.reconnectsByTimer(), "by_timer");
    QTEST(handling.reconnectsByReads(), "by_reads");
}

void TestErrorHandling::interval_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("return_time");
    QTest::addColumn<bool>("return_time_en");
    QTest::addColumn<int>("interval");
    const int greatest = std::numeric_limits<int>::max();
    QTest::newRow("type 1 by its return time") << 1 << 5 << true << 5000;
    QTest::newRow("type 1 without return time") << 1 << 5 << false << 1000;
    QTest::newRow("type 0 whatever the return time") << 0 << 5 << true << 1000;
    QTest::newRow("no time at all") << 1 << 0 << true << 0;
    QTest::newRow("below zero") << 1 << -5 << true << -5000;
    QTest::newRow("beyond an int") << 1 << greatest << true << greatest;
    QTest::newRow("below what an int holds") << 1 << -greatest - 1 << true << -greatest;
}

void TestErrorHandling::interval()
{
    ErrorHandling handling;
    QFETCH(int, type);
    handling.type = type;
    QFETCH(int, return_time);
    handling.return_time = return_time;
    QFETCH(bool, return_time_en);
    handling.return_time_en = return_time_en;
    QTEST(handling.interval(), "interval");
}

void TestErrorHandling::ofALink()
{
    DrvEthernet link;
    link.driver_specific_data[QStringLiteral("tovik_iot_err_handle_type")] = 3;
    link.driver_specific_data[QStringLiteral("tovik_iot_err_return_time")] = QStringLiteral("7");
    link.driver_specific_data[QStringLiteral("tovik_iot_err_retry_count")] = 9;
    link.driver_specific_data[QStringLiteral("tovik_iot_err_return_time_en")] = true;
    link.driver_specific_data[QStringLiteral("tovik_iot_err_restore_switch_bs_en")] = 1;
    const ErrorHandling handling = ErrorHandling::of(&link);
    QCOMPARE(handling.type, 3);
    QCOMPARE(handling.return_time, 7);
    QCOMPARE(handling.retry_count, 9);
    QVERIFY(handling.return_time_en);
    QVERIFY(handling.restore_switch_bs_en);
}

/// None of the defaults is left where the host has said nothing.
void TestErrorHandling::ofALinkWithoutSettings()
{
    DrvEthernet link;
    const ErrorHandling handling = ErrorHandling::of(&link);
    QCOMPARE(handling.type, 0);
    QCOMPARE(handling.return_time, 0);
    QCOMPARE(handling.retry_count, 0);
    QVERIFY(!handling.return_time_en);
    QVERIFY(!handling.restore_switch_bs_en);
    QCOMPARE(link.driver_specific_data.size(), 5);
}

QTEST_GUILESS_MAIN(TestErrorHandling)
#include "tst_error_handling.moc"
