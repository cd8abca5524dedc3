#include "tests/support/cloud_process.h"
#include "tests/support/log_recorder.h"
#include "tests/system/plugin.h"

#include <QTest>

namespace {

const QByteArray setpoint = QByteArray::fromHex("4100"); // 65
const int patience = 60000; // ms; an emulated driver on a busy machine takes many

} // namespace

/// A driver that polls while the service changes its mind about TLS sessions.
class TestPluginResumption : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void requestsAreResumed();
    void goesOn_data();
    void goesOn();

private:
    int requests();
    bool connected() const;

    CloudProcess cloud_;
    std::unique_ptr<LogRecorder> log_;
    std::unique_ptr<PluginDriver> host_;
};

void TestPluginResumption::initTestCase()
{
    QVERIFY(cloud_.start());
}

void TestPluginResumption::init()
{
    log_.reset(new LogRecorder);
    host_.reset(new PluginDriver);
    host_->use(cloud_);
    host_->serve("Setpoint", "boiler-setpoint", "16Bit-INT");
    HostSide::setErrorHandling(&host_->link, 2, 1, false, false);
    host_->start();
    QTRY_VERIFY_WITH_TIMEOUT(connected(), patience);
}

void TestPluginResumption::cleanup()
{
    host_.reset();
    log_.reset();
    cloud_.control("DELETE", "/faults");
}

/// Reads that the service has answered.
int TestPluginResumption::requests()
{
    return cloud_.control("GET", "/status").json.at("requests").value("value", 0);
}

bool TestPluginResumption::connected() const
{
    const DriverAnswer answer = host_->read("Setpoint");
    return answer.bytes == setpoint && answer.status == 0;
}

void TestPluginResumption::requestsAreResumed()
{
    const auto records = cloud_.control("GET", "/requests").json.at("requests");
    QVERIFY(records.size() >= 3);
    QCOMPARE(records.front().at("resumed").get<bool>(), false);
    for (std::size_t i = 1; i < records.size(); ++i)
        QVERIFY2(records[i].at("resumed").get<bool>(), records[i].dump().c_str());
}

void TestPluginResumption::goesOn_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<bool>("fails_once");
    QTest::newRow("the service forgets its tickets") << QByteArray("tickets-lost") << false;
    QTest::newRow("it offers none") << QByteArray("no-tickets") << false;
    QTest::newRow("it closes every resumption") << QByteArray("resume-close") << true;
    QTest::newRow("it resets a resumed connection")
        << QByteArray("resume-reset") << false; // TLS 1.3: Qt tries again
    QTest::newRow("it shows another certificate") << QByteArray("wrong-host") << false;
    QTest::newRow("it goes back to TLS 1.2") << QByteArray("tls-version:version=1.2") << false;
}

void TestPluginResumption::goesOn()
{
    QFETCH(QByteArray, fault);
    QFETCH(bool, fails_once);
    const int id = cloud_.addFault(fault.toStdString());
    QVERIFY(id > 0);
    QTRY_VERIFY_WITH_TIMEOUT(cloud_.applied(id) > 0, patience);
    const int before = requests();
    QTRY_VERIFY_WITH_TIMEOUT(requests() >= before + 2, patience);
    QTRY_VERIFY_WITH_TIMEOUT(connected(), patience);
    QCOMPARE(log_->count("[TOVIK IoT] Stop monitor!"), fails_once ? 1 : 0);
}

QTEST_GUILESS_MAIN(TestPluginResumption)
#include "tst_plugin_resumption.moc"
