#include "tests/framework/driver_bench.h"
#include "tests/support/log_recorder.h"

#include <QElapsedTimer>
#include <QTest>

namespace {

const QByteArray request = QByteArray("Q\x01\x02\x03");

QString answerText(const QByteArray& bytes)
{
    return QString::fromLatin1("transparent %1 0x0").arg(bytesText(bytes));
}

const QString no_answer = QLatin1String("transparent - 0x400a0000");

} // namespace

/// Requests that pass through the driver as they are, to real devices.
class TestDriverBasicTransparent : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answered_data();
    void answered();
    void defaultBudgetIsTooShortForTcp();
    void silentDevice_data();
    void silentDevice();
    void serialLineIsLeftAloneWhileItSends();
    void bytesArriveUnchanged_data();
    void bytesArriveUnchanged();
    void emptyRequest();
    void longRequestArrivesWhole();
    void withoutADevice_data();
    void withoutADevice();
    void disconnectedLink_data();
    void disconnectedLink();
    void budgetOfNothing_data();
    void budgetOfNothing();
    void hooksAreNotAsked();
    void lockIsHeldUntilTheAnswer();
    void noMoreAfterAStop();
};

void TestDriverBasicTransparent::answered_data()
{
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("behaviour");
    QTest::addColumn<QByteArray>("answer");
    const QByteArray answer = TestDevice::answerTo(request);
    const char* const lines[] = {"TCP", "serial"};
    for (int line = 0; line < 2; ++line) {
        const auto row = [&](const char* behaviour, const QByteArray& expected) {
            QTest::addRow("%s, %s", lines[line], behaviour)
                << line << QString::fromLatin1(behaviour) << expected;
        };
        row("answers", answer);
        row("too short", answer.left(answer.size() - 1));
        row("too long", answer + '!');
        row("two replies in one", answer + answer);
    }
}

void TestDriverBasicTransparent::answered()
{
    QFETCH(int, line);
    QFETCH(QString, behaviour);
    QFETCH(QByteArray, answer);
    DriverBench bench(lineOf(line));
    QVERIFY(bench.connectLink());
    bench.device.behave(QStringList(behaviour));
    bench.driver->response_timeout_ = 60000;
    bench.driver->error_code_ = 5; // of the request before
    LogRecorder log;
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(bench.transparent(request), QStringList(answerText(answer)));
        QCOMPARE(bench.driver->error_code_, 0);
        QVERIFY(bench.lockIsFree());
    }
    QCOMPARE(bench.device.received(), request + request);
    QVERIFY(log.lines().isEmpty());
}

// Even if the device answers at once: twelve polls of a millisecond do not fit into ten.
void TestDriverBasicTransparent::defaultBudgetIsTooShortForTcp()
{
    DriverBench bench(ScriptedDevice::Line::Tcp);
    QVERIFY(bench.connectLink());
    QCOMPARE(bench.transparent(request), QStringList(no_answer));
    QCOMPARE(bench.driver->error_code_, 0x400A0000);
    QVERIFY(bench.lockIsFree());
    QVERIFY(bench.driver->waitForSize(TestDevice::answerTo(request).size()));

    // What has come too late does not get into the next answer.
    bench.driver->response_timeout_ = 60000;
    QCOMPARE(bench.transparent("Q\x02\x02\x02"),
             QStringList(answerText(TestDevice::answerTo("Q\x02\x02\x02"))));
}

void TestDriverBasicTransparent::silentDevice_data()
{
    QTest::addColumn<int>("line");
    QTest::newRow("TCP") << 0;
    QTest::newRow("serial") << 1;
}

void TestDriverBasicTransparent::silentDevice()
{
    QFETCH(int, line);
    DriverBench bench(lineOf(line));
    QVERIFY(bench.connectLink());
    bench.device.behave(QStringList(QLatin1String("silent")));
    bench.driver->response_timeout_ = 30;
    QCOMPARE(bench.transparent(request), QStringList(no_answer));
    QVERIFY(bench.lockIsFree());
    QVERIFY(bench.device.waitForReceived(request.size()));
    QCOMPARE(bench.device.received(), request);
}

// 100 characters of 1,200 baud take 833 ms, and the silence after them 30.
void TestDriverBasicTransparent::serialLineIsLeftAloneWhileItSends()
{
    DriverBench bench(lineOf(1));
    QVERIFY(bench.connectLink());
    bench.device.behave(QStringList(QLatin1String("silent")));
    bench.serial->setBaudRate(BAUD1200);
    bench.driver->UpdateSerialParameter();
    bench.driver->response_timeout_ = 0;
    QElapsedTimer time;
    time.start();
    QCOMPARE(bench.transparent(QByteArray(100, 'Q')), QStringList(no_answer));
    QVERIFY2(time.elapsed() >= 863, qPrintable(QString::number(time.elapsed())));
}

void TestDriverBasicTransparent::bytesArriveUnchanged_data()
{
    silentDevice_data();
}

void TestDriverBasicTransparent::bytesArriveUnchanged()
{
    QFETCH(int, line);
    QByteArray all;
    for (int i = 0; i < 256; ++i)
        all.append(char(i));
    DriverBench bench(lineOf(line));
    QVERIFY(bench.connectLink());
    bench.device.behave(QStringList(QLatin1String("silent")));
    bench.transparent(all);
    QVERIFY(bench.device.waitForReceived(all.size()));
    QCOMPARE(bench.device.received().toHex(), all.toHex());
}

void TestDriverBasicTransparent::emptyRequest()
{
    DriverBench bench(ScriptedDevice::Line::Tcp);
    QVERIFY(bench.connectLink());
    LogRecorder log;
    QCOMPARE(bench.transparent(QByteArray()), QStringList(no_answer));
    QVERIFY(log.lines().isEmpty());
    bench.driver->response_timeout_ = 60000;
    QCOMPARE(bench.transparent(request), QStringList(answerText(TestDevice::answerTo(request))));
    QCOMPARE(bench.device.received(), request);
}

// More than the kernel takes at once; polling sends the rest.
void TestDriverBasicTransparent::longRequestArrivesWhole()
{
    const QByteArray bytes(4000 * 1000, 'Q');
    DriverBench bench(ScriptedDevice::Line::Tcp);
    QVERIFY(bench.connectLink());
    bench.device.behave(QStringList(QLatin1String("silent")));
    QCOMPARE(bench.transparent(bytes), QStringList(no_answer));
    QTRY_COMPARE_WITH_TIMEOUT(bench.device.received().size(), bytes.size(), 30000);
    QVERIFY(bench.device.received() == bytes);
}

void TestDriverBasicTransparent::withoutADevice_data()
{
    QTest::addColumn<bool>("with_link");
    QTest::newRow("no link was given") << false;
    QTest::newRow("the driver took the device away") << true;
}

void TestDriverBasicTransparent::withoutADevice()
{
    QFETCH(bool, with_link);
    DrvEthernet link;
    TestDriver driver(nullptr, with_link ? &link : nullptr);
    driver.device_ = nullptr;
    Answers answers(&driver);
    for (int i = 0; i < 2; ++i) { // the lock is free again
        driver.error_code_ = 5;
        driver.RunTransparentRequest(request);
        QCOMPARE(answers.take(), QStringList(QLatin1String("transparent - 0x400cffff")));
        QCOMPARE(driver.error_code_, 0x400CFFFF);
    }
}

void TestDriverBasicTransparent::disconnectedLink_data()
{
    silentDevice_data();
}

void TestDriverBasicTransparent::disconnectedLink()
{
    QFETCH(int, line);
    DriverBench bench(lineOf(line));
    bench.driver->response_timeout_ = 20;
    LogRecorder log;
    for (int i = 0; i < 2; ++i)
        QCOMPARE(bench.transparent(request), QStringList(no_answer));
    QVERIFY(log.lines().isEmpty());
    QVERIFY(bench.lockIsFree());
}

void TestDriverBasicTransparent::budgetOfNothing_data()
{
    QTest::addColumn<int>("budget");
    QTest::newRow("0 ms") << 0;
    QTest::newRow("negative") << -1;
}

void TestDriverBasicTransparent::budgetOfNothing()
{
    QFETCH(int, budget);
    DriverBench bench(ScriptedDevice::Line::Tcp);
    QVERIFY(bench.connectLink());
    bench.driver->response_timeout_ = budget;
    QCOMPARE(bench.transparent(request), QStringList(no_answer));
    QVERIFY(bench.device.waitForReceived(request.size())); // it has been sent all the same
}

void TestDriverBasicTransparent::hooksAreNotAsked()
{
    DriverBench bench(ScriptedDevice::Line::Tcp);
    QVERIFY(bench.connectLink());
    bench.driver->response_timeout_ = 60000;
    bench.driver->retry_count_ = 3;
    QStringList units(QLatin1String("{B}"));
    bench.driver->unit_list = &units;
    bench.driver->current_unit_name = QLatin1String("{A}");
    QCOMPARE(bench.transparent(request).size(), 1);
    QVERIFY(bench.driver->takeCalls().isEmpty());
    QCOMPARE(bench.driver->current_unit_name, QString::fromLatin1("{A}"));
}

void TestDriverBasicTransparent::lockIsHeldUntilTheAnswer()
{
    for (const bool connected : {true, false}) {
        DriverBench bench(ScriptedDevice::Line::Tcp);
        if (!connected)
            bench.driver->device_ = nullptr;
        bool free_in_answer = true;
        connect(bench.driver.get(), &DrvInterface::SigTransparentResponse,
                [&] { free_in_answer = bench.lockIsFree(); });
        QCOMPARE(bench.transparent(request).size(), 1);
        QVERIFY(!free_in_answer);
        QVERIFY(bench.lockIsFree());
    }
}

// The stop flag is the host's word about reads and writes; this mode does not ask it.
void TestDriverBasicTransparent::noMoreAfterAStop()
{
    DriverBench bench(ScriptedDevice::Line::Tcp);
    QVERIFY(bench.connectLink());
    bench.driver->stop_flag = 1;
    QCOMPARE(bench.transparent(request), QStringList(no_answer));
    QVERIFY(bench.lockIsFree());
    QVERIFY(bench.read(2).isEmpty());
    QVERIFY(!bench.lockIsFree());
}

QTEST_GUILESS_MAIN(TestDriverBasicTransparent)
#include "tst_driver_basic_transparent.moc"
