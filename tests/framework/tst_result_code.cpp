#include "framework/result_code.h"

#include <QTest>

#include <climits>

namespace {

const result_code::Words words[] = {
    {0x4F000001, 0x4F000001, "no such register"},
    {0x4F010002, 0x4F010002, "busy"},
    {0x4F010000, 0x4F01FFFF, "the device refuses with code"},
    {result_code::stopped, result_code::stopped, "halted"},
    {INT_MIN, -1, "below"},
    {7, 7, "M\xC3\xB6we"},
    {0, 0, nullptr},
    {8, 8, "after the end"},
};

} // namespace

/// Result codes in words.
class TestResultCode : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void values();
    void wordsOfTheFramework_data();
    void wordsOfTheFramework();
    void wordsOfADriver_data();
    void wordsOfADriver();
};

// Hosts and projects have stored them.
void TestResultCode::values()
{
    QCOMPARE(result_code::success, 0);
    QCOMPARE(result_code::stopped, 0x1002);
    QCOMPARE(result_code::unit_not_served, 0x2002);
    QCOMPARE(result_code::no_answer_in_time, 0x400A0000);
    QCOMPARE(result_code::receive_failed, 0x400A0002);
    QCOMPARE(result_code::not_supported, 0x400CFFFF);
    QCOMPARE(result_code::invalid_length, 0x20010003);
}

void TestResultCode::wordsOfTheFramework_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    QTest::newRow("success") << 0 << "ok";
    QTest::newRow("stopped") << 0x1002 << "stopped";
    QTest::newRow("unit") << 0x2002 << "unit not served";
    QTest::newRow("silent device") << 0x400A0000 << "the device did not answer in time";
    QTest::newRow("receiving") << 0x400A0002 << "receiving failed";
    QTest::newRow("offline") << 0x400CFFFF << "offline: no link to the device, or not supported";
    QTest::newRow("length") << 0x20010003
                            << "the request could not be built, or the answer had the wrong length";
    QTest::newRow("nobody's") << 0x4F000001 << QString();
    QTest::newRow("1") << 1 << QString();
}

void TestResultCode::wordsOfTheFramework()
{
    QFETCH(int, code);
    QFETCH(QString, text);
    QCOMPARE(result_code::textOf(code), text);
}

void TestResultCode::wordsOfADriver_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    QTest::newRow("of its own") << 0x4F000001 << "no such register";
    QTest::newRow("unknown") << 0x4F000002 << QString();
    QTest::newRow("the first entry counts") << 0x4F010002 << "busy";
    QTest::newRow("first of many") << 0x4F010000 << "the device refuses with code 0";
    QTest::newRow("last of many") << 0x4F01FFFF << "the device refuses with code 65535";
    QTest::newRow("after many") << 0x4F020000 << QString();
    QTest::newRow("the framework's, in other words") << 0x1002 << "halted";
    QTest::newRow("the framework's") << 0x2002 << "unit not served";
    QTest::newRow("negative") << -1 << "below 2147483647";
    QTest::newRow("UTF-8") << 7 << QString(QLatin1String("M\xF6we"));
    QTest::newRow("after the end of the table") << 8 << QString();
    QTest::newRow("success") << 0 << "ok";
}

void TestResultCode::wordsOfADriver()
{
    QFETCH(int, code);
    QFETCH(QString, text);
    QCOMPARE(result_code::textOf(code, words), text);
}

QTEST_APPLESS_MAIN(TestResultCode)
#include "tst_result_code.moc"
