#include "framework/driver_basic.h"
#include "tests/framework/driver_bench.h"
#include "tests/support/log_recorder.h"

#include <QTest>

namespace {

/// Settings that no default has, all different.
DrvBase otherSettings(int first)
{
    DrvBase settings;
    settings.request_delay = first;
    settings.response_timeout = first + 1;
    settings.retry_count = first + 2;
    settings.link_param_a = first + 3;
    settings.link_param_b = first + 4;
    return settings;
}

QList<int> settingsOf(const DriverBasic& driver)
{
    return QList<int>{driver.request_delay_, driver.response_timeout_, driver.retry_count_,
                      driver.link_param_a_, driver.link_param_b_};
}

const QList<int> default_settings{0, 10, 0, 0, 255};

} // namespace

class TestDriverBasicConstruction : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // First: later the meta-type is there in any case.
    void registersTheAddressRecord();
    void withoutALink();
    void withASerialLink();
    void withATcpLink();
    void serialLinkWins();
    void defaultsOfTheHooks();
    void signalsReachTheSlots();
    void everySignalReachesOneSlotOnce();
    void offlineDataIsFreed_data();
    void offlineDataIsFreed();
    void destroyedWhileStopped();
};

void TestDriverBasicConstruction::registersTheAddressRecord()
{
    QCOMPARE(QMetaType::type("QSharedPointer<AddrData>"), int(QMetaType::UnknownType));
    const TestDriver driver(nullptr);
    QVERIFY(QMetaType::type("QSharedPointer<AddrData>") != QMetaType::UnknownType);
}

static void verifyTimes(const DriverBasic& driver, float character_time, int interval_timeout,
                        int character_3_5)
{
    QCOMPARE(driver.character_time_, character_time);
    QCOMPARE(driver.interval_timeout_, interval_timeout);
    QCOMPARE(driver.character_3_5_, character_3_5);
}

void TestDriverBasicConstruction::withoutALink()
{
    LogRecorder log;
    TestDriver driver(nullptr);
    QCOMPARE(settingsOf(driver), default_settings);
    verifyTimes(driver, 1.0F, 1, 2);
    QVERIFY(driver.no_link_);
    QVERIFY(!driver.serial_);
    QVERIFY(!driver.ethernet_);
    QVERIFY(!driver.device_);
    QCOMPARE(driver.error_code_, 0);
    QVERIFY(driver.offline_data_.isEmpty());
    QVERIFY(!driver.parent());
    QVERIFY(!driver.IsTransparentModeSupported());
    QVERIFY(driver.request_lock_.tryLock());
    QVERIFY2(!driver.request_lock_.tryLock(), "the lock is recursive");
    driver.request_lock_.unlock();
    QVERIFY(log.lines().isEmpty());
}

void TestDriverBasicConstruction::withASerialLink()
{
    LogRecorder log;
    DrvSerial link;
    static_cast<DrvBase&>(link) = otherSettings(20);
    TestDriver driver(&link);
    QCOMPARE(settingsOf(driver), (QList<int>{20, 21, 22, 23, 24}));
    verifyTimes(driver, 10000.0F / 9600.0F, 1, 4);
    QVERIFY(!driver.no_link_);
    QCOMPARE(driver.serial_, &link);
    QVERIFY(!driver.ethernet_);
    QCOMPARE(driver.device_, static_cast<QIODevice*>(&link));
    QCOMPARE(driver.error_code_, 0);
    QCOMPARE(log.lines(), (QStringList{QLatin1String("[DriverBasic] interval_timeout_: 1"),
                                       QLatin1String("[DriverBasic] character_3_5_: 4")}));
    QVERIFY(driver.takeCalls().isEmpty()); // the derived driver does not exist at that time
}

void TestDriverBasicConstruction::withATcpLink()
{
    LogRecorder log;
    DrvEthernet link;
    static_cast<DrvBase&>(link) = otherSettings(30);
    TestDriver driver(nullptr, &link);
    QCOMPARE(settingsOf(driver), (QList<int>{30, 31, 32, 33, 34}));
    verifyTimes(driver, 1.0F, 1, 2);
    QVERIFY(!driver.no_link_);
    QVERIFY(!driver.serial_);
    QCOMPARE(driver.ethernet_, &link);
    QCOMPARE(driver.device_, static_cast<QIODevice*>(&link));
    QVERIFY(log.lines().isEmpty());
}

void TestDriverBasicConstruction::serialLinkWins()
{
    LogRecorder log;
    DrvSerial serial;
    DrvEthernet ethernet;
    static_cast<DrvBase&>(serial) = otherSettings(20);
    static_cast<DrvBase&>(ethernet) = otherSettings(30);
    TestDriver driver(&serial, &ethernet);
    QCOMPARE(settingsOf(driver), (QList<int>{20, 21, 22, 23, 24}));
    QCOMPARE(driver.device_, static_cast<QIODevice*>(&serial));
    QCOMPARE(driver.serial_, &serial);
    QCOMPARE(driver.ethernet_, &ethernet);
    QCOMPARE(log.lines().size(), 2);
}

void TestDriverBasicConstruction::defaultsOfTheHooks()
{
    TestDriver driver(nullptr);
    DriverBasic& base = driver;
    for (const int selector : {-1, 0, 7}) {
        QCOMPARE(base.GetCmdCode(selector, QString()), -1);
        QCOMPARE(base.GetCmdCode(selector, QLatin1String("key")), -1);
        QVERIFY(!base.GetOffLineRawData(selector));
    }
    QByteArray bytes("bytes");
    QCOMPARE(base.DriverBasic::recv_abnormal_handler(&bytes), 0x400A0002);
    QCOMPARE(bytes, QByteArray("bytes"));
    int ready = 77;
    QCOMPARE(base.DriverBasic::request_send_wait(1, 2, &ready), 0x400A0002);
    QCOMPARE(ready, 77);
    base.DriverBasic::doCmdSM_Offline(CMD_READ, QString(), 0, 0, &bytes, 0, 0, 0);
    QCOMPARE(bytes, QByteArray("bytes"));
    QCOMPARE(driver.error_code_, 0);
}

void TestDriverBasicConstruction::signalsReachTheSlots()
{
    TestDriver driver(nullptr);
    Answers answers(&driver);
    Q_EMIT driver.SigGetValuesByteArray(QLatin1String("unit"), QLatin1String("link"), 9,
                                        someAddress(2));
    QCOMPARE(driver.takeCalls(), QStringList(QLatin1String("offline read D7 1 2 - 9 3 4")));
    QCOMPARE(answers.take(), QStringList(QLatin1String("unit link - 0x0")));
    Q_EMIT driver.SigSetValuesByteArray(QLatin1String("unit"), QLatin1String("link"), 9, "ab",
                                        someAddress(2));
    QCOMPARE(driver.takeCalls(), QStringList(QLatin1String("offline write D7 1 2 6162 9 3 4")));
    QCOMPARE(answers.take(), QStringList(QLatin1String("unit link 6162 0x0")));
}

void TestDriverBasicConstruction::everySignalReachesOneSlotOnce()
{
    DrvSerial serial;
    DrvEthernet ethernet;
    LogRecorder log;
    TestDriver driver(&serial, &ethernet);
    serial.retry_count = 5;
    Q_EMIT driver.SigUpdateDrvSerial();
    QCOMPARE(driver.retry_count_, 5);
    QCOMPARE(driver.takeCalls(), QStringList(QLatin1String("update serial")));
    ethernet.retry_count = 6;
    Q_EMIT driver.SigUpdateDrvEthernet();
    QCOMPARE(driver.retry_count_, 6);
    QVERIFY(driver.takeCalls().isEmpty());
    // Nobody answers those that the framework does not serve.
    Answers answers(&driver);
    Q_EMIT driver.SigGetValuesByteArrayMix(QString(), QString(), 0, QList<DataElementGroup>());
    Q_EMIT driver.SigTovikInternalCmd(0, 0, 0, QByteArray());
    QVERIFY(answers.take().isEmpty());
    QVERIFY(driver.takeCalls().isEmpty());
}

void TestDriverBasicConstruction::offlineDataIsFreed_data()
{
    QTest::addColumn<int>("stations");
    QTest::addColumn<int>("keys");
    QTest::addColumn<bool>("with_null_bytes");
    QTest::addColumn<bool>("with_null_map");
    QTest::newRow("nothing") << 0 << 0 << false << false;
    QTest::newRow("stations without keys") << 2 << 0 << false << false;
    QTest::newRow("stations with keys") << 3 << 4 << false << false;
    QTest::newRow("null byte arrays") << 2 << 2 << true << false;
    QTest::newRow("null map") << 2 << 2 << false << true;
}

// What is not freed, the address sanitizer's build reports.
void TestDriverBasicConstruction::offlineDataIsFreed()
{
    QFETCH(int, stations);
    QFETCH(int, keys);
    QFETCH(bool, with_null_bytes);
    QFETCH(bool, with_null_map);
    auto* driver = new TestDriver(nullptr);
    for (int station = 0; station < stations; ++station) {
        auto* data = new QMap<QString, QByteArray*>;
        for (int key = 0; key < keys; ++key)
            data->insert(QString::number(key), new QByteArray(100, 'x'));
        if (with_null_bytes)
            data->insert(QLatin1String("null"), nullptr);
        driver->offline_data_.insert(station, data);
    }
    if (with_null_map)
        driver->offline_data_.insert(-1, nullptr);
    int destroyed = 0;
    connect(driver, &QObject::destroyed, [&] { ++destroyed; });
    const DrvInterface* as_hosts_do = driver;
    delete as_hosts_do;
    QCOMPARE(destroyed, 1);
}

void TestDriverBasicConstruction::destroyedWhileStopped()
{
    LogRecorder log;
    DriverBench bench(ScriptedDevice::Line::Tcp);
    bench.driver->stop_flag = 1;
    QVERIFY(bench.read(2).isEmpty());
    QVERIFY(!bench.lockIsFree());
    bench.driver.reset();
    QVERIFY2(log.lines().isEmpty(), qPrintable(log.lines().join(QLatin1Char('\n'))));
}

QTEST_GUILESS_MAIN(TestDriverBasicConstruction)
#include "tst_driver_basic_construction.moc"
