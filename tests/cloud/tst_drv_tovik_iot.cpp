#include "interface/traffic.h"
#include "tests/cloud/driver_fixture.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QNetworkProxy>
#include <QPointer>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace {

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

/// How many texts share their characters with \a text: the driver's configuration is one of them.
int sharersOf(QString& text)
{
    return text.data_ptr()->ref.atomic.loadRelaxed();
}

ScriptedReply answerAll(const ScriptedRequest& request)
{
    if (request.path.endsWith("login"))
        return ScriptedReply::json("{\"errorcode\":0,\"token\":\"T\"}");
    if (request.path.endsWith("list"))
        return ScriptedReply::json("{\"errorcode\":0,\"Number\":0,\"groups\":[]}");
    return ScriptedReply::json("{\"errorcode\":0,\"value\":5}");
}

/// Knows where it was called.
struct ThreadListener : TrafficListener
{
    void hear(const Traffic&) override { thread = QThread::currentThread(); }

    std::atomic<QThread*> thread{nullptr};
};

} // namespace

/// The driver object from construction to destruction.
class TestDrvTovikIot : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutALink();
    void registersTypesWithALink();
    void readsItsSettings();
    void missingKeysGiveDefaultsAndZeros();
    void aVariantOfAnotherTypeGivesDefaults();
    void startsUp();
    void reportsTheFirstFailure();
    void servesValuesEndToEnd();
    void writeFailureReachesTheHost_data();
    void writeFailureReachesTheHost();
    void closeTwice_data();
    void closeTwice();
    void closeAfterTheLinkHasGone();
    void closeDisconnectsTheLink();
    void closeDuringAHangingRequest();
    void closeAtOnce();
    void closedDriverAnswersFromItsCache();
    void destructorFreesAfterClosing();
    void theClientsThreadGoes_data();
    void theClientsThreadGoes();
    void initialisedAnewAfterClosing();
    void destructorLeavesARunningClientAlone();
    void configurationIsTheDriversOwn();
};

/// First: nothing may be registered before a driver with a link has been made.
void TestDrvTovikIot::withoutALink()
{
    LogRecorder log;
    DrvTovikIot driver;
    QSignalSpy answers(&driver, SIGNAL(SigResponse(QString, QString, QByteArray, int)));
    QSharedPointer<AddrData> address(new AddrData);
    Q_EMIT driver.SigGetValuesByteArray(latin1("u"), latin1("l"), 0, address);
    Q_EMIT driver.SigSetValuesByteArray(latin1("u"), latin1("l"), 0, QByteArray("1"), address);
    QCOMPARE(answers.size(), 0);
    QVERIFY(log.lines().isEmpty());
    QMetaObject::invokeMethod(&driver, "SlotCloseConnect");
    QCOMPARE(log.lines(), QStringList{latin1("[DrvTovikIot] Close")});
    QCOMPARE(QMetaType::type("QSharedPointer<AddrData>"), int(QMetaType::UnknownType));
    QCOMPARE(QMetaType::type("PropertyTovikIot"), int(QMetaType::UnknownType));
    QCOMPARE(QMetaType::type("QList<MonitorDataItem>"), int(QMetaType::UnknownType));
    QVERIFY(!driver.IsTransparentModeSupported());
}

void TestDrvTovikIot::registersTypesWithALink()
{
    DriverFixture host;
    host.link.driver_specific_data.clear();
    // The proxy keeps a request to the default service on this machine.
    QNetworkProxy::setApplicationProxy(
        QNetworkProxy(QNetworkProxy::HttpProxy, latin1("127.0.0.1"), host.service.serverPort()));
    host.driver.reset(new DrvTovikIot(&host.link));
    const int address_id = QMetaType::type("QSharedPointer<AddrData>");
    const int property_id = QMetaType::type("PropertyTovikIot");
    QVERIFY(address_id >= QMetaType::User);
    QVERIFY(property_id >= QMetaType::User);
    QCOMPARE(property_id, qMetaTypeId<PropertyTovikIot>());
    // Its name is known, its stream operators are not: those come with the first group or item.
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    const PropertyTovikIot property;
    QVERIFY(!QMetaType::save(stream, property_id, &property));
    host.close();
    QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::NoProxy));
}

void TestDrvTovikIot::readsItsSettings()
{
    DriverFixture host;
    host.setErrorHandling(1, 3, true, false);
    host.service.setHandler(
        [](const ScriptedRequest&) { return ScriptedReply::json("{\"errorcode\":1}"); });
    host.start();
    QTRY_VERIFY(host.log.contains("[TOVIK IoT] Reconnect by timer: 3000 ms"));
    QVERIFY(host.log.contains("[TOVIK IoT] Error handle type:  1"));
}

void TestDrvTovikIot::missingKeysGiveDefaultsAndZeros()
{
    DriverFixture host;
    host.service.setHandler([](const ScriptedRequest&) { return ScriptedReply::status(502, {}); });
    QNetworkProxy::setApplicationProxy(
        QNetworkProxy(QNetworkProxy::HttpProxy, latin1("127.0.0.1"), host.service.serverPort()));
    host.driver.reset(new DrvTovikIot(&host.link));
    QVERIFY(host.log.contains("[TOVIK IoT] Host:  \"https://cloud.example\"  -> Project:  \"\""));
    QCOMPARE(QStringList(host.link.driver_specific_data.keys()),
             (QStringList{latin1("tovik_iot"), latin1("tovik_iot_err_handle_type"),
                          latin1("tovik_iot_err_restore_switch_bs_en"),
                          latin1("tovik_iot_err_retry_count"), latin1("tovik_iot_err_return_time"),
                          latin1("tovik_iot_err_return_time_en")}));
    for (const QVariant& value : qAsConst(host.link.driver_specific_data))
        QVERIFY(!value.isValid());
    // The handling type is 0, not the 1 that a driver without a link has.
    QTRY_VERIFY(host.log.contains("[TOVIK IoT] Error handle type:  0"));
    QCOMPARE(host.service.requests().first().path, QByteArray("cloud.example:443"));
    host.close();
    QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::NoProxy));
}

void TestDrvTovikIot::aVariantOfAnotherTypeGivesDefaults()
{
    DriverFixture host;
    QNetworkProxy::setApplicationProxy(
        QNetworkProxy(QNetworkProxy::HttpProxy, latin1("127.0.0.1"), host.service.serverPort()));
    host.link.driver_specific_data[latin1("tovik_iot")] = host.service.url();
    host.driver.reset(new DrvTovikIot(&host.link));
    QVERIFY(host.log.contains("[TOVIK IoT] Host:  \"https://cloud.example\"  -> Project:  \"\""));
    host.close();
    QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::NoProxy));
}

void TestDrvTovikIot::startsUp()
{
    DriverFixture host;
    host.serve("a", "16Bit-UINT", 0);
    host.service.setHandler(answerAll);
    host.start();
    // The constructor has returned; the conversation is the client's.
    QVERIFY(host.service.requests().isEmpty());
    QTRY_VERIFY(host.log.contains("[TOVIK IoT] Start Monitor ..."));
    const QString url = host.service.url();
    QCOMPARE(host.log.lines(),
             (QStringList{latin1("[DrvTovikIot] Initial"),
                          latin1("[TOVIK IoT] Host:  \"%1\"  -> Project:  \"Plant\"").arg(url),
                          latin1("[TOVIK IoT] Initializing ... "),
                          latin1("[TOVIK IoT] Connecting to Cloud ... "),
                          latin1("[TOVIK IoT] Warning: no group!"),
                          latin1("[TOVIK IoT] Connected to Cloud Success!"),
                          latin1("[TOVIK IoT] Start Monitor ...")}));
}

void TestDrvTovikIot::reportsTheFirstFailure()
{
    DriverFixture host;
    host.serve("a", "Bit", true);
    host.service.setHandler(
        [](const ScriptedRequest&) { return ScriptedReply::json("{\"errorcode\":8}"); });
    host.setErrorHandling(4, 1, false, false);
    host.start();
    QCOMPARE(host.read("a").status, 0);
    QTRY_COMPARE(host.read("a").status, 0x400F0008);
    QVERIFY(host.log.contains("[DrvTovikIot] Update Error Code:  1074724872"));
}

void TestDrvTovikIot::servesValuesEndToEnd()
{
    DriverFixture host;
    host.serve("Temp", "16Bit-INT", 0);
    host.service.setHandler([](const ScriptedRequest& request) {
        return request.path.endsWith("value")
                   ? ScriptedReply::json("{\"errorcode\":0,\"value\":-2}")
                   : answerAll(request);
    });
    host.start();
    QTRY_COMPARE(host.read("Temp").bytes, QByteArray::fromHex("feff"));
    QCOMPARE(host.read("Temp").status, 0);
}

void TestDrvTovikIot::writeFailureReachesTheHost_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("status");
    QTest::newRow("7") << 7 << 0x400F0007;
    QTest::newRow("9") << 9 << 0x400F0009;
}

void TestDrvTovikIot::writeFailureReachesTheHost()
{
    QFETCH(int, code);
    QFETCH(int, status);
    DriverFixture host;
    host.serve("a", "Bit", false);
    host.setErrorHandling(4, 1, false, false);
    host.service.setHandler([code](const ScriptedRequest& request) {
        return request.path.endsWith("setValue")
                   ? ScriptedReply::json("{\"errorcode\":" + QByteArray::number(code) + "}")
                   : answerAll(request);
    });
    host.start();
    QTRY_VERIFY(host.log.contains("[TOVIK IoT] Start Monitor ..."));
    QCOMPARE(host.write("a", QByteArray("\1", 1)).status, 0);
    QTRY_COMPARE(host.read("a").status, status);
}

void TestDrvTovikIot::closeTwice_data()
{
    QTest::addColumn<bool>("events_between");
    QTest::newRow("at once") << false;
    QTest::newRow("with the host's event loop in between") << true;
}

void TestDrvTovikIot::closeTwice()
{
    QFETCH(bool, events_between);
    DriverFixture host;
    host.serve("a", "16Bit-UINT", 0);
    host.service.setHandler(answerAll);
    host.start();
    QTRY_VERIFY(host.log.contains("[TOVIK IoT] Start Monitor ..."));
    host.log.take();
    host.close();
    const QStringList once{latin1("[DrvTovikIot] Close"),
                           latin1("[TOVIK IoT] Disconnecting to Cloud ...")};
    QCOMPARE(host.log.take(), once);
    if (events_between) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }
    // The link's signal no longer reaches the driver; a host may still call the slot.
    host.close();
    QVERIFY(host.log.take().isEmpty());
    QMetaObject::invokeMethod(host.driver.get(), "SlotCloseConnect");
    QCOMPARE(host.log.take(), once);
}

/// A host that forgot to announce it may still close the driver by its slot.
void TestDrvTovikIot::closeAfterTheLinkHasGone()
{
    LogRecorder log;
    const ScriptedService service;
    std::unique_ptr<DrvEthernet> link(new DrvEthernet);
    PropertyTovikIot property;
    property.host = service.url();
    link->driver_specific_data[latin1("tovik_iot")] = QVariant::fromValue(property);
    DrvTovikIot driver(link.get());
    link.reset();
    QMetaObject::invokeMethod(&driver, "SlotCloseConnect");
    QVERIFY(log.contains("[DrvTovikIot] Close"));
    QVERIFY2(log.lines().filter(latin1("QObject")).isEmpty(),
             qPrintable(log.lines().join(QLatin1Char('\n'))));
}

void TestDrvTovikIot::closeDisconnectsTheLink()
{
    DriverFixture host;
    host.start();
    QTcpServer device;
    QVERIFY(device.listen(QHostAddress::LocalHost));
    host.link.connectToHost(QHostAddress(QHostAddress::LocalHost), device.serverPort());
    QVERIFY(host.link.waitForConnected(5000));
    host.close();
    QCOMPARE(host.link.state(), QAbstractSocket::UnconnectedState);
}

void TestDrvTovikIot::closeDuringAHangingRequest()
{
    DriverFixture host;
    host.serve("a", "Bit", false);
    host.start();
    QTRY_COMPARE(host.service.requests().size(), 1);
    host.write("a", QByteArray("\1", 1)); // hangs too, inside the first request
    QTRY_COMPARE(host.service.requests().size(), 2);
    QElapsedTimer timer;
    timer.start();
    host.close();
    QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
    host.write("a", QByteArray("\0", 1));
    host.driver.reset();
    // Whatever was on its way to the service would be there by the time a later caller is served.
    QTcpSocket later;
    later.connectToHost(QHostAddress(QHostAddress::LocalHost), host.service.serverPort());
    later.write("GET /later HTTP/1.1\r\n\r\n");
    QTRY_COMPARE(host.service.paths().last(), QByteArray("/later"));
    QCOMPARE(host.service.requests().size(), 3);
}

void TestDrvTovikIot::closeAtOnce()
{
    for (int i = 0; i < 20; ++i) {
        DriverFixture host;
        host.serve("a", "Bit", false);
        host.service.setHandler(answerAll);
        host.start();
        host.close();
        host.driver.reset();
        QVERIFY(host.log.contains("[DrvTovikIot] Close"));
        QVERIFY2(host.log.lines().filter(latin1("QObject")).isEmpty(),
                 qPrintable(host.log.lines().join(QLatin1Char('\n'))));
    }
}

void TestDrvTovikIot::closedDriverAnswersFromItsCache()
{
    DriverFixture host;
    host.serve("a", "16Bit-UINT", 5);
    host.setErrorHandling(2, 1, false, false);
    host.start();
    QTRY_COMPARE(host.service.requests().size(), 1);
    host.report(256);
    host.close();
    QCOMPARE(host.read("a").bytes, QByteArray::fromHex("0500"));
    QCOMPARE(host.write("a", QByteArray::fromHex("0600")).status, 0x400F0256);
    QCOMPARE(host.read("a").bytes, QByteArray::fromHex("0600"));
    QCoreApplication::processEvents();
    QCOMPARE(host.service.requests().size(), 1);
}

/// That the client goes as well is for the leak check of the sanitizer build.
void TestDrvTovikIot::destructorFreesAfterClosing()
{
    DriverFixture host;
    host.service.setHandler(answerAll);
    QString password(100, QLatin1Char('p'));
    host.property.password = password;
    host.start();
    QTRY_VERIFY(host.log.contains("[TOVIK IoT] Connected to Cloud Success!"));
    const int with_driver = sharersOf(password);
    host.close();
    QCOMPARE(sharersOf(password), with_driver);
    host.log.take();
    host.driver.reset();
    QCOMPARE(sharersOf(password), with_driver - 1);
    QVERIFY2(host.log.lines().isEmpty(), qPrintable(host.log.lines().join(QLatin1Char('\n'))));
}

void TestDrvTovikIot::theClientsThreadGoes_data()
{
    QTest::addColumn<bool>("has_events");
    QTest::newRow("with the host's event loop, while the driver stays") << true;
    QTest::newRow("with the driver, when no event comes in between") << false;
}

void TestDrvTovikIot::theClientsThreadGoes()
{
    QFETCH(bool, has_events);
    DriverFixture host;
    ThreadListener listener;
    traffic::setListener(&host.link, &listener);
    host.start();
    QTRY_COMPARE(host.service.requests().size(), 1);
    const QPointer<QThread> thread(listener.thread);
    QVERIFY(thread);
    host.close();
    if (has_events)
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    else
        host.driver.reset();
    QVERIFY(!thread);
}

/// The destructor must not take the second client's running thread for the first one's ended one.
void TestDrvTovikIot::initialisedAnewAfterClosing()
{
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {latin1("--initialise-anew")});
    QVERIFY(child.waitForFinished(30000));
    QCOMPARE(child.exitStatus(), QProcess::NormalExit);
    QCOMPARE(child.readAllStandardOutput(), QByteArray("still polling\n"));
}

/// In a process of its own: the client that is left behind runs until the process ends.
void TestDrvTovikIot::destructorLeavesARunningClientAlone()
{
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {latin1("--leave-client-running")});
    QVERIFY(child.waitForFinished(30000));
    QCOMPARE(child.exitStatus(), QProcess::NormalExit);
    QCOMPARE(child.readAllStandardOutput(), QByteArray("still polling\n"));
    QCOMPARE(child.exitCode(), 0);
}

void TestDrvTovikIot::configurationIsTheDriversOwn()
{
    DriverFixture host;
    host.serve("a", "16Bit-UINT", 1);
    host.start();
    host.write("a", QByteArray::fromHex("0200"));
    const PropertyTovikIot stored =
        qvariant_cast<PropertyTovikIot>(host.link.driver_specific_data[latin1("tovik_iot")]);
    QCOMPARE(stored.dataitems.first().value, QVariant(1));
}

namespace {

/// Deletes a driver whose client runs, and reports whether that client goes on. Does not return
/// from success: the client would meet the end of the process.
int leaveClientRunning(bool initialise_anew)
{
    DriverFixture* host = new DriverFixture;
    host->serve("a", "16Bit-UINT", 0);
    host->service.setHandler(answerAll);
    host->start();
    if (initialise_anew) {
        host->close();
        QMetaObject::invokeMethod(host->driver.get(), "SlotInitialConnect");
    }
    auto polls = [&] { return host->service.paths().count("/qlix_api/imonitor/dataitem/value"); };
    if (!QTest::qWaitFor([&] { return polls() > 0; }))
        return 1;
    host->driver.reset();
    const int before = polls();
    if (!QTest::qWaitFor([&] { return polls() > before; }))
        return 2;
    std::puts("still polling");
    std::fflush(stdout);
    std::_Exit(0);
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication app(argc, argv);
    const QByteArray option(argc > 1 ? argv[1] : "");
    if (option == "--leave-client-running" || option == "--initialise-anew")
        return leaveClientRunning(option == "--initialise-anew");
    TestDrvTovikIot test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_drv_tovik_iot.moc"
