#include "framework/result_code.h"
#include "tests/framework/driver_bench.h"
#include "tests/support/log_recorder.h"

#include <QElapsedTimer>
#include <QTest>

namespace {

const int short_time = 400;  // ms; runs out in the tests of silence
const int long_time = 30000; // ms

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

DeviceStep step(const QByteArray& bytes, int delay = 0)
{
    DeviceStep step;
    step.bytes = bytes;
    step.delay = delay;
    return step;
}

} // namespace

/// The waits that a driver is given, on both kinds of link.
class TestDriverBasicWaits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bytes_data();
    void bytes();
    void lines_data();
    void lines();
    void stopRequestIsHeard();
    void unknownLength_data();
    void unknownLength();
    void linkThatIsLost_data();
    void linkThatIsLost();
    void withoutALink();
};

void TestDriverBasicWaits::bytes_data()
{
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("behaviour");
    QTest::addColumn<int>("result");
    QTest::addColumn<int>("ready");
    for (int line = 0; line < 2; ++line) {
        const char* const kind = line ? "serial" : "tcp";
        const auto row = [line, kind](const char* behaviour, int result, int ready) {
            QTest::addRow("%s: %s", kind, behaviour)
                << line << latin1(behaviour) << result << ready;
        };
        row("answers", result_code::success, 1);
        row("byte by byte", result_code::success, 1);
        row("too long", result_code::success, 1);
        row("silent", result_code::no_answer_in_time, 0);
        row("too short", result_code::no_answer_in_time, 1);
        row("closes in mid-reply", result_code::receive_failed, 1);
    }
}

void TestDriverBasicWaits::bytes()
{
    QFETCH(int, line);
    QFETCH(QString, behaviour);
    QFETCH(int, result);
    const LogRecorder log;
    DriverBench bench(lineOf(line));
    QVERIFY(bench.connectLink());
    bench.device.behave({behaviour});
    bench.driver->response_timeout_ =
        result == result_code::no_answer_in_time ? short_time : long_time;
    int code = -1;
    int was_ready = -1;
    bench.driver->on_wait = [&](int expected_length, int* ready) {
        *ready = 5;
        code = bench.driver->waitForBytes(expected_length, ready);
        was_ready = *ready;
        return code;
    };
    QElapsedTimer time;
    time.start();
    bench.read(3);
    QCOMPARE(code, result);
    if (code != result_code::receive_failed) // what came before the loss may be lost with it
        QTEST(was_ready, "ready");
    if (code == result_code::no_answer_in_time)
        QVERIFY(time.elapsed() >= short_time);
    QVERIFY(time.elapsed() < long_time);
}

void TestDriverBasicWaits::lines_data()
{
    QTest::addColumn<int>("line");
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<QByteArray>("end");
    QTest::addColumn<int>("result");
    for (int line = 0; line < 2; ++line) {
        const char* const kind = line ? "serial" : "tcp";
        const auto row = [line, kind](const char* name, const char* first, const char* second,
                                      const char* end, int result) {
            QTest::addRow("%s: %s", kind, name)
                << line << QByteArray(first) << QByteArray(second) << QByteArray(end) << result;
        };
        row("in one piece", "12.5 kg\r", "", "\r", result_code::success);
        row("an end of two characters, split", "12.5 kg\r", "\n", "\r\n", result_code::success);
        row("more after the end", "12.5\rmore", "", "\r", result_code::success);
        row("nothing but the end", "\r", "", "\r", result_code::success);
        row("no end", "12.5", " kg", "\r", result_code::no_answer_in_time);
    }
}

void TestDriverBasicWaits::lines()
{
    QFETCH(int, line);
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, second);
    QFETCH(QByteArray, end);
    QFETCH(int, result);
    const LogRecorder log;
    DriverBench bench(lineOf(line));
    QVERIFY(bench.connectLink());
    bench.device.setBehaviour([&](const QByteArray&) {
        return QList<DeviceStep>{step(first), step(second, 20)};
    });
    bench.driver->response_timeout_ = result == result_code::success ? long_time : short_time;
    int code = -1;
    int was_ready = -1;
    QByteArray waiting;
    bench.driver->on_wait = [&](int, int* ready) {
        code = bench.driver->waitForLine(end, ready);
        was_ready = *ready;
        waiting = bench.link()->peek(100);
        return code;
    };
    bench.read(3);
    QCOMPARE(code, result);
    QCOMPARE(was_ready, 1);
    QVERIFY2(waiting.startsWith(first), waiting.constData());
    QCOMPARE(waiting.contains(end), result == result_code::success);
}

void TestDriverBasicWaits::stopRequestIsHeard()
{
    const LogRecorder log;
    DriverBench bench(ScriptedDevice::Line::Tcp);
    QVERIFY(bench.connectLink());
    bench.device.behave({latin1("silent")});
    bench.driver->response_timeout_ = long_time;
    int code = -1;
    bench.driver->on_wait = [&](int, int* ready) {
        bench.driver->stop_flag = 1;
        code = bench.driver->waitForBytes(1, ready);
        bench.driver->stop_flag = 0;
        return code;
    };
    bench.read(3);
    QCOMPARE(code, int(result_code::stopped));
}

void TestDriverBasicWaits::unknownLength_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("expected");
    QTest::newRow("a short one") << QByteArray("1\r") << latin1("unit link 310d 0x0");
    QTest::newRow("a long one") << QByteArray("12345\r") << latin1("unit link 31323334350d 0x0");
    QTest::newRow("one that is not whole")
        << QByteArray("12345") << latin1("unit link - 0x400a0000");
}

void TestDriverBasicWaits::unknownLength()
{
    QFETCH(QByteArray, answer);
    const LogRecorder log;
    DriverBench bench(ScriptedDevice::Line::Tcp);
    QVERIFY(bench.connectLink());
    bench.device.setBehaviour([&](const QByteArray&) { return QList<DeviceStep>{step(answer)}; });
    TestDriver& driver = *bench.driver;
    driver.response_timeout_ = answer.endsWith('\r') ? long_time : short_time;
    driver.on_build = [](QByteArray*, QByteArray* request) {
        request->append("Q\0\0\1", 4);
        return int(DriverBasic::unknown_length);
    };
    QByteArray come;
    driver.on_wait = [&](int, int* ready) { return driver.waitForLine("\r", ready); };
    driver.on_abnormal = [&](QByteArray* response) {
        come = *response;
        return response->endsWith('\r') ? result_code::success : result_code::receive_failed;
    };
    driver.on_parse = [&](QByteArray* data) {
        *data = come;
        return 0;
    };
    const QStringList answers = bench.read(3);
    QCOMPARE(answers.size(), 1);
    QTEST(answers.first(), "expected");
}

void TestDriverBasicWaits::linkThatIsLost_data()
{
    QTest::addColumn<int>("line");
    QTest::newRow("tcp") << 0;
    QTest::newRow("serial") << 1;
}

void TestDriverBasicWaits::linkThatIsLost()
{
    QFETCH(int, line);
    DriverBench bench(lineOf(line));
    QVERIFY(bench.driver->isLinkLost());
    QVERIFY(bench.connectLink());
    QVERIFY(!bench.driver->isLinkLost());
    bench.device.hangUp();
    QTRY_VERIFY((bench.driver->waitForLinkInput(1), bench.driver->isLinkLost()));
    bench.link()->close();
    QVERIFY(bench.driver->isLinkLost());
}

void TestDriverBasicWaits::withoutALink()
{
    TestDriver driver(nullptr);
    int ready = 5;
    QVERIFY(driver.isLinkLost());
    QCOMPARE(driver.waitForBytes(1, &ready), int(result_code::receive_failed));
    QCOMPARE(ready, 0);
    ready = 5;
    QCOMPARE(driver.waitForLine("\r", &ready), int(result_code::receive_failed));
    QCOMPARE(ready, 0);
}

QTEST_GUILESS_MAIN(TestDriverBasicWaits)
#include "tst_driver_basic_waits.moc"
