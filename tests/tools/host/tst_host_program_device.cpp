#include "tests/tools/host/device_run.h"

#include <QFloat16> // complete for the comparison of JSON values
#include <QTest>

#include <csignal>

class TestHostProgramDevice : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reads();
    void readsJson();
    void readsManyElementsInOneRequest();
    void writesManyElementsInOneRequest();
    void refusesElementsThatAreNone_data();
    void refusesElementsThatAreNone();
    void readsItemsOfAFile();
    void readsOnASerialLine();
    void explainsMissingValues_data();
    void explainsMissingValues();
    void repeats();
    void printsWhatCameBesideErrors();
    void writes_data();
    void writes();
    void explainsFailedWrites_data();
    void explainsFailedWrites();
    void saysThatTheLinkDoesNotOpen_data();
    void saysThatTheLinkDoesNotOpen();
    void endsOnSignal();
};

void TestHostProgramDevice::reads()
{
    LineDevice device;
    HostProcess host;
    QCOMPARE(runOn(host, device,
                   words("read hex:ffff hex:feff=16Bit-INT hex:0000c03f=32Bit-FLOAT hex:01=Bit")),
             0);
    QCOMPARE(host.output(), QStringLiteral("hex:ffff = 65535\nhex:feff = -2\n"
                                           "hex:0000c03f = 1.5\nhex:01 = 1\n"));
    QCOMPARE(host.errors(), QString());
    QCOMPARE(runOn(host, device,
                   words("read params --type String --length 12 --station 3 --field1 -4 --extra1 5 "
                         "--extra2 6 --quiet")),
             0);
    QCOMPARE(host.output(), QStringLiteral("3 -4 12 5 6\n"));
}

void TestHostProgramDevice::readsJson()
{
    LineDevice device;
    HostProcess host;
    QCOMPARE(runOn(host, device, words("read hex:0500 code:400B0102 --json")), 1);
    const QVector<nlohmann::json> lines = host.outputJson();
    QCOMPARE(lines.size(), 2);
    QCOMPARE(lines.at(0).at("item").get<std::string>(), std::string("hex:0500"));
    QCOMPARE(lines.at(0).at("value").get<int>(), 5);
    QCOMPARE(lines.at(0).at("status_text").get<std::string>(), std::string("ok"));
    QVERIFY(!lines.at(0).contains("problem"));
    QVERIFY(lines.at(1).at("value").is_null());
    QCOMPARE(lines.at(1).at("status").get<std::string>(), std::string("0x400B0102"));
    QCOMPARE(lines.at(1).at("status_text").get<std::string>(),
             std::string("driver's code 0x400B0102"));
    QVERIFY(lines.at(1).contains("problem"));
}

void TestHostProgramDevice::readsManyElementsInOneRequest()
{
    LineDevice device;
    HostProcess host;
    QCOMPARE(runOn(host, device, words("read hex:01000200feff=16Bit-INT --elements 3")), 0);
    QCOMPARE(host.output(), QStringLiteral("hex:01000200feff = 1 2 -2\n"));
    QCOMPARE(device.lines(), QList<QByteArray>{"r 1 0 6 0 0 hex:01000200feff"});
    QCOMPARE(runOn(host, device, words("read hex:0100ffff --elements 2 --json")), 0);
    QCOMPARE(host.outputJson().first().at("value"), nlohmann::json({1, 65535}));
    QCOMPARE(runOn(host, device, words("read hex:0100 --elements 2")), 1);
    QVERIFY2(host.errors().contains(QLatin1String("[01 00] are no 2 16Bit-UINT")),
             qPrintable(host.errors()));
}

void TestHostProgramDevice::writesManyElementsInOneRequest()
{
    LineDevice device;
    HostProcess host;
    const QStringList three{QStringLiteral("write"), QStringLiteral("a"),
                            QStringLiteral("1 2 65535"), QStringLiteral("--elements"),
                            QStringLiteral("3")};
    QCOMPARE(runOn(host, device, three), 0);
    QCOMPARE(host.output(), QStringLiteral("a = 1 2 65535  written\n"));
    QCOMPARE(device.lines().size(), 1);
    QVERIFY(device.lines().first().endsWith(" a 01000200ffff"));
}

void TestHostProgramDevice::refusesElementsThatAreNone_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("problem");
    QTest::newRow("too few values") << words("write a 1 --elements 2")
                                    << QStringLiteral("has 2 elements, and here are 1 values");
    QTest::newRow("beyond the type")
        << QStringList{QStringLiteral("write"), QStringLiteral("a"), QStringLiteral("1 65536"),
                       QStringLiteral("--elements"), QStringLiteral("2")}
        << QStringLiteral("65536");
    QTest::newRow("none") << words("read a --elements 0") << QStringLiteral("--elements");
}

void TestHostProgramDevice::refusesElementsThatAreNone()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, problem);
    LineDevice device;
    HostProcess host;
    QCOMPARE(runOn(host, device, arguments), 2);
    QVERIFY2(host.errors().contains(problem), qPrintable(host.errors()));
    QCOMPARE(device.lines().size(), 0);
}

void TestHostProgramDevice::readsItemsOfAFile()
{
    LineDevice device;
    QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("device.json")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("{\"link\": {\"address\": \"" + device.link().toLatin1() +
               "\", \"response_timeout\": 40000, \"link_param_b\": 8},\n"
               "\"items\": [{\"name\": \"Speed\", \"address\": \"hex:0500\"},\n"
               "{\"name\": \"Other\", \"address\": \"params\", \"type\": \"String\","
               " \"length\": 10, \"station\": 4}]}");
    file.close();
    HostProcess host;
    QCOMPARE(
        runOnly(host, {QStringLiteral("read"), QStringLiteral("Other"), QStringLiteral("Speed"),
                       QStringLiteral("--config"), file.fileName(), QStringLiteral("--library"),
                       HostProcess::echoDriver(), QStringLiteral("--log"), host.logFile()}),
        0);
    QCOMPARE(host.output(), QStringLiteral("Other = 4 0 10 0 0\nSpeed = 5\n"));
    QVERIFY(host.log().contains(QLatin1String("settings 0 40000 0 0 8")));
}

void TestHostProgramDevice::readsOnASerialLine()
{
    LineDevice device(ScriptedDevice::Line::Pty);
    HostProcess host;
    QCOMPARE(runOn(host, device, words("read hex:0500")), 0);
    QCOMPARE(host.output(), QStringLiteral("hex:0500 = 5\n"));
}

void TestHostProgramDevice::explainsMissingValues_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("message");
    const auto row = [](const char* name, const char* address, const char* message) {
        QTest::newRow(name) << QString::fromLatin1(address) << QString::fromLatin1(message);
    };
    row("silent device", "silent",
        "the device did not answer in time (0x400A0000); are station, link settings and "
        "--response-timeout (50 ms) right?");
    row("no request", "unbuildable",
        "the request could not be built, or the answer had the wrong length (0x20010003); does "
        "the driver know this address, and is the type right? --verbose shows its log");
    row("too long an answer", "long:0500",
        "the request could not be built, or the answer had the wrong length (0x20010003); does");
    row("the driver's own code", "code:400B0101",
        "driver's code 0x400B0101; what it means, the driver's documentation says");
    row("in the driver's words", "code:400B0301", "no echo here (0x400B0301)\n");
    row("in its words for many codes", "code:400B0402",
        "the wall refuses with code 2 (0x400B0402)\n");
    row("no answer of the driver", "mute", "the driver does not answer; a driver of a device");
    row("too few bytes", "hex:05", "the driver's bytes [05] are no 16Bit-UINT");
    row("lost connection", "close",
        "the request could not be built, or the answer had the wrong length (0x20010003): the "
        "device has closed the connection");
}

void TestHostProgramDevice::explainsMissingValues()
{
    QFETCH(QString, address);
    QFETCH(QString, message);
    QStringList arguments = {QStringLiteral("read"), address};
    if (address == QLatin1String("silent"))
        arguments += words("--response-timeout 50");
    LineDevice device;
    HostProcess host;
    QCOMPARE(runOn(host, device, arguments), 1);
    QCOMPARE(host.output(), QString());
    const QString errors = host.errors();
    QVERIFY2(errors.startsWith(QStringLiteral("tovik-host: %1: %2").arg(address, message)),
             qPrintable(errors));
}

void TestHostProgramDevice::repeats()
{
    LineDevice device;
    HostProcess host;
    QCOMPARE(runOn(host, device, words("read silent --response-timeout 20 --retries 2")), 1);
    QTRY_COMPARE_WITH_TIMEOUT(device.lines().size(), 3, 50000);
}

void TestHostProgramDevice::printsWhatCameBesideErrors()
{
    LineDevice device;
    HostProcess host;
    QCOMPARE(runOn(host, device, words("read hex:0500 code:5 hex:0600")), 1);
    QCOMPARE(host.output(), QStringLiteral("hex:0500 = 5\nhex:0600 = 6\n"));
    QVERIFY(host.errors().startsWith(QLatin1String("tovik-host: code:5: driver's code")));
}

void TestHostProgramDevice::writes_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("number") << words("write speed 12345") << QStringLiteral("speed = 12345")
                            << QByteArray("w 1 0 2 0 0 speed 3930");
    QTest::newRow("negative number")
        << words("write speed -2 --type 16Bit-INT") << QStringLiteral("speed = -2")
        << QByteArray("w 1 0 2 0 0 speed feff");
    QTest::newRow("type at the address")
        << words("write level=32Bit-FLOAT 1.5 --station 7 --extra1 4")
        << QStringLiteral("level = 1.5") << QByteArray("w 7 0 4 4 0 level 0000c03f");
    QTest::newRow("text") << words("write text ab --type String --length 4")
                          << QStringLiteral("text = ab") << QByteArray("w 1 0 4 0 0 text 61620000");
}

void TestHostProgramDevice::writes()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, output);
    QFETCH(QByteArray, line);
    LineDevice device;
    HostProcess host;
    QCOMPARE(runOn(host, device, arguments), 0);
    QCOMPARE(host.output(), output + QStringLiteral("  written\n"));
    QCOMPARE(device.lines(), QList<QByteArray>{line});
}

void TestHostProgramDevice::explainsFailedWrites_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exit_code");
    QTest::addColumn<QString>("message");
    QTest::newRow("out of range") << words("write speed 65536") << 2
                                  << QStringLiteral("speed: 65536 is out of range for 16Bit-UINT");
    QTest::newRow("text too long")
        << words("write text abc --type String --length 2") << 2
        << QStringLiteral("text: the text has 3 characters; the item has room for 2");
    QTest::newRow("refused") << words("write code:400B0102 1") << 1
                             << QStringLiteral("code:400B0102: not written: driver's code");
    QTest::newRow("silent device")
        << words("write silent 1 --response-timeout 50") << 1
        << QStringLiteral("silent: not written: the device did not answer in time");
}

void TestHostProgramDevice::explainsFailedWrites()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exit_code);
    QFETCH(QString, message);
    LineDevice device;
    HostProcess host;
    QCOMPARE(runOn(host, device, arguments), exit_code);
    QCOMPARE(host.output(), QString());
    const QString errors = host.errors();
    QVERIFY2(errors.startsWith(QStringLiteral("tovik-host: ") + message), qPrintable(errors));
}

void TestHostProgramDevice::saysThatTheLinkDoesNotOpen_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("read") << words("read a");
    QTest::newRow("write") << words("write a 1");
    QTest::newRow("watch") << words("watch a");
    QTest::newRow("raw") << words("raw 01");
}

void TestHostProgramDevice::saysThatTheLinkDoesNotOpen()
{
    QFETCH(QStringList, arguments);
    LineDevice device;
    device.leave();
    HostProcess host;
    QCOMPARE(runOn(host, device, arguments), 1);
    QCOMPARE(host.output(), QString());
    QCOMPARE(host.errors(), QStringLiteral("tovik-host: %1: connection refused; is the device's "
                                           "service running, and the port right?\n")
                                .arg(device.link()));
}

void TestHostProgramDevice::endsOnSignal()
{
    LineDevice device;
    HostProcess host;
    host.startBare(onDevice({QStringLiteral("read"), QStringLiteral("silent"),
                             QStringLiteral("hex:0500"), QStringLiteral("--response-timeout"),
                             QStringLiteral("600000"), QStringLiteral("--log"), host.logFile()},
                            device));
    QTRY_COMPARE_WITH_TIMEOUT(device.lines().size(), 1, 50000);
    host.sendSignal(SIGINT);
    QCOMPARE(waitForEnd(host), 1);
    QCOMPARE(host.errors(), QStringLiteral("tovik-host: silent: interrupted\n"));
    QVERIFY(host.log().contains(QLatin1String("[Echo] deleted after release in its thread")));
}

QTEST_GUILESS_MAIN(TestHostProgramDevice)
#include "tst_host_program_device.moc"
