#include "tests/support/cloud_process.h"
#include "tests/support/log_recorder.h"
#include "tests/system/plugin.h"

#include <QTest>

namespace {

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

const int client_failure = 0x400F0256;
const QByteArray setpoint = QByteArray::fromHex("4100"); // 65

} // namespace

/// What the host sees while the service goes wrong, and how the driver comes back.
class TestPluginFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void statuses_data();
    void statuses();
    void failuresTheClientDetects_data();
    void failuresTheClientDetects();
    void outageAndRecovery_data();
    void outageAndRecovery();
    void refusedWrite();

private:
    bool connected() const;

    CloudProcess cloud_;
    std::unique_ptr<LogRecorder> log_;
    std::unique_ptr<PluginDriver> host_;
};

void TestPluginFaults::initTestCase()
{
    QVERIFY(cloud_.start());
}

void TestPluginFaults::init()
{
    log_.reset(new LogRecorder);
    host_.reset(new PluginDriver);
    host_->use(cloud_);
    host_->serve("Setpoint", "boiler-setpoint", "16Bit-INT");
    host_->serve("Serial", "boiler-serial", "String");
}

void TestPluginFaults::cleanup()
{
    host_.reset();
    log_.reset();
    cloud_.control("DELETE", "/faults");
}

bool TestPluginFaults::connected() const
{
    return host_->read("Setpoint").bytes == setpoint && host_->read("Setpoint").status == 0;
}

void TestPluginFaults::statuses_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("status");
    QTest::newRow("1") << 1 << 0x400F0001;
    QTest::newRow("3") << 3 << 0x400F0003;
    QTest::newRow("4") << 4 << 0x400F0004;
    QTest::newRow("7") << 7 << 0x400F0007;
    QTest::newRow("8") << 8 << 0x400F0008;
    QTest::newRow("9") << 9 << 0x400F0009;
    QTest::newRow("15") << 15 << 0x400F0015;
    QTest::newRow("255") << 255 << 0x400F0255;
    QTest::newRow("256 is also a code that a service may send") << 256 << client_failure;
}

void TestPluginFaults::statuses()
{
    QFETCH(int, code);
    QFETCH(int, status);
    QVERIFY(cloud_.addFault("errorcode:path=login,code=" + std::to_string(code)) > 0);
    HostSide::setErrorHandling(&host_->link, 4, 1, false, false);
    host_->start();
    QTRY_COMPARE(host_->read("Setpoint").status, status);
}

void TestPluginFaults::failuresTheClientDetects_data()
{
    QTest::addColumn<QByteArray>("fault");
    const char* const faults[] = {"reset",    "reset-mid", "empty",    "truncated",
                                  "not-json", "missing",   "mistyped", "http500-empty"};
    for (const char* fault : faults)
        QTest::newRow(fault) << QByteArray(fault);
}

void TestPluginFaults::failuresTheClientDetects()
{
    QFETCH(QByteArray, fault);
    HostSide::setErrorHandling(&host_->link, 2, 1, false, false);
    host_->start();
    QTRY_VERIFY(connected());
    const int id = cloud_.addFault(fault.toStdString() + ":path=value,item=boiler-serial");
    QVERIFY(id > 0);
    QTRY_COMPARE(host_->read("Setpoint").status, client_failure);
    QVERIFY(cloud_.applied(id) > 0);
    // The last good value stays, under an error status.
    QCOMPARE(host_->read("Setpoint").bytes, setpoint);
    cloud_.control("DELETE", "/faults");
    QTRY_COMPARE(host_->read("Setpoint").status, 0);
}

void TestPluginFaults::outageAndRecovery_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("return_time_en");
    QTest::addColumn<bool>("restore_switch_en");
    QTest::addColumn<QString>("how");
    const QString timer = latin1("timer");
    const QString reads = latin1("reads");
    const QString never = latin1("never");
    QTest::newRow("type 0 by its timer") << 0 << false << false << timer;
    QTest::newRow("type 1 by its return time") << 1 << true << true << timer;
    QTest::newRow("type 1 by the host's reads") << 1 << false << true << reads;
    QTest::newRow("type 1 with nothing enabled") << 1 << false << false << never;
    QTest::newRow("type 2 by its timer") << 2 << false << false << timer;
    QTest::newRow("type 3 by the host's reads") << 3 << false << false << reads;
    QTest::newRow("type 4 not at all") << 4 << true << true << never;
}

void TestPluginFaults::outageAndRecovery()
{
    QFETCH(int, type);
    QFETCH(bool, return_time_en);
    QFETCH(bool, restore_switch_en);
    QFETCH(QString, how);
    HostSide::setErrorHandling(&host_->link, type, 1, return_time_en, restore_switch_en);
    host_->start();
    QTRY_VERIFY(connected());
    QVERIFY(cloud_.addFault("refuse") > 0);
    QTRY_VERIFY(log_->contains("[DrvTovikIot] Update Error Code:  1074725462"));
    QVERIFY(log_->contains("[TOVIK IoT] Post Request Error:  \"Connection refused\""));
    QCOMPARE(host_->read("Setpoint").status, client_failure);
    cloud_.control("DELETE", "/faults");
    log_->take();
    if (how == latin1("timer")) {
        QTRY_VERIFY(log_->contains("[DrvTovikIot] Update Error Code:  0"));
    } else if (how == latin1("reads")) {
        QTRY_VERIFY(host_->read("Setpoint").status == 0);
        QTRY_VERIFY(log_->contains("[DrvTovikIot] Update Error Code:  0"));
        QVERIFY(log_->contains(
            qPrintable(latin1("[DrvTovikIot] Retry by error handle type:  %1").arg(type))));
    } else {
        for (int i = 0; i < 5; ++i)
            QCOMPARE(host_->read("Setpoint").status, client_failure);
        QVERIFY(!log_->contains("[TOVIK IoT] Try Reconnect ... "));
        return;
    }
    QTRY_VERIFY(connected());
    cloud_.control("PUT", "/items/boiler-setpoint", "{\"value\":66}");
    QTRY_COMPARE(host_->read("Setpoint").bytes, QByteArray::fromHex("4200"));
    cloud_.control("PUT", "/items/boiler-setpoint", "{\"value\":65}");
}

/// The service's refusal of a write drops the connection, and the next monitor cycle shows that the
/// written value was never taken.
void TestPluginFaults::refusedWrite()
{
    HostSide::setErrorHandling(&host_->link, 2, 1, false, false);
    host_->start();
    QTRY_VERIFY(connected());
    QTRY_COMPARE(host_->read("Serial").bytes, QByteArray("BX-2041-0077"));
    QCOMPARE(host_->write("Serial", QByteArray("mine")).status, 0);
    QCOMPARE(host_->read("Serial").bytes, QByteArray("mine"));
    QTRY_VERIFY(log_->contains("[TOVIK IoT] SetDataitemValue Error:  8"));
    QTRY_COMPARE(host_->read("Serial").bytes, QByteArray("BX-2041-0077"));
    QTRY_COMPARE(host_->read("Serial").status, 0);
}

QTEST_GUILESS_MAIN(TestPluginFaults)
#include "tst_plugin_faults.moc"
