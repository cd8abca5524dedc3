#include "tests/support/host_process.h"
#include "tests/tools/host/line_device.h"
#include "tools/host/driver/device_host.h"
#include "tools/host/terminal/context.h"
#include "tools/host/value/status_text.h"

#include <QTest>
#include <QTimer>

#include <memory>

using namespace tovik_host;
using namespace tovik_host::driver;

class TestHostDeviceHost : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void readsAndWrites_data() { addLinks(); }
    void readsAndWrites();
    void handsOverEveryNumber();
    void handsOverNameAndSettings();
    void saysWhyTheLinkDoesNotOpen_data();
    void saysWhyTheLinkDoesNotOpen();
    void opensALostLinkBeforeTheNextRequest_data() { addLinks(); }
    void opensALostLinkBeforeTheNextRequest();
    void saysThatTheLinkWentDuringTheRequest();
    void comesBackWithoutWaiting_data() { addLinks(); }
    void comesBackWithoutWaiting();
    void stopEndsARequestAtOnce();
    void asksAStoppedDriverNoMore();
    void passesFramesThrough_data() { addLinks(); }
    void passesFramesThrough();
    void releasesTheDriverInItsThread_data() { addLinks(); }
    void releasesTheDriverInItsThread();

private:
    static void addLinks();
    std::unique_ptr<LineDevice> makeDevice() const;
    DeviceConfig configFor(const LineDevice& device) const;

    std::unique_ptr<terminal::DebugLog> log_;
    std::unique_ptr<terminal::UnixSignals> unix_signals_;
    std::unique_ptr<Plugin> plugin_;
};

namespace {

config::ItemConfig item(const char* address, const char* type = "16Bit-UINT")
{
    config::ItemConfig item;
    item.name = QString::fromLatin1(address);
    item.type = value::findItemType(QString::fromLatin1(type));
    item.request.address = item.name;
    return item;
}

} // namespace

void TestHostDeviceHost::init()
{
    log_ = std::make_unique<terminal::DebugLog>();
    unix_signals_ = std::make_unique<terminal::UnixSignals>();
    plugin_ = std::make_unique<Plugin>(HostProcess::echoDriver());
}

void TestHostDeviceHost::cleanup()
{
    unix_signals_.reset();
    log_.reset();
}

void TestHostDeviceHost::addLinks()
{
    QTest::addColumn<bool>("serial");
    QTest::newRow("TCP") << false;
    QTest::newRow("serial") << true;
}

std::unique_ptr<LineDevice> TestHostDeviceHost::makeDevice() const
{
    QFETCH(bool, serial);
    return std::make_unique<LineDevice>(serial ? ScriptedDevice::Line::Pty
                                               : ScriptedDevice::Line::Tcp);
}

/// With all the time that a slow machine may take.
DeviceConfig TestHostDeviceHost::configFor(const LineDevice& device) const
{
    DeviceConfig config;
    config.link = parseLink(device.link(), QStringLiteral("test"));
    config.unit = QStringLiteral("unit");
    config.settings.response_timeout = 40000;
    config.open_milliseconds = 50000;
    return config;
}

void TestHostDeviceHost::readsAndWrites()
{
    const std::unique_ptr<LineDevice> device = makeDevice();
    DeviceHost host(*plugin_, configFor(*device), *unix_signals_);
    QCOMPARE(host.open(), QString());
    Answer answer = host.read(item("hex:0500"));
    QVERIFY(answer.arrived);
    QCOMPARE(answer.status, 0);
    QCOMPARE(answer.bytes, QByteArray("\x05\0", 2));
    QCOMPARE(answer.link_problem, QString());
    answer = host.write(item("speed"), QByteArray("\x39\x30"));
    QCOMPARE(answer.status, 0);
    QCOMPARE(host.read(item("speed")).bytes, QByteArray("\x39\x30"));
    QCOMPARE(device->lines().at(1), QByteArray("w 1 0 2 0 0 speed 3930"));
}

void TestHostDeviceHost::handsOverEveryNumber()
{
    LineDevice device;
    DeviceHost host(*plugin_, configFor(device), *unix_signals_);
    QCOMPARE(host.open(), QString());
    config::ItemConfig text = item("params", "String");
    text.length = 24;
    text.request.station = 17;
    text.request.field1 = 3;
    text.request.extra1 = 4;
    text.request.extra2 = -5;
    QCOMPARE(host.read(text).bytes, QByteArray("17 3 24 4 -5").leftJustified(24, '\0'));
}

void TestHostDeviceHost::handsOverNameAndSettings()
{
    LineDevice device;
    DeviceConfig config = configFor(device);
    config.settings = {1, 20000, 3, 4, 5};
    config.unit = QStringLiteral("{A}");
    DeviceHost host(*plugin_, config, *unix_signals_);
    QCOMPARE(host.open(), QString());
    QCOMPARE(host.read(item("hex:0500")).status, 0);
    const QStringList lines = log_->lastLines(2);
    QCOMPARE(lines.first(), QStringLiteral("[Echo] \"tovik_echo_driver\" settings 1 20000 3 4 5"));
    QCOMPARE(lines.last(), QStringLiteral("[Echo] unit \"{A}\" asks for \"hex:0500\""));
}

void TestHostDeviceHost::saysWhyTheLinkDoesNotOpen_data()
{
    QTest::addColumn<QString>("link");
    QTest::addColumn<QString>("problem");
    LineDevice device;
    device.leave();
    QTest::newRow("nobody listens") << device.link() << QStringLiteral("connection refused; is");
    QTest::newRow("no device") << QStringLiteral("serial:/no/such/port")
                               << QStringLiteral("there is no device \"/no/such/port\"; is the "
                                                 "adapter plugged in?");
    QTest::newRow("no such short name")
        << QStringLiteral("serial:no-such-tty")
        << QStringLiteral("there is no device \"/dev/no-such-tty\"");
    QTest::newRow("no serial port") << QStringLiteral("serial:/dev/null")
                                    << QStringLiteral("cannot open \"/dev/null\" as a serial port");
}

void TestHostDeviceHost::saysWhyTheLinkDoesNotOpen()
{
    QFETCH(QString, link);
    QFETCH(QString, problem);
    DeviceConfig config;
    config.link = parseLink(link, QStringLiteral("test"));
    DeviceHost host(*plugin_, config, *unix_signals_);
    const QString said = host.open();
    QVERIFY2(said.startsWith(problem), qPrintable(said));
}

void TestHostDeviceHost::opensALostLinkBeforeTheNextRequest()
{
    const std::unique_ptr<LineDevice> device = makeDevice();
    DeviceHost host(*plugin_, configFor(*device), *unix_signals_);
    QCOMPARE(host.open(), QString());
    QCOMPARE(host.read(item("hex:0500")).status, 0);
    device->leave();
    // The far end's leaving takes a moment to arrive.
    QTRY_COMPARE_WITH_TIMEOUT(host.readAgain(item("hex:0600")).status, value::offline_status,
                              30000);
    const Answer answer = host.read(item("hex:0600"));
    QCOMPARE(answer.status, value::offline_status);
    QVERIFY(!answer.link_problem.isEmpty());
    QVERIFY(!answer.has_value);
    device->comeBack();
    QTRY_COMPARE_WITH_TIMEOUT(host.read(item("hex:0700")).bytes, QByteArray("\x07\0", 2), 30000);
}

void TestHostDeviceHost::saysThatTheLinkWentDuringTheRequest()
{
    LineDevice device;
    DeviceHost host(*plugin_, configFor(device), *unix_signals_);
    QCOMPARE(host.open(), QString());
    const Answer answer = host.read(item("close"));
    QCOMPARE(answer.status, 0x20010003);
    QCOMPARE(answer.link_problem, QStringLiteral("the device has closed the connection"));
    QCOMPARE(host.read(item("hex:0500")).status, 0);
    QCOMPARE(device.connections(), 2);
}

void TestHostDeviceHost::comesBackWithoutWaiting()
{
    const std::unique_ptr<LineDevice> device = makeDevice();
    DeviceHost host(*plugin_, configFor(*device), *unix_signals_);
    QCOMPARE(host.open(), QString());
    QCOMPARE(host.readAgain(item("hex:0500")).status, 0);
    device->leave();
    QTRY_COMPARE_WITH_TIMEOUT(host.readAgain(item("hex:0500")).status, value::offline_status,
                              30000);
    QCOMPARE(host.readAgain(item("hex:0500")).status, value::offline_status);
    device->comeBack();
    QTRY_COMPARE_WITH_TIMEOUT(host.readAgain(item("hex:0500")).status, 0, 30000);
}

void TestHostDeviceHost::stopEndsARequestAtOnce()
{
    LineDevice device;
    DeviceHost host(*plugin_, configFor(device), *unix_signals_);
    QCOMPARE(host.open(), QString());
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] {
        if (!device.lines().isEmpty())
            host.stop();
    });
    timer.start(5);
    QElapsedTimer elapsed;
    elapsed.start();
    QCOMPARE(host.read(item("silent")).status, 0x1002);
    QVERIFY(elapsed.elapsed() < 30000);
}

void TestHostDeviceHost::asksAStoppedDriverNoMore()
{
    LineDevice device;
    DeviceHost host(*plugin_, configFor(device), *unix_signals_);
    QCOMPARE(host.open(), QString());
    host.stop();
    QVERIFY(!host.read(item("hex:0500")).arrived);
    QVERIFY(!host.write(item("speed"), QByteArray("\1\0", 2)).arrived);
    QVERIFY(!host.sendRaw("x\n").arrived);
    QVERIFY(device.lines().isEmpty());
}

void TestHostDeviceHost::passesFramesThrough()
{
    const std::unique_ptr<LineDevice> device = makeDevice();
    DeviceHost host(*plugin_, configFor(*device), *unix_signals_);
    QCOMPARE(host.open(), QString());
    QVERIFY(host.supportsRaw());
    const Answer answer = host.sendRaw(QByteArray("x\x01\xff\x02\n"));
    QCOMPARE(answer.status, 0);
    QCOMPARE(answer.bytes, QByteArray("\x01\xff\x02"));
}

void TestHostDeviceHost::releasesTheDriverInItsThread()
{
    const std::unique_ptr<LineDevice> device = makeDevice();
    {
        DeviceHost host(*plugin_, configFor(*device), *unix_signals_);
        QCOMPARE(host.open(), QString());
    }
    QCOMPARE(log_->lastLines(1),
             QStringList(QStringLiteral("[Echo] deleted after release in its thread")));
}

QTEST_GUILESS_MAIN(TestHostDeviceHost)
#include "tst_host_device_host.moc"
