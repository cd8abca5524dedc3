#include "tests/framework/driver_bench.h"
#include "tests/support/traffic_log.h"

#include <QDateTime>
#include <QTest>

namespace {

QString latin1(const char* text)
{
    return QLatin1String(text);
}

/// "sent", "taken" or so, of \a bytes.
QString line(const char* word, const QByteArray& bytes)
{
    return QString::fromLatin1("%1 %2").arg(latin1(word), QString::fromLatin1(bytes.toHex()));
}

const QByteArray first_request("Q\0\1\2", 4);

} // namespace

/// What a listener hears of an exchange.
class TestDriverBasicTraffic : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void init();
    void cleanup();
    void exchange();
    void momentsAreNow();
    void everyAttempt();
    void refusedRequest();
    void nothingLeavesOnALinkThatIsDown();
    void whatCameBefore();
    void transparentMode();
    void whatADriverTakesItself();
    void listenerOfTheLink();
    void nobodyListens();
    void withoutALink();

private:
    bool listen();

    TrafficLog log_;
    std::unique_ptr<DriverBench> bench_;
};

void TestDriverBasicTraffic::initTestCase_data()
{
    QTest::addColumn<int>("line");
    QTest::newRow("TCP") << 0;
    QTest::newRow("serial") << 1;
}

void TestDriverBasicTraffic::init()
{
    QFETCH_GLOBAL(int, line);
    log_.takeLines();
    bench_.reset(new DriverBench(lineOf(line)));
}

void TestDriverBasicTraffic::cleanup()
{
    bench_.reset();
}

bool TestDriverBasicTraffic::listen()
{
    bench_->driver->setTrafficListener(&log_);
    return bench_->connectLink();
}

void TestDriverBasicTraffic::exchange()
{
    QVERIFY(listen());
    QCOMPARE(bench_->read(2).size(), 1);
    QCOMPARE(log_.takeLines(), QStringList({line("sent", first_request),
                                            line("taken", TestDevice::answerTo(first_request)),
                                            latin1("ended 0x0")}));
    QCOMPARE(bench_->write("x").size(), 1);
    const QByteArray written("W\0\2x", 4);
    QCOMPARE(log_.takeLines(),
             QStringList({line("sent", written), line("taken", TestDevice::answerTo(written)),
                          latin1("ended 0x0")}));
}

void TestDriverBasicTraffic::momentsAreNow()
{
    QVERIFY(listen());
    const int heard_before = log_.all().size();
    const qint64 before = QDateTime::currentMSecsSinceEpoch() * 1000;
    bench_->read(2);
    const qint64 after = (QDateTime::currentMSecsSinceEpoch() + 1) * 1000;
    const QList<Traffic> heard = log_.all().mid(heard_before);
    QCOMPARE(heard.size(), 3);
    QVERIFY(before <= heard.at(0).time);
    QVERIFY(heard.at(0).time <= heard.at(1).time);
    QVERIFY(heard.at(1).time <= heard.at(2).time);
    QVERIFY(heard.at(2).time <= after);
}

void TestDriverBasicTraffic::everyAttempt()
{
    QVERIFY(listen());
    bench_->driver->retry_count_ = 1;
    bench_->driver->time_limit = 500; // for an answer on a busy machine
    bench_->device.behave({latin1("silent"), latin1("answers")});
    bench_->read(2);
    const QByteArray second_request("Q\0\2\2", 4);
    QCOMPARE(log_.takeLines(), QStringList({line("sent", first_request), latin1("ended 0x400a0000"),
                                            line("sent", second_request),
                                            line("taken", TestDevice::answerTo(second_request)),
                                            latin1("ended 0x0")}));
}

void TestDriverBasicTraffic::refusedRequest()
{
    QVERIFY(listen());
    bench_->driver->on_build = [](QByteArray*, QByteArray*) { return 0; };
    bench_->read(2);
    QCOMPARE(log_.takeLines(), QStringList(latin1("ended 0x20010003")));
}

void TestDriverBasicTraffic::nothingLeavesOnALinkThatIsDown()
{
    bench_->driver->setTrafficListener(&log_);
    bench_->driver->on_wait = [](int, int*) { return 0x400A0000; };
    bench_->read(2);
    QCOMPARE(log_.takeLines(), QStringList(latin1("ended 0x400a0000")));
}

void TestDriverBasicTraffic::whatCameBefore()
{
    QVERIFY(listen());
    bench_->device.send("stale");
    QVERIFY(bench_->waitInKernel(5));
    bench_->read(2);
    QCOMPARE(log_.takeLines().value(0), line("discarded", "stale"));
    QCOMPARE(bench_->device.requests().size(), 1);
}

void TestDriverBasicTraffic::transparentMode()
{
    QVERIFY(listen());
    bench_->driver->response_timeout_ = 5000;
    QCOMPARE(bench_->transparent(first_request).size(), 1);
    QCOMPARE(log_.takeLines(), QStringList({line("sent", first_request),
                                            line("taken", TestDevice::answerTo(first_request)),
                                            latin1("ended 0x0")}));
}

void TestDriverBasicTraffic::whatADriverTakesItself()
{
    QVERIFY(listen());
    QCOMPARE(bench_->driver->takeInput(), QByteArray());
    QCOMPARE(log_.takeLines(), QStringList());
    bench_->device.send("by itself");
    QVERIFY(bench_->waitInQt(9));
    QCOMPARE(bench_->driver->takeInput(), QByteArray("by itself"));
    QCOMPARE(log_.takeLines(), QStringList(line("taken", "by itself")));
}

// As a host gives it that has no more of the driver than its interface.
void TestDriverBasicTraffic::listenerOfTheLink()
{
    QCOMPARE(traffic::listenerOf(bench_->settings()), static_cast<TrafficListener*>(nullptr));
    traffic::setListener(&bench_->settings(), &log_);
    QCOMPARE(traffic::listenerOf(bench_->settings()), static_cast<TrafficListener*>(&log_));
    QVERIFY(bench_->connectLink());
    bench_->read(2);
    QCOMPARE(log_.takeLines().size(), 3);
}

void TestDriverBasicTraffic::nobodyListens()
{
    QVERIFY(listen());
    bench_->settings().driver_specific_data[latin1("other")] = 7;
    bench_->driver->setTrafficListener(nullptr);
    bench_->read(2);
    QCOMPARE(log_.takeLines(), QStringList());
    // Nor does asking who listens leave anything with the host's settings.
    QCOMPARE(QStringList(bench_->settings().driver_specific_data.keys()),
             QStringList(latin1("other")));
}

void TestDriverBasicTraffic::withoutALink()
{
    TestDriver driver(nullptr);
    driver.setTrafficListener(&log_);
    QCOMPARE(driver.takeInput(), QByteArray());
    driver.RunTransparentRequest("x");
    QCOMPARE(log_.takeLines(), QStringList());
}

QTEST_GUILESS_MAIN(TestDriverBasicTraffic)
#include "tst_driver_basic_traffic.moc"
