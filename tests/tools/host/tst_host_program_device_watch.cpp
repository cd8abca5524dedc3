#include "tests/tools/host/device_run.h"

#include <QProcess>
#include <QTest>

#include <csignal>

class TestHostProgramDeviceWatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void printsALineForEveryChange();
    void printsJson();
    void watchesTheItemsOfAFile();
    void goesOnAfterALostDevice_data();
    void goesOnAfterALostDevice();
    void tellsOfALossOnce();
    void endsOnSignal_data();
    void endsOnSignal();
    void endsAtItsTimeThoughTheDeviceIsSilent();
    void endsWhenNobodyReads();
};

namespace {

const int long_time = 50000;

/// The lines without their times.
QStringList withoutTimes(const QStringList& lines)
{
    QStringList rest;
    for (const QString& line : lines)
        rest << line.mid(25);
    return rest;
}

QStringList watch(const char* rest)
{
    return words("watch --interval 20 --response-timeout 40000") + words(rest);
}

} // namespace

void TestHostProgramDeviceWatch::printsALineForEveryChange()
{
    LineDevice device;
    HostProcess host;
    host.startBare(onDevice(watch("hex:0500 hex:01=Bit code:400B0101"), device));
    QVERIFY(waitForText(host, QStringLiteral("status:")));
    host.sendSignal(SIGINT);
    QCOMPARE(waitForEnd(host), 0);
    QCOMPARE(
        withoutTimes(host.outputLines()),
        QStringList({QStringLiteral("driver 1.2.3 watches ") + device.link(),
                     QStringLiteral("hex:0500 = 5  [05 00]  ok"),
                     QStringLiteral("hex:01 = 1  [01]  ok"),
                     QStringLiteral("code:400B0101: no value  0x400B0101"),
                     QStringLiteral("status: driver's code 0x400B0101"), QStringLiteral("end")}));
    QCOMPARE(host.errors(), QString());
}

void TestHostProgramDeviceWatch::printsJson()
{
    LineDevice device;
    HostProcess host;
    host.startBare(onDevice(watch("hex:0500 unbuildable --json"), device));
    QVERIFY(waitForText(host, QStringLiteral("\"event\":\"status\"")));
    host.sendSignal(SIGTERM);
    QCOMPARE(waitForEnd(host), 0);
    const QVector<nlohmann::json> lines = host.outputJson();
    QCOMPARE(lines.size(), 5);
    QCOMPARE(lines.at(0).at("event").get<std::string>(), std::string("start"));
    QCOMPARE(lines.at(0).at("link").get<std::string>(), device.link().toStdString());
    QVERIFY(!lines.at(0).contains("url"));
    QCOMPARE(lines.at(1).at("value").get<int>(), 5);
    QVERIFY(lines.at(2).at("value").is_null());
    QCOMPARE(lines.at(3).at("status").get<std::string>(), std::string("0x20010003"));
    QCOMPARE(lines.at(4).at("event").get<std::string>(), std::string("end"));
}

void TestHostProgramDeviceWatch::watchesTheItemsOfAFile()
{
    LineDevice device;
    HostProcess host;
    QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("c.json")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("{\"items\": [{\"name\": \"Speed\", \"address\": \"hex:0500\"}]}");
    file.close();
    host.startBare(onDevice(watch("--config") + QStringList{file.fileName()}, device));
    QVERIFY(waitForText(host, QStringLiteral("Speed = 5  [05 00]  ok")));
    host.sendSignal(SIGINT);
    QCOMPARE(waitForEnd(host), 0);
}

void TestHostProgramDeviceWatch::goesOnAfterALostDevice_data()
{
    QTest::addColumn<bool>("serial");
    QTest::newRow("TCP") << false;
    QTest::newRow("serial") << true;
}

void TestHostProgramDeviceWatch::goesOnAfterALostDevice()
{
    QFETCH(bool, serial);
    LineDevice device(serial ? ScriptedDevice::Line::Pty : ScriptedDevice::Line::Tcp);
    HostProcess host;
    host.startBare(onDevice(watch("hex:0500 --verbose"), device));
    QVERIFY(waitForText(host, QStringLiteral("hex:0500 = 5  [05 00]  ok")));
    device.leave();
    QVERIFY(waitForText(host, QStringLiteral("status: offline: no link to the device, or not "
                                             "supported (0x400CFFFF)")));
    device.comeBack();
    QVERIFY(waitForText(host, QStringLiteral("status: ok")));
    host.sendSignal(SIGINT);
    QCOMPARE(waitForEnd(host), 0);
    const QStringList lines = withoutTimes(host.outputLines());
    QCOMPARE(lines.count(QStringLiteral("status: ok")), 1);
    QCOMPARE(lines.count(QStringLiteral("hex:0500 = 5  [05 00]  ok")), 2);
    const QString errors = host.errors();
    QCOMPARE(errors.count(QLatin1String("[tovik-host] link lost: ")), 1);
    QCOMPARE(errors.count(QLatin1String("[tovik-host] link is back\n")), 1);
}

void TestHostProgramDeviceWatch::tellsOfALossOnce()
{
    LineDevice device;
    HostProcess host;
    host.startBare(onDevice(watch("a b c d"), device));
    QVERIFY(waitForText(host, QStringLiteral("d = 0  [00 00]  ok")));
    device.leave();
    QVERIFY(waitForText(host, QStringLiteral("status: offline")));
    // Long enough for many rounds and more than one attempt.
    QTest::qWait(1200);
    host.sendSignal(SIGINT);
    QCOMPARE(waitForEnd(host), 0);
    QCOMPARE(host.output().count(QLatin1String("status: offline")), 1);
    QCOMPARE(host.output().count(QLatin1String("d: no value  0x")), 1);
    QCOMPARE(host.errors(),
             QStringLiteral("tovik-host: %1: link lost: the device has closed the connection; "
                            "trying again until it is back\n")
                 .arg(device.link()));
}

void TestHostProgramDeviceWatch::endsOnSignal_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("code"); // 1: no value has arrived
    QTest::newRow("interrupt while the device is silent")
        << QStringLiteral("silent") << SIGINT << 1;
    QTest::newRow("termination while the device is silent")
        << QStringLiteral("silent") << SIGTERM << 1;
    QTest::newRow("hang-up between requests") << QStringLiteral("hex:0500") << SIGHUP << 0;
}

void TestHostProgramDeviceWatch::endsOnSignal()
{
    QFETCH(QString, address);
    QFETCH(int, number);
    QFETCH(int, code);
    LineDevice device;
    HostProcess host;
    host.startBare(onDevice({QStringLiteral("watch"), address, QStringLiteral("--response-timeout"),
                             QStringLiteral("600000"), QStringLiteral("--log"), host.logFile()},
                            device));
    QTRY_VERIFY_WITH_TIMEOUT(!device.lines().isEmpty(), long_time);
    if (code == 0)
        QVERIFY(waitForText(host, QStringLiteral("[05 00]")));
    host.sendSignal(number);
    QCOMPARE(waitForEnd(host), code);
    QVERIFY(host.log().contains(QLatin1String("[Echo] deleted after release in its thread")));
    QCOMPARE(withoutTimes(host.outputLines()).last(), QStringLiteral("end"));
}

void TestHostProgramDeviceWatch::endsAtItsTimeThoughTheDeviceIsSilent()
{
    LineDevice device;
    HostProcess host;
    QCOMPARE(runOn(host, device,
                   words("watch silent --response-timeout 600000 --retries 100 --seconds 0.3")),
             1);
    QVERIFY2(host.errors().endsWith(QLatin1String("tovik-host: no value has arrived\n")),
             qPrintable(host.errors()));
    QCOMPARE(withoutTimes(host.outputLines()).last(), QStringLiteral("end"));
}

void TestHostProgramDeviceWatch::endsWhenNobodyReads()
{
    LineDevice device;
    HostProcess host;
    QStringList arguments = onDevice(watch("a"), device);
    arguments.prepend(HostProcess::program());
    QProcess& process = host.process();
    process.start(QStringLiteral("sh"),
                  QStringList{QStringLiteral("-c"),
                              QStringLiteral("(\"$@\"; echo code $? >&2) | head -n 1"),
                              QStringLiteral("sh")} +
                      arguments);
    QCOMPARE(waitForEnd(host), 0);
    QCOMPARE(host.errors(), QStringLiteral("code 0\n"));
}

QTEST_GUILESS_MAIN(TestHostProgramDeviceWatch)
#include "tst_host_program_device_watch.moc"
