#include "tests/framework/driver_bench.h"
#include "tests/support/log_recorder.h"

#include <QElapsedTimer>
#include <QTest>

#include <memory>

namespace {

const int handler_code = 0x30000077;
const int parse_code = 0x30000055;
const int expected_length = 5;

QStringList lines(const char* text)
{
    return qstrlen(text) ? QStringList(QString::fromLatin1(text)) : QStringList();
}

} // namespace

/// One exchange, called as the slots call it.
class TestDriverBasicExchange : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { bench_.reset(); }
    void readCallsTheHooksInOrder();
    void writeCallsTheHooksInOrder();
    void judgement_data();
    void judgement();
    void defaultHooksNeverSucceed();
    void readyFlagStartsAtZero();
    void notReadyMeansNoResponse();
    void readyWithoutInput();
    void handlerMayReplaceTheResponse();
    void parserMayRefuse();
    void nothingIsSent_data();
    void nothingIsSent();
    void negativeLengthIsNotRefused();
    void pausesBeforeBuilding();
    void negativePauseIsNone();
    void downLink_data();
    void downLink();

private:
    void exchange(QByteArray* data, E_CMD_DIR dir = CMD_READ)
    {
        bench_->driver->doCmdSM(dir, QLatin1String("D7"), 1, 2, data, 9, 3, 4);
    }
    /// Has the wait hook return \a code with \a response waiting on the link.
    void respond(const QByteArray& response, int code);

    std::unique_ptr<DriverBench> bench_;
    TestDriver* driver_ = nullptr;
};

void TestDriverBasicExchange::init()
{
    bench_.reset(new DriverBench(ScriptedDevice::Line::Tcp));
    QVERIFY(bench_->connectLink());
    driver_ = bench_->driver.get();
}

void TestDriverBasicExchange::respond(const QByteArray& response, int code)
{
    driver_->on_build = [](QByteArray*, QByteArray* request) {
        request->append("?");
        return expected_length;
    };
    driver_->on_wait = [this, response, code](int, int* ready) {
        bench_->device.send(response);
        *ready = !response.isEmpty() && driver_->waitForSize(response.size()) ? 1 : 0;
        return code;
    };
}

void TestDriverBasicExchange::readCallsTheHooksInOrder()
{
    QByteArray data;
    exchange(&data);
    QCOMPARE(driver_->takeCalls(),
             (QStringList{QLatin1String("build read D7 1 2 - - 9 3 4"), QLatin1String("wait 4 5 0"),
                          QLatin1String("parse read D7 1 2 - 51000102 410001080b 9 3 4")}));
    QCOMPARE(driver_->error_code_, 0);
    QCOMPARE(data, TestDevice::valuesOf(1, 2));
    QCOMPARE(bench_->device.received(), QByteArray("Q\x00\x01\x02", 4));
}

void TestDriverBasicExchange::writeCallsTheHooksInOrder()
{
    QByteArray data("z!");
    exchange(&data, CMD_WRITE);
    QCOMPARE(
        driver_->takeCalls(),
        (QStringList{QLatin1String("build write D7 1 2 7a21 - 9 3 4"), QLatin1String("wait 4 4 0"),
                     QLatin1String("parse write D7 1 2 7a21 5700017a 4100017a 9 3 4")}));
    QCOMPARE(driver_->error_code_, 0);
    QCOMPARE(data, QByteArray("z!"));
}

void TestDriverBasicExchange::judgement_data()
{
    QTest::addColumn<int>("wait_code");
    QTest::addColumn<int>("received");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("line");
    struct Wait
    {
        const char* name;
        int wait_code;
        int code;
        const char* line;
    };
    const Wait reported[] = {{"stopped", 0x1002, 0x1002, "Dcc_Stop"},
                             {"unit not served", 0x2002, 0x2002, ""},
                             {"no answer in time", 0x400A0000, 0x400A0000, "Command_Timeout"}};
    for (const Wait& wait : reported) {
        for (const int received : {0, 4, 5, 6}) {
            QTest::addRow("%s, %d of 5 bytes", wait.name, received)
                << wait.wait_code << received << false << wait.code
                << QString::fromLatin1(wait.line);
        }
    }
    const Wait others[] = {{"receive failed", 0x400A0002, 0, ""},
                           {"own code", 0x30000001, 0, ""},
                           {"negative code", -1, 0, ""},
                           {"complete", 0, 0, ""}};
    for (const Wait& wait : others) {
        for (const int received : {0, 4, 6}) {
            QTest::addRow("%s, %d of 5 bytes", wait.name, received)
                << wait.wait_code << received << false << 0x20010003
                << QString::fromLatin1("Protocol_Invalid_Length: %1 ( 5 )").arg(received);
        }
        // The length is right and yet the wait failed: the handler's word counts.
        if (wait.wait_code != 0)
            QTest::addRow("%s, 5 of 5 bytes", wait.name)
                << wait.wait_code << 5 << false << handler_code
                << QString::fromLatin1("Warning: recv failed. Should not be here.");
    }
    for (const int wait_code : {0, 0x1002, 0x2002, 0x400A0000, 0x400A0002, 0x30000001}) {
        for (const int received : {0, 4, 5, 6}) {
            QTest::addRow("0x%x, %d of 5 bytes, accepted", uint(wait_code), received)
                << wait_code << received << true << parse_code << QString();
        }
    }
}

void TestDriverBasicExchange::judgement()
{
    QFETCH(int, wait_code);
    QFETCH(int, received);
    QFETCH(bool, accepted);
    QFETCH(int, code);
    QFETCH(QString, line);
    const QByteArray response = QByteArray("response").left(received);
    respond(response, wait_code);
    driver_->on_abnormal = [&](QByteArray*) { return accepted ? 0 : handler_code; };
    driver_->on_parse = [](QByteArray*) { return parse_code; };
    LogRecorder log;
    QByteArray data;
    exchange(&data);
    QCOMPARE(driver_->error_code_, code);
    QCOMPARE(log.lines(), lines(line.toLatin1().constData()));

    const bool complete = wait_code == 0 && received == expected_length;
    const QString hex = bytesText(response);
    QStringList calls{QLatin1String("build read D7 1 2 - - 9 3 4"), QLatin1String("wait 1 5 0")};
    if (!complete)
        calls += QLatin1String("abnormal ") + hex;
    if (complete || accepted)
        calls += QString::fromLatin1("parse read D7 1 2 - 3f %1 9 3 4").arg(hex);
    QCOMPARE(driver_->takeCalls(), calls);
}

void TestDriverBasicExchange::defaultHooksNeverSucceed()
{
    respond(QByteArray(), 0);
    driver_->on_wait = [this](int expected, int* ready) {
        return driver_->DriverBasic::request_send_wait(1, expected, ready);
    };
    LogRecorder log;
    QByteArray data;
    exchange(&data);
    QCOMPARE(driver_->error_code_, 0x20010003);
    QCOMPARE(log.take(), lines("Protocol_Invalid_Length: 0 ( 5 )"));

    // Even where the whole answer is there.
    driver_->on_wait = [this](int expected, int* ready) {
        bench_->device.send("12345");
        *ready = driver_->waitForSize(expected) ? 1 : 0;
        return driver_->DriverBasic::request_send_wait(1, expected, ready);
    };
    driver_->error_code_ = 0;
    exchange(&data);
    QCOMPARE(driver_->error_code_, 0x400A0002);
    QCOMPARE(log.take(), lines("Warning: recv failed. Should not be here."));
    QCOMPARE(driver_->countCalls("parse"), 0);
}

void TestDriverBasicExchange::readyFlagStartsAtZero()
{
    for (int i = 0; i < 3; ++i) {
        QByteArray data;
        exchange(&data);
        QCOMPARE(driver_->error_code_, 0);
        QCOMPARE(driver_->takeCalls().at(1), QString::fromLatin1("wait 4 5 0"));
    }
}

void TestDriverBasicExchange::notReadyMeansNoResponse()
{
    driver_->on_wait = [this](int expected, int*) {
        return driver_->waitForSize(expected) ? 0 : 1;
    };
    LogRecorder log;
    QByteArray data;
    exchange(&data);
    QCOMPARE(driver_->error_code_, 0x20010003);
    QCOMPARE(log.lines(), lines("Protocol_Invalid_Length: 0 ( 5 )"));
    QCOMPARE(driver_->countCalls("abnormal -"), 1);
}

void TestDriverBasicExchange::readyWithoutInput()
{
    for (const int flag : {1, -1}) {
        respond(QByteArray(), 0);
        driver_->on_wait = [flag](int, int* ready) {
            *ready = flag;
            return 0;
        };
        LogRecorder log;
        QByteArray data;
        driver_->error_code_ = 0;
        exchange(&data);
        QCOMPARE(driver_->error_code_, 0x20010003);
        QCOMPARE(log.lines(), lines("Protocol_Invalid_Length: 0 ( 5 )"));
    }
}

void TestDriverBasicExchange::handlerMayReplaceTheResponse()
{
    respond("\x7f", 0);
    driver_->on_abnormal = [](QByteArray* response) {
        *response = "whole";
        return 0;
    };
    driver_->on_parse = [](QByteArray*) { return 0; };
    QByteArray data;
    exchange(&data);
    QCOMPARE(driver_->error_code_, 0);
    QVERIFY(driver_->takeCalls().last().contains(bytesText("whole")));

    // What is left of a refused answer is what is judged and reported.
    driver_->on_abnormal = [](QByteArray* response) {
        response->clear();
        return handler_code;
    };
    LogRecorder log;
    exchange(&data);
    QCOMPARE(log.lines(), lines("Protocol_Invalid_Length: 0 ( 5 )"));
}

void TestDriverBasicExchange::parserMayRefuse()
{
    driver_->on_parse = [](QByteArray* data) {
        data->append("half");
        return parse_code;
    };
    LogRecorder log;
    QByteArray data;
    exchange(&data);
    QCOMPARE(driver_->error_code_, parse_code);
    QCOMPARE(data, QByteArray("half"));
    QVERIFY(log.lines().isEmpty());
}

void TestDriverBasicExchange::nothingIsSent_data()
{
    QTest::addColumn<int>("code_on_entry");
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("code_of_build");
    QTest::addColumn<int>("code");
    QTest::newRow("length 0") << 0 << 0 << 0 << 0x20010003;
    QTest::newRow("build cancels") << 0 << 5 << 0x30000001 << 0x30000001;
    QTest::newRow("build cancels with length 0") << 0 << 0 << 0x30000001 << 0x30000001;
    QTest::newRow("build stops") << 0 << 5 << 0x1002 << 0x1002;
    QTest::newRow("code on entry") << 7 << 5 << 0 << 7;
    QTest::newRow("code on entry and length 0") << 7 << 0 << 0 << 7;
}

void TestDriverBasicExchange::nothingIsSent()
{
    QFETCH(int, code_on_entry);
    QFETCH(int, length);
    QFETCH(int, code_of_build);
    QFETCH(int, code);
    driver_->on_build = [&](QByteArray*, QByteArray* request) {
        request->append("never");
        if (code_of_build != 0)
            driver_->error_code_ = code_of_build;
        return length;
    };
    LogRecorder log;
    QByteArray data;
    driver_->error_code_ = code_on_entry;
    exchange(&data);
    QCOMPARE(driver_->error_code_, code);
    QCOMPARE(driver_->takeCalls().size(), 1); // build alone, even with a code on entry
    QVERIFY(log.lines().isEmpty());

    // What is sent next is the first that the device sees.
    driver_->on_build = nullptr;
    driver_->error_code_ = 0;
    exchange(&data);
    QCOMPARE(driver_->error_code_, 0);
    QCOMPARE(bench_->device.received(), QByteArray("Q\x00\x01\x02", 4));
}

void TestDriverBasicExchange::negativeLengthIsNotRefused()
{
    driver_->on_build = [](QByteArray*, QByteArray* request) {
        request->append("?");
        return -1;
    };
    driver_->on_wait = [](int, int*) { return 0; };
    LogRecorder log;
    QByteArray data;
    exchange(&data);
    QCOMPARE(driver_->error_code_, 0x20010003);
    QCOMPARE(log.lines(), lines("Protocol_Invalid_Length: 0 ( -1 )"));
    QVERIFY(bench_->device.waitForReceived(1));
}

void TestDriverBasicExchange::pausesBeforeBuilding()
{
    const int delay = 50;
    driver_->request_delay_ = delay;
    QElapsedTimer timer;
    timer.start();
    qint64 built_after = -1;
    driver_->on_build = [&](QByteArray*, QByteArray*) {
        built_after = timer.elapsed();
        return 0;
    };
    for (int i = 0; i < 2; ++i) {
        timer.restart();
        QByteArray data;
        driver_->error_code_ = 0;
        exchange(&data);
        QVERIFY2(built_after >= delay - 1, qPrintable(QString::number(built_after)));
    }
}

void TestDriverBasicExchange::negativePauseIsNone()
{
    driver_->request_delay_ = -1;
    QByteArray data;
    exchange(&data);
    QCOMPARE(driver_->error_code_, 0);
}

void TestDriverBasicExchange::downLink_data()
{
    QTest::addColumn<int>("line");
    QTest::newRow("TCP, never connected") << 0;
    QTest::newRow("serial, never opened") << 1;
}

void TestDriverBasicExchange::downLink()
{
    QFETCH(int, line);
    bench_.reset(new DriverBench(lineOf(line)));
    driver_ = bench_->driver.get();
    LogRecorder log;
    QByteArray data;
    exchange(&data);
    QCOMPARE(driver_->error_code_, 0x400A0000);
    QCOMPARE(log.lines(), lines("Command_Timeout")); // and no complaint of Qt's
    QCOMPARE(driver_->takeCalls(),
             (QStringList{QLatin1String("build read D7 1 2 - - 9 3 4"), QLatin1String("wait 4 5 0"),
                          QLatin1String("abnormal -")}));
}

QTEST_GUILESS_MAIN(TestDriverBasicExchange)
#include "tst_driver_basic_exchange.moc"
