#include "tests/cloud/driver_fixture.h"

#include <QMetaProperty>
#include <QTest>

namespace {

ScriptedReply catalogueReply(const ScriptedRequest& request)
{
    if (request.path.endsWith("login"))
        return ScriptedReply::json("{\"errorcode\":0,\"token\":\"T\"}");
    return ScriptedReply::json("{\"errorcode\":0,\"Number\":0,\"groups\":[]}");
}

bool isRead(const ScriptedRequest& request)
{
    return request.path.endsWith("value");
}

int number(const DriverFixture& host, const char* property)
{
    return host.driver->property(property).toInt();
}

QVariantList ages(const DriverFixture& host)
{
    return host.driver->property("item_ages").toList();
}

} // namespace

/// The driver's numbers, as a host reads them: by the names of properties.
class TestDrvTovikIotMetrics : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listOfProperties();
    void withoutALink();
    void countsWholeCycles();
    void leavesOutWhatIsNotTaken();
    void endsAtAnItemInError();
    void countsReconnects();
    void countsWrites();
    void remembersAFailure_data();
    void remembersAFailure();
    void areThereAfterClosing();
    void belongToOneDriver();
};

void TestDrvTovikIotMetrics::listOfProperties()
{
    const QMetaObject& meta = DrvTovikIot::staticMetaObject;
    QStringList names;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        names << QString::fromLatin1(meta.property(i).name());
        QVERIFY(meta.property(i).isReadable());
        QVERIFY(!meta.property(i).isWritable());
        QVERIFY(!meta.property(i).hasNotifySignal());
    }
    const QString expected = QStringLiteral(
        "cycle_count cycle_milliseconds longest_cycle_milliseconds read_count reconnect_count "
        "last_error last_error_age item_ages connected write_count failed_write_count");
    QCOMPARE(names.join(QLatin1Char(' ')), expected);
}

void TestDrvTovikIotMetrics::withoutALink()
{
    const DrvTovikIot driver;
    QCOMPARE(driver.property("cycle_count").toInt(), 0);
    QCOMPARE(driver.property("cycle_milliseconds").toInt(), -1);
    QCOMPARE(driver.property("last_error_age").toInt(), -1);
    QVERIFY(driver.property("item_ages").toList().isEmpty());
}

void TestDrvTovikIotMetrics::countsWholeCycles()
{
    DriverFixture host;
    host.serve("a", "16Bit-INT", 0);
    host.serve("b", "16Bit-INT", 0);
    host.service.setHandler([](const ScriptedRequest& request) {
        return isRead(request) ? ScriptedReply::json("{\"errorcode\":0,\"value\":5}")
                               : catalogueReply(request);
    });
    host.start();
    QCOMPARE(ages(host), (QVariantList{-1, -1}));
    // A cycle counts before its values reach the driver.
    QTRY_COMPARE(host.read("b").bytes, QByteArray::fromHex("0500"));
    QVERIFY(number(host, "cycle_count") >= 1);
    QVERIFY(number(host, "read_count") >= 2 * number(host, "cycle_count"));
    QVERIFY(number(host, "cycle_milliseconds") >= 0);
    QVERIFY(number(host, "longest_cycle_milliseconds") >= number(host, "cycle_milliseconds"));
    QCOMPARE(number(host, "reconnect_count"), 0);
    QCOMPARE(number(host, "last_error"), 0);
    QCOMPARE(ages(host).size(), 2);
    QVERIFY(ages(host).at(0).toInt() >= 0);
    QVERIFY(ages(host).at(1).toInt() >= 0);
}

/// The service answers, so the cycle is whole; but the value that the host sees is not from it.
void TestDrvTovikIotMetrics::leavesOutWhatIsNotTaken()
{
    DriverFixture host;
    host.serve("a", "16Bit-INT", 0);
    host.serve("t", "String", QString());
    host.serve("u", "no type", QString());
    host.service.setHandler([](const ScriptedRequest& request) {
        return isRead(request) ? ScriptedReply::json("{\"errorcode\":0,\"value\":5}")
                               : catalogueReply(request);
    });
    host.start();
    QTRY_VERIFY(ages(host).at(0).toInt() >= 0);
    QVERIFY(number(host, "cycle_count") >= 1);
    QCOMPARE(ages(host).mid(1), (QVariantList{-1, -1}));
}

void TestDrvTovikIotMetrics::countsWrites()
{
    DriverFixture host;
    host.serve("a", "16Bit-INT", 0);
    host.setErrorHandling(4, 0, false, false);
    host.service.setHandler([](const ScriptedRequest& request) {
        if (isRead(request))
            return ScriptedReply::json("{\"errorcode\":0,\"value\":5}");
        if (!request.path.endsWith("setValue"))
            return catalogueReply(request);
        return ScriptedReply::json(request.body.contains(":7}") ? "{\"errorcode\":0}"
                                                                : "{\"errorcode\":8}");
    });
    host.start();
    QTRY_VERIFY(host.driver->property("connected").toBool());
    host.write("a", QByteArray::fromHex("0700"));
    QTRY_COMPARE(number(host, "write_count"), 1);
    QCOMPARE(number(host, "failed_write_count"), 0);
    QVERIFY(host.driver->property("connected").toBool());
    host.write("a", QByteArray::fromHex("0800"));
    QTRY_COMPARE(number(host, "failed_write_count"), 1);
    QCOMPARE(number(host, "write_count"), 1);
    QTRY_VERIFY(!host.driver->property("connected").toBool());
    QCOMPARE(number(host, "last_error"), 8);
}

void TestDrvTovikIotMetrics::endsAtAnItemInError()
{
    DriverFixture host;
    for (const char* name : {"a", "b", "c"})
        host.serve(name, "16Bit-INT", 0);
    host.setErrorHandling(4, 0, false, false);
    host.service.setHandler([](const ScriptedRequest& request) {
        if (!isRead(request))
            return catalogueReply(request);
        return ScriptedReply::json(
            request.body.contains("\"B\"") ? "{\"errorcode\":7}" : "{\"errorcode\":0,\"value\":5}");
    });
    host.start();
    QTRY_COMPARE(host.read("a").status, 0x400F0007);
    QTRY_VERIFY(ages(host).at(0).toInt() >= 0);
    QCOMPARE(number(host, "cycle_count"), 0);
    QCOMPARE(number(host, "cycle_milliseconds"), -1);
    QCOMPARE(number(host, "read_count"), 1);
    QCOMPARE(number(host, "last_error"), 7);
    QVERIFY(number(host, "last_error_age") >= 0);
    QVERIFY(ages(host).at(0).toInt() >= 0);
    QCOMPARE(ages(host).mid(1), (QVariantList{-1, -1}));
}

void TestDrvTovikIotMetrics::countsReconnects()
{
    DriverFixture host;
    host.serve("a", "16Bit-INT", 0);
    int reads = 0;
    host.setErrorHandling(1, 0, true, false); // again at once
    host.service.setHandler([&reads](const ScriptedRequest& request) {
        if (!isRead(request))
            return catalogueReply(request);
        return ScriptedReply::json(++reads <= 2 ? "{\"errorcode\":7}"
                                                : "{\"errorcode\":0,\"value\":5}");
    });
    host.start();
    QTRY_COMPARE_WITH_TIMEOUT(host.read("a").bytes, QByteArray::fromHex("0500"), 30000);
    QCOMPARE(number(host, "reconnect_count"), 2);
    QCOMPARE(number(host, "last_error"), 7);
}

void TestDrvTovikIotMetrics::remembersAFailure_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("writes");
    QTest::newRow("of the login") << QStringLiteral("login") << false;
    QTest::newRow("of the catalogue") << QStringLiteral("list") << false;
    QTest::newRow("of a write") << QStringLiteral("setValue") << true;
}

void TestDrvTovikIotMetrics::remembersAFailure()
{
    QFETCH(QString, path);
    QFETCH(bool, writes);
    DriverFixture host;
    host.serve("a", "16Bit-INT", 0);
    host.setErrorHandling(4, 0, false, false);
    host.service.setHandler([path](const ScriptedRequest& request) {
        if (request.path.endsWith(path.toLatin1()))
            return ScriptedReply::json("{\"errorcode\":3}");
        return isRead(request) ? ScriptedReply::json("{\"errorcode\":0,\"value\":5}")
                               : catalogueReply(request);
    });
    host.start();
    if (writes)
        host.write("a", QByteArray(2, '\1'));
    QTRY_COMPARE(number(host, "last_error"), 3);
    QVERIFY(number(host, "last_error_age") >= 0);
    QCOMPARE(number(host, "reconnect_count"), 0);
}

void TestDrvTovikIotMetrics::areThereAfterClosing()
{
    DriverFixture host;
    host.serve("a", "16Bit-INT", 0);
    host.service.setHandler([](const ScriptedRequest& request) {
        return isRead(request) ? ScriptedReply::json("{\"errorcode\":0,\"value\":5}")
                               : catalogueReply(request);
    });
    host.start();
    // A cycle counts before its values reach the driver.
    QTRY_VERIFY(ages(host).at(0).toInt() >= 0);
    host.close();
    QVERIFY(number(host, "cycle_count") >= 1);
    QVERIFY(ages(host).at(0).toInt() >= 0);
}

void TestDrvTovikIotMetrics::belongToOneDriver()
{
    DriverFixture good;
    good.serve("a", "16Bit-INT", 0);
    good.service.setHandler([](const ScriptedRequest& request) {
        return isRead(request) ? ScriptedReply::json("{\"errorcode\":0,\"value\":5}")
                               : catalogueReply(request);
    });
    good.start();
    ScriptedService refusing;
    refusing.setHandler(
        [](const ScriptedRequest&) { return ScriptedReply::json("{\"errorcode\":9}"); });
    DrvEthernet link;
    PropertyTovikIot property;
    property.host = refusing.url();
    property.dataitems << PropertyTovikIotDataItem() << PropertyTovikIotDataItem();
    link.driver_specific_data[QStringLiteral("tovik_iot")] = QVariant::fromValue(property);
    link.driver_specific_data[QStringLiteral("tovik_iot_err_handle_type")] = 4;
    DrvTovikIot bad(&link);
    QTRY_COMPARE(bad.property("last_error").toInt(), 9);
    QTRY_VERIFY(number(good, "cycle_count") >= 1);
    QCOMPARE(number(good, "last_error"), 0);
    QCOMPARE(bad.property("cycle_count").toInt(), 0);
    QCOMPARE(ages(good).size(), 1);
    QCOMPARE(bad.property("item_ages").toList(), (QVariantList{-1, -1}));
    Q_EMIT link.EmitNotifyBeforeRelease();
}

QTEST_GUILESS_MAIN(TestDrvTovikIotMetrics)
#include "tst_drv_tovik_iot_metrics.moc"
