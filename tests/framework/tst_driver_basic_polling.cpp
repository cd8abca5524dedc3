#include "tests/framework/test_driver.h"
#include "tests/support/log_recorder.h"

#include <QElapsedTimer>
#include <QMap>
#include <QTest>

#include <algorithm>

namespace {

/// A device whose bytes arrive at polls that the test chooses, whatever the time.
class PolledDevice : public QIODevice
{
public:
    PolledDevice() { open(QIODevice::ReadWrite | QIODevice::Unbuffered); }

    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override { return waiting_.size(); }
    bool waitForReadyRead(int milliseconds) override
    {
        if (milliseconds == 0) // no poll: this only asks for what is there
            return false;
        waited_longest = qMax(waited_longest, milliseconds);
        if (polls == 0 && since_written.isValid())
            before_first_poll = since_written.elapsed();
        const QByteArray bytes = arrivals.value(++polls) + each_poll;
        waiting_ += bytes;
        return !bytes.isEmpty();
    }

    qint64 bytesToWrite() const override { return unsent; }
    bool waitForBytesWritten(int milliseconds) override
    {
        waits_for_sending += milliseconds;
        return --unsent >= 0;
    }

    /// What arrives, by the number of the poll; the first is 1.
    QMap<int, QByteArray> arrivals;
    /// What arrives with every poll.
    QByteArray each_poll;
    QByteArray written;
    int polls = 0;
    int waited_longest = 0;
    /// Goes down by one with each wait for it.
    int unsent = 0;
    QList<int> waits_for_sending;
    QElapsedTimer since_written;
    qint64 before_first_poll = -1;

protected:
    qint64 readData(char* data, qint64 max_size) override
    {
        const QByteArray bytes = waiting_.left(int(max_size));
        waiting_.remove(0, bytes.size());
        std::copy(bytes.begin(), bytes.end(), data);
        return bytes.size();
    }
    qint64 writeData(const char* data, qint64 size) override
    {
        written.append(data, int(size));
        since_written.start();
        return size;
    }

private:
    QByteArray waiting_;
};

using Arrivals = QMap<int, QByteArray>;

} // namespace

/// When the answer to a transparent request counts as complete, poll by poll.
class TestDriverBasicPolling : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void outcome_data();
    void outcome();
    void endlessAnswer_data();
    void endlessAnswer();
    void intervalOfNothing_data();
    void intervalOfNothing();
    void tcpWaitsUntilTheRequestIsSent();
    void serialPausesForTheRequestsTime();
};

void TestDriverBasicPolling::outcome_data()
{
    QTest::addColumn<bool>("is_serial");
    QTest::addColumn<int>("interval");
    QTest::addColumn<int>("budget");
    QTest::addColumn<Arrivals>("arrivals");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<int>("polls");
    const QString none = QLatin1String("transparent - 0x400a0000");
    const QString abc = QLatin1String("transparent 616263 0x0");
    const Arrivals at_once{{1, "abc"}};
    // One poll sees the bytes, eleven that nothing has changed; budget must be left behind them.
    QTest::newRow("TCP, default budget") << false << 1 << 10 << at_once << none << 10;
    QTest::newRow("TCP, budget just used up") << false << 1 << 12 << at_once << none << 12;
    QTest::newRow("TCP, budget just enough") << false << 1 << 13 << at_once << abc << 12;
    QTest::newRow("TCP, plenty of budget") << false << 1 << 1000 << at_once << abc << 12;
    QTest::newRow("TCP, polls of 3 ms, used up") << false << 3 << 36 << at_once << none << 12;
    QTest::newRow("TCP, polls of 3 ms, enough") << false << 3 << 37 << at_once << abc << 12;
    QTest::newRow("TCP, budget ends between polls") << false << 3 << 35 << at_once << none << 12;
    QTest::newRow("serial, budget just used up") << true << 1 << 52 << at_once << none << 52;
    QTest::newRow("serial, budget just enough") << true << 1 << 53 << at_once << abc << 52;
    QTest::newRow("serial, TCP's budget") << true << 1 << 13 << at_once << none << 13;

    const Arrivals late{{20, "abc"}};
    QTest::newRow("TCP, late") << false << 1 << 32 << late << abc << 31;
    QTest::newRow("TCP, too late") << false << 1 << 31 << late << none << 31;
    QTest::newRow("TCP, never") << false << 1 << 15 << Arrivals() << none << 15;
    // Silence before the first byte is not stability, however long.
    const Arrivals late_and_split{{20, "a"}, {25, "bc"}};
    QTest::newRow("TCP, late and split") << false << 1 << 100 << late_and_split << abc << 36;
    const Arrivals split{{1, "a"}, {12, "b"}, {23, "c"}};
    QTest::newRow("TCP, bytes as far apart as may be") << false << 1 << 100 << split << abc << 34;
    const Arrivals too_far{{1, "abc"}, {13, "d"}};
    QTest::newRow("TCP, a byte too far after") << false << 1 << 100 << too_far << abc << 12;
    const Arrivals serial_split{{1, "a"}, {52, "bc"}};
    QTest::newRow("serial, bytes as far apart as may be")
        << true << 1 << 200 << serial_split << abc << 103;
    const Arrivals serial_too_far{{1, "abc"}, {53, "d"}};
    QTest::newRow("serial, a byte too far after")
        << true << 1 << 200 << serial_too_far << abc << 52;
}

void TestDriverBasicPolling::outcome()
{
    QFETCH(bool, is_serial);
    QFETCH(int, interval);
    QFETCH(int, budget);
    QFETCH(Arrivals, arrivals);
    QFETCH(QString, answer);
    QFETCH(int, polls);
    LogRecorder log;
    DrvSerial serial;
    DrvEthernet ethernet;
    TestDriver driver(is_serial ? &serial : nullptr, &ethernet);
    PolledDevice device;
    device.arrivals = arrivals;
    driver.device_ = &device;
    driver.interval_timeout_ = interval;
    driver.response_timeout_ = budget;
    Answers answers(&driver);
    driver.RunTransparentRequest("request");
    QCOMPARE(answers.take(), QStringList(answer));
    QCOMPARE(device.polls, polls);
    QCOMPARE(device.waited_longest, interval);
    QCOMPARE(device.written, QByteArray("request"));
}

void TestDriverBasicPolling::endlessAnswer_data()
{
    QTest::addColumn<bool>("is_serial");
    QTest::newRow("TCP") << false;
    QTest::newRow("serial") << true;
}

void TestDriverBasicPolling::endlessAnswer()
{
    QFETCH(bool, is_serial);
    LogRecorder log;
    DrvSerial serial;
    DrvEthernet ethernet;
    TestDriver driver(is_serial ? &serial : nullptr, &ethernet);
    PolledDevice device;
    device.each_poll = "x";
    driver.device_ = &device;
    driver.response_timeout_ = 100;
    Answers answers(&driver);
    driver.RunTransparentRequest("request");
    QCOMPARE(answers.take(), QStringList(QLatin1String("transparent - 0x400a0000")));
    QCOMPARE(device.polls, 100);
    QVERIFY(driver.request_lock_.tryLock());
    driver.request_lock_.unlock();
}

void TestDriverBasicPolling::intervalOfNothing_data()
{
    QTest::addColumn<int>("interval");
    QTest::newRow("0 ms") << 0;
    QTest::newRow("negative") << -5;
}

// A derived driver may have computed it; the budget is used up all the same.
void TestDriverBasicPolling::intervalOfNothing()
{
    QFETCH(int, interval);
    DrvEthernet ethernet;
    TestDriver driver(nullptr, &ethernet);
    PolledDevice device;
    driver.device_ = &device;
    driver.interval_timeout_ = interval;
    Answers answers(&driver);
    driver.RunTransparentRequest("request");
    QCOMPARE(answers.take(), QStringList(QLatin1String("transparent - 0x400a0000")));
    QCOMPARE(device.polls, 10);
}

void TestDriverBasicPolling::tcpWaitsUntilTheRequestIsSent()
{
    DrvEthernet ethernet;
    TestDriver driver(nullptr, &ethernet);
    PolledDevice device;
    device.unsent = 2;
    driver.device_ = &device;
    driver.RunTransparentRequest("request");
    QVERIFY(!device.waits_for_sending.isEmpty());
    for (const int wait : device.waits_for_sending)
        QVERIFY(wait > 0 && wait <= 100);
}

// The line needs 3.5 characters of silence and the time of the request itself.
void TestDriverBasicPolling::serialPausesForTheRequestsTime()
{
    LogRecorder log;
    DrvSerial serial;
    TestDriver driver(&serial);
    PolledDevice device;
    device.unsent = 1;
    driver.device_ = &device;
    driver.character_3_5_ = 20;
    driver.character_time_ = 5.0F;
    driver.RunTransparentRequest("ten bytes.");
    QVERIFY2(device.before_first_poll >= 69, qPrintable(QString::number(device.before_first_poll)));
    QVERIFY(device.waits_for_sending.isEmpty());
}

QTEST_GUILESS_MAIN(TestDriverBasicPolling)
#include "tst_driver_basic_polling.moc"
