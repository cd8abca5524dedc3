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

} // namespace

class TestDrvTovikIotWrites : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void values_data();
    void values();
    void unknownAddress();
    void unknownType();
    void indexIsThePositionOfTheFirstName();
    void monitorOverwritesWhatWasWritten();
    void statusIsTheDriversAndCountsNothing();
    void reachesTheService();
};

void TestDrvTovikIotWrites::values_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QByteArray>("read_back");
    auto row = [](const char* name, const char* type, const char* bytes, const QVariant& value,
                  const char* read_back) {
        QTest::newRow(name) << latin1(type) << hex(bytes) << value << hex(read_back);
    };
    row("bit", "Bit", "05", true, "01");
    row("BCD", "16Bit-BCD", "3412", 1234, "3412");
    row("BCD with a letter", "16Bit-BCD", "ab00", 0, "0000");
    row("sixteen bit integer", "16Bit-INT", "3412", 4660, "3412");
    row("half a sixteen bit integer", "16Bit-INT", "05", 0, "0000");
    row("sixteen bit unsigned", "16Bit-UINT", "ffff", 65535, "ffff");
    row("hexadecimal", "16Bit-HEX", "3412", QByteArray("1234"), "3412");
    row("32 bit BCD", "32Bit-BCD", "78563412", 12345678U, "78563412");
    row("32 bit minus one", "32Bit-INT", "ffffffff", -1, "ffffffff");
    row("32 bit unsigned", "32Bit-UINT", "ffffffff", 4294967295U, "ffffffff");
    row("32 bit hexadecimal", "32Bit-HEX", "efbeadde", QByteArray("deadbeef"), "efbeadde");
    row("float", "32Bit-FLOAT", "0000c03f", QVariant::fromValue<float>(1.5F), "0000c03f");
    row("text", "String", "48490041", latin1("HI"), "4849");
}

void TestDrvTovikIotWrites::values()
{
    QFETCH(QString, type);
    QFETCH(QByteArray, bytes);
    QFETCH(QVariant, value);
    QFETCH(QByteArray, read_back);
    DriverFixture host;
    host.serve("first", "Bit", false);
    host.serve("a", "Bit", false);
    host.property.dataitems.last().type = type;
    host.start();
    QSignalSpy writes(host.driver.get(), SIGNAL(EmitWriteValue(int, QVariant)));
    const DriverAnswer answer = host.write("a", bytes);
    QCOMPARE(answer.unit_name, latin1("unit"));
    QCOMPARE(answer.link_name, latin1("link"));
    QCOMPARE(answer.bytes, bytes);
    QCOMPARE(answer.status, 0);
    QCOMPARE(writes.size(), 1);
    QCOMPARE(writes.first().at(0).toInt(), 1);
    const QVariant written = qvariant_cast<QVariant>(writes.first().at(1));
    QCOMPARE(written.userType(), value.userType());
    QCOMPARE(written, value);
    QCOMPARE(host.read("a").bytes, read_back);
}

void TestDrvTovikIotWrites::unknownAddress()
{
    DriverFixture host;
    host.serve("a", "Bit", false);
    host.start();
    QSignalSpy writes(host.driver.get(), SIGNAL(EmitWriteValue(int, QVariant)));
    const DriverAnswer answer = host.write("A", hex("010203"));
    QCOMPARE(answer.bytes, hex("010203"));
    QCOMPARE(answer.status, 0);
    QCOMPARE(writes.size(), 0);
    QCOMPARE(host.read("a").bytes, hex("00"));
}

void TestDrvTovikIotWrites::unknownType()
{
    DriverFixture host;
    host.serve("a", "Odd", 5);
    host.start();
    QSignalSpy writes(host.driver.get(), SIGNAL(EmitWriteValue(int, QVariant)));
    QCOMPARE(host.write("a", hex("01")).bytes, hex("01"));
    QCOMPARE(writes.size(), 1);
    QVERIFY(!qvariant_cast<QVariant>(writes.first().at(1)).isValid());
}

void TestDrvTovikIotWrites::indexIsThePositionOfTheFirstName()
{
    DriverFixture host;
    host.serve("a", "16Bit-UINT", 0);
    host.serve("b", "16Bit-UINT", 0);
    host.serve("b", "16Bit-UINT", 0);
    host.start();
    QSignalSpy writes(host.driver.get(), SIGNAL(EmitWriteValue(int, QVariant)));
    host.write("b", hex("0100"));
    QCOMPARE(writes.size(), 1);
    QCOMPARE(writes.first().at(0).toInt(), 1);
}

void TestDrvTovikIotWrites::monitorOverwritesWhatWasWritten()
{
    DriverFixture host;
    host.serve("a", "16Bit-UINT", 0);
    host.start();
    host.write("a", hex("0100"));
    QCOMPARE(host.read("a").bytes, hex("0100"));
    host.monitored({monitoredItem("A", 9)});
    QCOMPARE(host.read("a").bytes, hex("0900"));
}

void TestDrvTovikIotWrites::statusIsTheDriversAndCountsNothing()
{
    DriverFixture host;
    host.serve("a", "16Bit-UINT", 0);
    host.setErrorHandling(3, 1, false, false);
    host.start();
    QSignalSpy reconnects(host.driver.get(), SIGNAL(EmitReconnect()));
    host.report(256);
    host.log.take();
    for (int i = 0; i < 3; ++i)
        QCOMPARE(host.write("a", hex("0100")).status, 0x400F0256);
    QCOMPARE(host.takeDriverLog(), QStringList());
    QCOMPARE(reconnects.size(), 0);
    QCOMPARE(host.read("a").status, 0x400F0256);
}

void TestDrvTovikIotWrites::reachesTheService()
{
    DriverFixture host;
    host.serve("a", "16Bit-UINT", 0);
    host.setErrorHandling(2, 1, false, false);
    // The login fails, so that only the write is asked for.
    host.service.setHandler([](const ScriptedRequest& request) {
        return ScriptedReply::json(request.path.endsWith("setValue") ? "{\"errorcode\":0}"
                                                                     : "{\"errorcode\":1}");
    });
    host.start();
    host.write("a", hex("0102"));
    QTRY_VERIFY(
        host.service.bodies().contains("{\"dataitem_id\":\"A\",\"token\":\"\",\"value\":513}"));
    QTRY_VERIFY(host.log.contains("[TOVIK IoT] Write value done!"));
}

QTEST_GUILESS_MAIN(TestDrvTovikIotWrites)
#include "tst_drv_tovik_iot_writes.moc"
