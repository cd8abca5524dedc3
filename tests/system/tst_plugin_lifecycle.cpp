#include "tests/support/cloud_process.h"
#include "tests/support/log_recorder.h"
#include "tests/system/plugin.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTest>
#include <QThread>

namespace {

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

/// Drivers come and go in one process.
class TestPluginLifecycle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void twentyDriversInARow();
    void twoDriversAtOnce();
    void closeDuringAHangingRequest_data();
    void closeDuringAHangingRequest();
    void textsWrittenWhileTheMonitorRuns();

private:
    int requestsSoFar();

    CloudProcess cloud_;
};

void TestPluginLifecycle::initTestCase()
{
    QVERIFY(cloud_.start());
}

void TestPluginLifecycle::cleanup()
{
    cloud_.control("DELETE", "/faults");
}

/// Requests that the service has finished with, in whatever way.
int TestPluginLifecycle::requestsSoFar()
{
    const ServiceAnswer status = cloud_.control("GET", "/status");
    int sum = 0;
    for (const auto& path : status.json.at("requests"))
        sum += path.get<int>();
    return sum;
}

void TestPluginLifecycle::twentyDriversInARow()
{
    for (int i = 0; i < 20; ++i) {
        LogRecorder log;
        PluginDriver host;
        host.use(cloud_);
        host.serve("On", "boiler-on", "Bit");
        host.start();
        // Every other one is closed in the middle of its first conversation.
        if (i % 2)
            QTRY_VERIFY(log.contains("[TOVIK IoT] Connected to Cloud Success!"));
        host.close();
        host.driver.reset();
        QVERIFY2(log.lines().filter(latin1("QObject")).isEmpty(),
                 qPrintable(log.lines().join(QLatin1Char('\n'))));
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void TestPluginLifecycle::twoDriversAtOnce()
{
    const LogRecorder log;
    PluginDriver first;
    first.use(cloud_);
    first.serve("Item", "recipe-options", "16Bit-HEX");
    PluginDriver second;
    second.use(cloud_);
    second.serve("Item", "hall-offset", "16Bit-INT");
    first.start();
    second.start();
    QTRY_COMPARE(first.read("Item").bytes, QByteArray::fromHex("ff00"));
    QTRY_COMPARE(second.read("Item").bytes, QByteArray::fromHex("fdff"));
    first.close();
    first.driver.reset();
    cloud_.control("PUT", "/items/hall-offset", "{\"value\":7}");
    QTRY_COMPARE(second.read("Item").bytes, QByteArray::fromHex("0700"));
    cloud_.control("PUT", "/items/hall-offset", "{\"value\":-3}");
}

void TestPluginLifecycle::closeDuringAHangingRequest_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<int>("requests"); // of the driver, the hanging one included
    QTest::newRow("login hangs") << QByteArray("hang:path=login") << 1;
    QTest::newRow("group list hangs") << QByteArray("hang:path=groups") << 2;
    QTest::newRow("item list hangs") << QByteArray("hang:path=items") << 3;
    QTest::newRow("read hangs") << QByteArray("hang:path=value") << 7;
    QTest::newRow("login drips") << QByteArray("drip:path=login,ms=500") << 1;
}

void TestPluginLifecycle::closeDuringAHangingRequest()
{
    QFETCH(QByteArray, fault);
    QFETCH(int, requests);
    const int before = requestsSoFar();
    const int id = cloud_.addFault(fault.toStdString());
    QVERIFY(id > 0);
    const LogRecorder log;
    PluginDriver host;
    host.use(cloud_);
    host.serve("On", "boiler-on", "Bit");
    host.serve("Light", "hall-light", "Bit");
    host.start();
    QTRY_VERIFY(cloud_.applied(id) > 0);
    QElapsedTimer timer;
    timer.start();
    host.close();
    QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
    host.write("On", QByteArray(1, '\0'));
    host.driver.reset();
    cloud_.control("DELETE", "/faults");
    QTRY_COMPARE(requestsSoFar(), before + requests);
    // A login of our own comes after anything that the driver might still have sent.
    QVERIFY(!cloud_.login().empty());
    QCOMPARE(requestsSoFar(), before + requests + 1);
}

void TestPluginLifecycle::textsWrittenWhileTheMonitorRuns()
{
    LogRecorder log;
    PluginDriver host;
    host.use(cloud_);
    host.serve("Display", "hall-display", "String");
    host.serve("Recipe", "recipe-name", "String");
    host.start();
    QTRY_VERIFY(log.contains("[TOVIK IoT] Connected to Cloud Success!"));
    QElapsedTimer timer;
    timer.start();
    int written = 0;
    while (timer.elapsed() < 3000) {
        const QByteArray text(20, char('a' + written % 26));
        QCOMPARE(host.write(written % 2 ? "Display" : "Recipe", text).status, 0);
        ++written;
        // As fast as the service takes them: every write is a request.
        QTRY_COMPARE(log.count("[TOVIK IoT] Write value done!"), written);
    }
    QVERIFY(written > 10);
}

QTEST_GUILESS_MAIN(TestPluginLifecycle)
#include "tst_plugin_lifecycle.moc"
