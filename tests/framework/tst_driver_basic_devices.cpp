#include "tests/framework/driver_bench.h"
#include "tests/support/log_recorder.h"

#include <QTest>

#include <memory>

namespace {

const int short_time = 20; // milliseconds, for answers that do not come
const int long_time = 30000;

} // namespace

/// Devices that misbehave, and what the host is told.
class TestDriverBasicDevices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void misbehaviour_data();
    void misbehaviour();
    void whatCameBeforeTheCloseIsNotLost();
    void closedBeforeTheRequest_data() { addLineRows(); }
    void closedBeforeTheRequest();
    void closedInTransparentMode();
    void repeatsUntilTheDeviceAnswers_data() { addLineRows(); }
    void repeatsUntilTheDeviceAnswers();

private:
    static void addLineRows();
    /// The device comes back, and the host connects anew: all is well again.
    void verifyRecovery(DriverBench* bench);
};

void TestDriverBasicDevices::addLineRows()
{
    QTest::addColumn<int>("line");
    QTest::newRow("TCP") << 0;
    QTest::newRow("serial") << 1;
}

void TestDriverBasicDevices::verifyRecovery(DriverBench* bench)
{
    bench->device.hangUp();
    bench->device.comeBack();
    bench->device.behave(QStringList(QLatin1String("answers")));
    QVERIFY(bench->connectLink());
    bench->driver->time_limit = long_time;
    bench->driver->waits_for = 0;
    const QStringList answers = bench->read(2);
    const QByteArray values = TestDevice::valuesOf(bench->driver->number(), 2);
    QCOMPARE(answers, QStringList(QString::fromLatin1("unit link %1 0x0").arg(bytesText(values))));
}

void TestDriverBasicDevices::misbehaviour_data()
{
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("behaviour");
    QTest::addColumn<int>("time_limit");
    QTest::addColumn<int>("waits_for");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("log_line");
    const QString good = QLatin1String("unit link 080b 0x0");
    const QString timed_out = QLatin1String("unit link - 0x400a0000");
    const QString wrong_length = QLatin1String("unit link - 0x20010003");
    const QString command_timeout = QLatin1String("Command_Timeout");
    const char* const lines[] = {"TCP", "serial"};
    for (int line = 0; line < 2; ++line) {
        // The answer has five bytes; waiting for as many as will come makes the outcome certain.
        const auto row = [&](const char* behaviour, const char* how, int limit, int waits_for,
                             const QString& answer, const QString& log_line) {
            QTest::addRow("%s, %s%s", lines[line], behaviour, how)
                << line << QString::fromLatin1(behaviour) << limit << waits_for << answer
                << log_line;
        };
        const auto length = [](const char* text) { return QString::fromLatin1(text); };
        row("answers", "", long_time, 0, good, QString());
        row("byte by byte", "", long_time, 0, good, QString());
        row("silent", "", short_time, 0, timed_out, command_timeout);
        row("late", "", short_time, 0, timed_out, command_timeout);
        row("too short", ", waited for in vain", short_time, 0, timed_out, command_timeout);
        row("too short", ", taken for complete", long_time, 4, wrong_length,
            length("Protocol_Invalid_Length: 4 ( 5 )"));
        row("too long", "", long_time, 6, wrong_length, length("Protocol_Invalid_Length: 6 ( 5 )"));
        row("two replies in one", "", long_time, 10, wrong_length,
            length("Protocol_Invalid_Length: 10 ( 5 )"));
        row("closes in mid-reply", "", long_time, 0, timed_out, command_timeout);
        row("endless", "", long_time, 8, wrong_length, QString());
    }
}

void TestDriverBasicDevices::misbehaviour()
{
    QFETCH(int, line);
    QFETCH(QString, behaviour);
    QFETCH(int, time_limit);
    QFETCH(int, waits_for);
    QFETCH(QString, answer);
    QFETCH(QString, log_line);
    LogRecorder log;
    DriverBench bench(lineOf(line));
    QVERIFY(bench.connectLink());
    bench.device.behave(QStringList(behaviour));
    bench.driver->time_limit = time_limit;
    bench.driver->waits_for = waits_for;
    log.take();
    QCOMPARE(bench.read(2), QStringList(answer));
    // How many bytes an endless answer has is anybody's guess.
    if (behaviour == QLatin1String("endless"))
        QVERIFY(log.take().join(QString()).startsWith(QLatin1String("Protocol_Invalid_Length: ")));
    else
        QCOMPARE(log.take(), log_line.isEmpty() ? QStringList() : QStringList(log_line));
    QVERIFY(bench.lockIsFree());
    QVERIFY(bench.device.waitForReceived(TestDevice::request_size));
    verifyRecovery(&bench);
}

void TestDriverBasicDevices::whatCameBeforeTheCloseIsNotLost()
{
    DriverBench bench(ScriptedDevice::Line::Tcp);
    QVERIFY(bench.connectLink());
    bench.device.behave(QStringList(QLatin1String("closes in mid-reply")));
    bench.driver->on_abnormal = [](QByteArray*) { return 0; };
    bench.driver->on_parse = [](QByteArray*) { return 0; };
    LogRecorder log;
    QCOMPARE(bench.read(2), QStringList(QLatin1String("unit link - 0x0")));
    QCOMPARE(bench.driver->countCalls("abnormal 4100"), 1);
    QCOMPARE(bench.driver->countCalls("parse read D7 1 2 - 51000102 4100 9 3 4"), 1);
    QVERIFY(log.lines().isEmpty());
}

void TestDriverBasicDevices::closedBeforeTheRequest()
{
    QFETCH(int, line);
    LogRecorder log;
    DriverBench bench(lineOf(line));
    QVERIFY(bench.connectLink());
    bench.device.hangUp();
    log.take();
    // The host has not had the time to notice.
    QCOMPARE(bench.read(2), QStringList(QLatin1String("unit link - 0x400a0000")));
    QCOMPARE(bench.write("a"), QStringList(QLatin1String("unit link 61 0x400a0000")));
    QCOMPARE(bench.transparent("Q\x01\x02\x03"),
             QStringList(QLatin1String("transparent - 0x400a0000")));
    // And now it has.
    QCoreApplication::processEvents();
    QCOMPARE(bench.read(2), QStringList(QLatin1String("unit link - 0x400a0000")));
    QCOMPARE(bench.transparent("Q\x01\x02\x03"),
             QStringList(QLatin1String("transparent - 0x400a0000")));
    QCOMPARE(log.take(), QStringList(QLatin1String("Command_Timeout")) +
                             QStringList(QLatin1String("Command_Timeout")) +
                             QStringList(QLatin1String("Command_Timeout")));
    verifyRecovery(&bench);
}

// What has come is the answer, even if the device ended the connection after it.
void TestDriverBasicDevices::closedInTransparentMode()
{
    DriverBench bench(ScriptedDevice::Line::Tcp);
    QVERIFY(bench.connectLink());
    bench.device.behave(QStringList(QLatin1String("closes in mid-reply")));
    bench.driver->response_timeout_ = 60000;
    LogRecorder log;
    QCOMPARE(bench.transparent("Q\x01\x02\x03"),
             QStringList(QLatin1String("transparent 410102 0x0")));
    QVERIFY(log.lines().isEmpty());
    verifyRecovery(&bench);
}

void TestDriverBasicDevices::repeatsUntilTheDeviceAnswers()
{
    QFETCH(int, line);
    DriverBench bench(lineOf(line));
    QVERIFY(bench.connectLink());
    bench.device.behave({QLatin1String("silent"), QLatin1String("late"), QLatin1String("answers")});
    TestDriver* driver = bench.driver.get();
    driver->retry_count_ = 2;
    driver->on_wait = [&](int expected, int* ready) {
        const int attempts = driver->countCalls("wait");
        driver->time_limit = attempts < 3 ? short_time : long_time;
        const bool complete = driver->waitForSize(expected);
        // The next attempt must not overtake this one in the device.
        bench.device.waitForReceived(attempts * TestDevice::request_size);
        *ready = 1;
        return complete ? 0 : 0x400A0000;
    };
    LogRecorder log;
    QCOMPARE(
        bench.read(2),
        QStringList(
            QString::fromLatin1("unit link %1 0x0").arg(bytesText(TestDevice::valuesOf(3, 2)))));
    QCOMPARE(driver->countCalls("build"), 3);
    QCOMPARE(log.count("Command_Timeout"), 2);
}

QTEST_GUILESS_MAIN(TestDriverBasicDevices)
#include "tst_driver_basic_devices.moc"
