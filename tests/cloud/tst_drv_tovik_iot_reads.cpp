#include "tests/cloud/driver_fixture.h"

#include <QSignalSpy>
#include <QTest>

namespace {

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

QByteArray hex(const char* digits)
{
    return QByteArray::fromHex(digits);
}

const int client_failure = 0x400F0256;

} // namespace

class TestDrvTovikIotReads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answers_data();
    void answers();
    void namesAreEchoed();
    void firstOfTwoEqualNamesAnswers();
    void monitoredValues();
    void firstOfTwoEntriesOfAnIdCounts();
    void statusOfResults();
    void retryRule_data();
    void retryRule();
    void successResetsTheCount();
    void aNewErrorDoesNotResetTheCount();
    void errorOnAnUnknownAddressCounts();
};

void TestDrvTovikIotReads::answers_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<int>("data_length");
    QTest::addColumn<QByteArray>("expected");
    auto row = [](const char* name, const char* type, const QVariant& value, const char* bytes,
                  int data_length = 0) {
        QTest::newRow(name) << latin1(type) << value << data_length << hex(bytes);
    };
    row("minus two", "16Bit-INT", QVariant::fromValue<short>(-2), "feff");
    row("1.5", "32Bit-FLOAT", QVariant::fromValue<float>(1.5F), "0000c03f");
    row("padded text", "String", latin1("AB"), "4142000000", 5);
    row("long text", "String", latin1("AB"), "4142", 1);
    row("empty text and no length", "String", latin1(""), "");
    row("no text and no length", "String", QVariant(), "");
    row("no value yet: a number is zero", "32Bit-UINT", QVariant(), "00000000");
    row("no value yet: a bit is false", "Bit", QVariant(), "00");
    row("no value yet: a text is padding", "String", QVariant(), "000000", 3);
    row("unknown type is one zero byte", "Odd", 5, "00");
    row("the service's second name is an unknown type", "Ascii String", latin1("AB"), "00", 5);
}

void TestDrvTovikIotReads::answers()
{
    QFETCH(QString, type);
    QFETCH(QVariant, value);
    QFETCH(int, data_length);
    QFETCH(QByteArray, expected);
    DriverFixture host;
    host.serve("Temp", "16Bit-INT", value);
    host.property.dataitems.first().type = type;
    host.start();
    const DriverAnswer answer = host.read("Temp", data_length);
    QCOMPARE(answer.bytes, expected);
    QCOMPARE(answer.status, 0);
}

void TestDrvTovikIotReads::namesAreEchoed()
{
    DriverFixture host;
    host.serve("Temp", "Bit", true);
    host.start();
    const char* const names[] = {"Temp", "temp", "Tem", "Temp ", ""};
    for (const char* name : names) {
        const DriverAnswer answer = host.read(name);
        QCOMPARE(answer.unit_name, latin1("unit"));
        QCOMPARE(answer.link_name, latin1("link"));
        QCOMPARE(answer.status, 0);
        // Only the whole name in its own letter case finds the item.
        QCOMPARE(answer.bytes, hex(latin1(name) == latin1("Temp") ? "01" : "00"));
    }
}

void TestDrvTovikIotReads::firstOfTwoEqualNamesAnswers()
{
    DriverFixture host;
    host.serve("Temp", "16Bit-UINT", 1);
    host.serve("Temp", "32Bit-UINT", 2);
    host.start();
    QCOMPARE(host.read("Temp").bytes, hex("0100"));
}

void TestDrvTovikIotReads::monitoredValues()
{
    DriverFixture host;
    host.serve("a", "16Bit-UINT", 1);
    host.serve("b", "16Bit-UINT", 2);
    host.serve("c", "16Bit-UINT", 3);
    host.start();
    host.monitored({monitoredItem("C", 30), monitoredItem("other", 99), monitoredItem("A", 10)});
    QCOMPARE(host.read("a").bytes, hex("0a00"));
    QCOMPARE(host.read("b").bytes, hex("0200"));
    QCOMPARE(host.read("c").bytes, hex("1e00"));
    host.monitored({});
    QCOMPARE(host.read("a").bytes, hex("0a00"));
}

void TestDrvTovikIotReads::firstOfTwoEntriesOfAnIdCounts()
{
    DriverFixture host;
    host.serve("a", "16Bit-UINT", 1);
    host.serve("A", "16Bit-UINT", 1); // the same id under another name
    host.start();
    host.monitored({monitoredItem("A", 5), monitoredItem("A", 6)});
    QCOMPARE(host.read("a").bytes, hex("0500"));
    QCOMPARE(host.read("A").bytes, hex("0500"));
}

void TestDrvTovikIotReads::statusOfResults()
{
    DriverFixture host;
    host.serve("a", "Bit", true);
    host.setErrorHandling(2, 1, true, true);
    host.start();
    host.log.take();
    host.report(256);
    QCOMPARE(host.takeDriverLog(),
             QStringList{latin1("[DrvTovikIot] Update Error Code:  1074725462")});
    QCOMPARE(host.read("a").status, client_failure);
    QCOMPARE(host.read("a").bytes, hex("01"));
    host.report(15);
    QCOMPARE(host.read("a").status, 0x400F0015);
    host.report(2);
    QCOMPARE(host.read("a").status, 0);
    host.report(255);
    QCOMPARE(host.read("a").status, 0x400F0255);
    host.log.take();
    host.report(0);
    QCOMPARE(host.takeDriverLog(), QStringList{latin1("[DrvTovikIot] Update Error Code:  0")});
    QCOMPARE(host.read("a").status, 0);
}

void TestDrvTovikIotReads::retryRule_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("return_time_en");
    QTest::addColumn<bool>("restore_switch_en");
    QTest::addColumn<bool>("retries");
    QTest::newRow("type 0 never") << 0 << false << true << false;
    QTest::newRow("type 1 with the switch and without return time") << 1 << false << true << true;
    QTest::newRow("type 1 with return time") << 1 << true << true << false;
    QTest::newRow("type 1 without the switch") << 1 << false << false << false;
    QTest::newRow("type 1 with return time and without the switch") << 1 << true << false << false;
    QTest::newRow("type 2 never") << 2 << false << true << false;
    QTest::newRow("type 3") << 3 << true << false << true;
    QTest::newRow("type 4 never") << 4 << false << true << false;
    QTest::newRow("type -1 never") << -1 << false << true << false;
}

void TestDrvTovikIotReads::retryRule()
{
    QFETCH(int, type);
    QFETCH(bool, return_time_en);
    QFETCH(bool, restore_switch_en);
    QFETCH(bool, retries);
    DriverFixture host;
    host.serve("a", "Bit", true);
    host.setErrorHandling(type, 1, return_time_en, restore_switch_en);
    host.start();
    QSignalSpy reconnects(host.driver.get(), SIGNAL(EmitReconnect()));
    const QString error = latin1("[DrvTovikIot] SlotGetValuesByteArray:  1074725462");
    host.report(256);
    host.log.take();
    QCOMPARE(host.read("a").status, client_failure);
    QCOMPARE(host.takeDriverLog(), QStringList{error});
    QCOMPARE(reconnects.size(), 0);
    for (int round = 1; round <= 3; ++round) {
        const DriverAnswer second = host.read("a");
        QStringList expected{error};
        if (retries)
            expected.append(latin1("[DrvTovikIot] Retry by error handle type:  %1").arg(type));
        QCOMPARE(host.takeDriverLog(), expected);
        QCOMPARE(second.status, retries ? 0 : client_failure);
        QCOMPARE(second.bytes, hex("01"));
        QCOMPARE(reconnects.size(), retries ? round : 0);
        if (!retries)
            continue;
        // The error is forgotten until it is reported anew; then it takes two reads again.
        QCOMPARE(host.read("a").status, 0);
        host.report(256);
        host.log.take();
        QCOMPARE(host.read("a").status, client_failure);
        host.log.take();
    }
}

void TestDrvTovikIotReads::successResetsTheCount()
{
    DriverFixture host;
    host.serve("a", "Bit", true);
    host.setErrorHandling(3, 1, false, false);
    host.start();
    host.report(256);
    QCOMPARE(host.read("a").status, client_failure);
    host.report(0);
    QCOMPARE(host.read("a").status, 0);
    host.report(256);
    QCOMPARE(host.read("a").status, client_failure);
}

void TestDrvTovikIotReads::aNewErrorDoesNotResetTheCount()
{
    DriverFixture host;
    host.serve("a", "Bit", true);
    host.setErrorHandling(3, 1, false, false);
    host.start();
    host.report(256);
    QCOMPARE(host.read("a").status, client_failure);
    host.report(7);
    QCOMPARE(host.read("a").status, 0);
}

void TestDrvTovikIotReads::errorOnAnUnknownAddressCounts()
{
    DriverFixture host;
    host.setErrorHandling(3, 1, false, false);
    host.start();
    QSignalSpy reconnects(host.driver.get(), SIGNAL(EmitReconnect()));
    host.report(256);
    QCOMPARE(host.read("nowhere").status, client_failure);
    QCOMPARE(host.read("nowhere").status, 0);
    QCOMPARE(reconnects.size(), 1);
}

QTEST_GUILESS_MAIN(TestDrvTovikIotReads)
#include "tst_drv_tovik_iot_reads.moc"
