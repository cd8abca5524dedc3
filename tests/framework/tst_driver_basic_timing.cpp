#include "tests/framework/test_driver.h"
#include "tests/support/log_recorder.h"

#include <QElapsedTimer>
#include <QTest>

#include <cstring>

namespace {

const BaudRateType all_baud_rates[] = {BAUD50,    BAUD75,     BAUD110,    BAUD134,    BAUD150,
                                       BAUD200,   BAUD300,    BAUD600,    BAUD1200,   BAUD1800,
                                       BAUD2400,  BAUD4800,   BAUD9600,   BAUD19200,  BAUD38400,
                                       BAUD57600, BAUD115200, BAUD230400, BAUD460800, BAUD921600};

QStringList logOf(int interval_timeout, int character_3_5)
{
    return QStringList{
        QString::fromLatin1("[DriverBasic] interval_timeout_: %1").arg(interval_timeout),
        QString::fromLatin1("[DriverBasic] character_3_5_: %1").arg(character_3_5)};
}

/// The whole milliseconds of \a half_characters, 1.5 or 3.5 characters counted in halves.
int wholeMilliseconds(float character_time, int half_characters)
{
    return int(double(character_time) * half_characters / 2);
}

} // namespace

/// The times of a serial line, and settings that change.
class TestDriverBasicTiming : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void computedByHand_data();
    void computedByHand();
    void everyFormOfCharacter_data();
    void everyFormOfCharacter();
    void serialSettingsAreReadAgain();
    void ethernetSettingsAreReadAgain();
    void withoutTheLinkNothingHappens();
    void eachLinkHasItsOwnSettings();
    void pause_data();
    void pause();
    void stopFlag_data();
    void stopFlag();
};

void TestDriverBasicTiming::computedByHand_data()
{
    QTest::addColumn<int>("baud_rate");
    QTest::addColumn<int>("data_bits");
    QTest::addColumn<int>("parity");
    QTest::addColumn<int>("stop_bits");
    QTest::addColumn<float>("character_time");
    QTest::addColumn<int>("interval_timeout");
    QTest::addColumn<int>("character_3_5");
    const auto row = [](const char* name, int baud_rate, int data_bits, int parity, int stop_bits,
                        float character_time, int interval_timeout, int character_3_5) {
        QTest::newRow(name) << baud_rate << data_bits << parity << stop_bits << character_time
                            << interval_timeout << character_3_5;
    };
    row("9600 8N1, the default", 9600, 8, PAR_NONE, STOP_1, 1.0416666F, 1, 4);
    row("slowest", 50, 8, PAR_NONE, STOP_1, 200.0F, 300, 701);
    row("longest character", 50, 8, PAR_EVEN, STOP_2, 240.0F, 360, 841);
    row("shortest character", 2400, 5, PAR_NONE, STOP_1, 2.9166667F, 4, 11);
    row("parity counts", 19200, 8, PAR_EVEN, STOP_1, 0.5729167F, 1, 3);
    row("two stop bits and parity count", 9600, 8, PAR_ODD, STOP_2, 1.25F, 1, 5);
    row("one and a half stop bits count as two", 9600, 8, PAR_NONE, STOP_1_5, 1.1458334F, 1, 5);
    row("raised to the least", 115200, 8, PAR_NONE, STOP_1, 0.08680556F, 1, 2);
    row("no rate counts as one", 0, 8, PAR_NONE, STOP_1, 10000.0F, 15000, 35001);
    row("fastest", 921600, 8, PAR_NONE, STOP_1, 0.010850694F, 1, 2);
    row("cut, not rounded", 1200, 8, PAR_NONE, STOP_1, 8.333333F, 12, 30);
    // A third is a little less than a third in single precision: 49.99999... ms, not 50.
    row("single precision", 300, 7, PAR_EVEN, STOP_1, 33.333332F, 49, 117);
}

void TestDriverBasicTiming::computedByHand()
{
    QFETCH(int, baud_rate);
    QFETCH(int, data_bits);
    QFETCH(int, parity);
    QFETCH(int, stop_bits);
    QFETCH(float, character_time);
    QFETCH(int, interval_timeout);
    QFETCH(int, character_3_5);
    DrvSerial link;
    link.setBaudRate(BaudRateType(baud_rate));
    link.setDataBits(DataBitsType(data_bits));
    link.setParity(ParityType(parity));
    link.setStopBits(StopBitsType(stop_bits));
    LogRecorder log;
    const TestDriver driver(&link);
    QCOMPARE(driver.character_time_, character_time);
    QCOMPARE(driver.interval_timeout_, interval_timeout);
    QCOMPARE(driver.character_3_5_, character_3_5);
    QCOMPARE(log.lines(), logOf(interval_timeout, character_3_5));
}

void TestDriverBasicTiming::everyFormOfCharacter_data()
{
    QTest::addColumn<int>("data_bits");
    QTest::addColumn<int>("parity");
    QTest::addColumn<int>("stop_bits");
    QTest::addColumn<int>("bits");
    const char* const parities[] = {"no", "odd", "even", "mark", "space"};
    const char* const stops[] = {"1", "1.5", "2"};
    for (int data_bits = 5; data_bits <= 8; ++data_bits) {
        for (int parity = PAR_NONE; parity <= PAR_SPACE; ++parity) {
            for (int stop_bits = STOP_1; stop_bits <= STOP_2; ++stop_bits) {
                QTest::addRow("%d data bits, %s parity, %s stop bits", data_bits, parities[parity],
                              stops[stop_bits])
                    << data_bits << parity << stop_bits
                    << data_bits + (parity > 0 ? 2 : 1) + (stop_bits > 0 ? 2 : 1);
            }
        }
    }
}

void TestDriverBasicTiming::everyFormOfCharacter()
{
    QFETCH(int, data_bits);
    QFETCH(int, parity);
    QFETCH(int, stop_bits);
    QFETCH(int, bits);
    LogRecorder log;
    DrvSerial link;
    link.setDataBits(DataBitsType(data_bits));
    link.setParity(ParityType(parity));
    link.setStopBits(StopBitsType(stop_bits));
    TestDriver driver(&link);
    for (const BaudRateType baud_rate : all_baud_rates) {
        link.setBaudRate(baud_rate);
        log.take();
        driver.UpdateSerialParameter();
        const float character_time = float(bits * 1000) / float(baud_rate);
        const int interval_timeout = qMax(1, wholeMilliseconds(character_time, 3));
        const int character_3_5 = qMax(2, int(double(character_time) * 3.5 + 1.0));
        QCOMPARE(driver.character_time_, character_time);
        QCOMPARE(driver.interval_timeout_, interval_timeout);
        QCOMPARE(driver.character_3_5_, character_3_5);
        QCOMPARE(log.take(), logOf(interval_timeout, character_3_5));
    }
}

static void change(DrvBase* link)
{
    link->request_delay = 11;
    link->response_timeout = 12;
    link->retry_count = 13;
    link->link_param_a = 14;
    link->link_param_b = 15;
}

static QList<int> settingsOf(const DriverBasic& driver)
{
    return QList<int>{driver.request_delay_, driver.response_timeout_, driver.retry_count_,
                      driver.link_param_a_, driver.link_param_b_};
}

static const QList<int> changed{11, 12, 13, 14, 15};
static const QList<int> unchanged{0, 10, 0, 0, 255};

void TestDriverBasicTiming::serialSettingsAreReadAgain()
{
    LogRecorder log;
    DrvSerial link;
    TestDriver driver(&link);
    change(&link);
    link.setBaudRate(BAUD2400);
    log.take();
    QCOMPARE(settingsOf(driver), unchanged); // until the host says so
    QCOMPARE(driver.interval_timeout_, 1);
    Q_EMIT driver.SigUpdateDrvSerial();
    QCOMPARE(settingsOf(driver), changed);
    QCOMPARE(driver.takeCalls(), QStringList(QLatin1String("update serial")));
    QCOMPARE(driver.interval_timeout_, 6);
    QCOMPARE(driver.character_3_5_, 15);
    QCOMPARE(log.lines(), logOf(6, 15));
    Q_EMIT driver.SigUpdateDrvEthernet(); // not the driver's link
    QCOMPARE(settingsOf(driver), changed);
}

void TestDriverBasicTiming::ethernetSettingsAreReadAgain()
{
    LogRecorder log;
    DrvEthernet link;
    TestDriver driver(nullptr, &link);
    change(&link);
    Q_EMIT driver.SigUpdateDrvSerial(); // not the driver's link
    QCOMPARE(settingsOf(driver), unchanged);
    Q_EMIT driver.SigUpdateDrvEthernet();
    QCOMPARE(settingsOf(driver), changed);
    QCOMPARE(driver.interval_timeout_, 1);
    QVERIFY(driver.takeCalls().isEmpty());
    QVERIFY(log.lines().isEmpty());
}

void TestDriverBasicTiming::withoutTheLinkNothingHappens()
{
    LogRecorder log;
    TestDriver driver(nullptr);
    driver.interval_timeout_ = 77;
    Q_EMIT driver.SigUpdateDrvSerial();
    Q_EMIT driver.SigUpdateDrvEthernet();
    QVERIFY(driver.takeCalls().isEmpty());
    driver.UpdateSerialParameter();
    QCOMPARE(settingsOf(driver), unchanged);
    QCOMPARE(driver.interval_timeout_, 77);
    QVERIFY(log.lines().isEmpty());
}

void TestDriverBasicTiming::eachLinkHasItsOwnSettings()
{
    LogRecorder log;
    DrvSerial serial;
    DrvEthernet ethernet;
    TestDriver driver(&serial, &ethernet);
    change(&ethernet);
    Q_EMIT driver.SigUpdateDrvSerial();
    QCOMPARE(settingsOf(driver), unchanged);
    Q_EMIT driver.SigUpdateDrvEthernet();
    QCOMPARE(settingsOf(driver), changed);
    QCOMPARE(driver.device_, static_cast<QIODevice*>(&serial));
}

void TestDriverBasicTiming::pause_data()
{
    QTest::addColumn<int>("milliseconds");
    QTest::newRow("none") << 0;
    QTest::newRow("less than none") << -5;
    QTest::newRow("a frame's") << 40;
}

void TestDriverBasicTiming::pause()
{
    QFETCH(int, milliseconds);
    QElapsedTimer time;
    time.start();
    TestDriver::pauseThread(milliseconds);
    QVERIFY(time.elapsed() >= milliseconds);
    QVERIFY(time.elapsed() < milliseconds + 10000);
}

void TestDriverBasicTiming::stopFlag_data()
{
    QTest::addColumn<QByteArray>("first_bytes"); // as they lie in memory
    QTest::addColumn<bool>("stops");
    QTest::newRow("not set") << QByteArray(sizeof(quintptr), '\0') << false;
    QTest::newRow("1") << QByteArray("\1") << true;
    QTest::newRow("only the first byte counts") << QByteArray("\0\1", 2) << false;
    QTest::newRow("any value of it") << QByteArray("\x80") << true;
}

void TestDriverBasicTiming::stopFlag()
{
    QFETCH(QByteArray, first_bytes);
    TestDriver driver(nullptr);
    std::memcpy(&driver.stop_flag, first_bytes.constData(), size_t(first_bytes.size()));
    QTEST(driver.stopRequested(), "stops");
}

QTEST_GUILESS_MAIN(TestDriverBasicTiming)
#include "tst_driver_basic_timing.moc"
