#include "tests/tools/host/device_run.h"

#include <QTest>

class TestHostProgramDeviceUsage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refuses_data();
    void refuses();
    void needsALibraryOfItsOwn();
    void namesThePlaceOfABadLink();
    void helpsWithDevices_data();
    void helpsWithDevices();

private:
    QString write(const QByteArray& text);

    QTemporaryDir folder_;
};

QString TestHostProgramDeviceUsage::write(const QByteArray& text)
{
    QFile file(folder_.filePath(QStringLiteral("c.json")));
    if (file.open(QIODevice::WriteOnly))
        file.write(text);
    return file.fileName();
}

void TestHostProgramDeviceUsage::refuses_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    const auto row = [](const char* name, const char* arguments, const char* message) {
        QTest::newRow(name) << words(arguments) << QString::fromUtf8(message);
    };
    row("bad link", "read a --link tcp:h", "tovik-host: --link: \"tcp:h\": the port is missing");
    row("service and device", "read a --link tcp:h:1 --url https://h",
        "tovik-host: --url is for a cloud driver and its service; a device on a link has none");
    row("address file", "watch a --link tcp:h:1 --url-file f", "tovik-host: --url-file is for a");
    row("confirmation", "write a 1 --link tcp:h:1 --confirm 5", "tovik-host: --confirm is for a");
    row("neither configuration nor link", "read a",
        "--config (a service and its items) or --link (a device) is required");
    row("raw without a link", "raw 01", "--link (a device) is required");
    row("nothing to watch", "watch --link tcp:h:1",
        "tovik-host: there is nothing to watch: name addresses, or a file of items with --config");
    row("nothing to send", "raw --link tcp:h:1", "HEX is required");
    row("no bytes", "raw 0G --link tcp:h:1", "tovik-host: \"0G\" is not hexadecimal");
    row("unknown type", "read a=Word --link tcp:h:1", "\"Word\" is no type; the types are: Bit");
    row("text without a length", "read a=String --link tcp:h:1",
        "tovik-host: a: a String needs its length: --length BYTES");
    row("no time", "read a --link tcp:h:1 --response-timeout 0", "--response-timeout");
    row("station out of range", "read a --link tcp:h:1 --station 65536", "--station");
    row("number in words", "read a --link tcp:h:1 --extra1 four", "--extra1");
    row("request of raw", "raw 01 --link tcp:h:1 --station 1", "--station");
    row("configuration that is not there", "read a --link tcp:h:1 --config /no/such/file",
        "tovik-host: cannot read the configuration \"/no/such/file\"");
    row("device's option for a service", "read a --config SERVICE --retries 1",
        "tovik-host: --retries is for a device on a link, and there is none: add --link "
        "tcp:HOST:PORT or --link serial:DEVICE");
    row("link's time for a service", "watch --config SERVICE --timeout 5",
        "tovik-host: --timeout is for a device on a link");
    row("item that a service does not have", "watch pump --config SERVICE",
        "tovik-host: the configuration has no item \"pump\"");
    row("raw to a service", "raw 01 --config SERVICE",
        "tovik-host: raw is for a device on a link, and there is none");
    row("device with a service's configuration", "read a --link tcp:h:1 --config SERVICE",
        "c.json:2: service: is for a cloud driver");
}

void TestHostProgramDeviceUsage::refuses()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const QString config = write(
        "{\n\"service\": {\"url\": \"https://127.0.0.1:1\", \"project\": \"p\","
        " \"email\": \"e\", \"password\": \"p\"},\n\"items\": [{\"name\": \"a\", \"id\": \"i\","
        " \"type\": \"Bit\"}]}");
    arguments.replaceInStrings(QStringLiteral("SERVICE"), config);
    HostProcess host;
    QCOMPARE(runOnly(host, arguments +
                               QStringList{QStringLiteral("--library"), HostProcess::echoDriver()}),
             2);
    const QString errors = host.errors();
    QVERIFY2(errors.contains(message), qPrintable(errors));
    QCOMPARE(host.output(), QString());
}

void TestHostProgramDeviceUsage::needsALibraryOfItsOwn()
{
    HostProcess host;
    QCOMPARE(runOnly(host, words("read a --link tcp:127.0.0.1:1")), 2);
    QCOMPARE(host.errors(), QStringLiteral("tovik-host: a device on a link needs its driver: name "
                                           "the library with --library, such as --library "
                                           "modbus_drv\n"));
}

void TestHostProgramDeviceUsage::namesThePlaceOfABadLink()
{
    const auto errors_of = [this](const char* link) {
        HostProcess host;
        const QString config =
            write(QByteArray("{\"link\": {") + link + "},\n\"items\": [{\"name\": \"a\"}]}");
        const int code = runOnly(host, {QStringLiteral("watch"), QStringLiteral("--config"), config,
                                        QStringLiteral("--library"), HostProcess::echoDriver()});
        return QStringLiteral("%1 %2").arg(code).arg(host.errors().remove(folder_.path()));
    };
    const QString bad = errors_of("\n\"address\": \"tcp:h\"");
    QVERIFY2(bad.startsWith(QLatin1String(
                 "2 tovik-host: /c.json:2: link.address: \"tcp:h\": the port is missing")),
             qPrintable(bad));
    const QString none = errors_of("\"retries\": 1");
    QCOMPARE(none, QStringLiteral("2 tovik-host: /c.json: \"link\" has no \"address\", and there "
                                  "is no --link\n"));
}

void TestHostProgramDeviceUsage::helpsWithDevices_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QStringList>("texts");
    const QString device = QStringLiteral("With a device:\n  tovik-host %1 ");
    for (const char* name : {"read", "write", "watch"}) {
        const QString command = QString::fromLatin1(name);
        QTest::newRow(name) << command
                            << QStringList{device.arg(command), QStringLiteral("--link LINK"),
                                           QStringLiteral("(default 16Bit-UINT)")};
    }
    QTest::newRow("raw") << QStringLiteral("raw")
                         << QStringList{QStringLiteral("Example:\n  tovik-host raw 01 03"),
                                        QStringLiteral("over TCP 12 polls of 1 ms"),
                                        QStringLiteral("over a serial line 52")};
}

void TestHostProgramDeviceUsage::helpsWithDevices()
{
    QFETCH(QString, command);
    QFETCH(QStringList, texts);
    HostProcess host;
    QCOMPARE(runOnly(host, {command, QStringLiteral("--help")}), 0);
    const QString output = host.output();
    for (const QString& text : qAsConst(texts))
        QVERIFY2(output.contains(text), qPrintable(output));
}

QTEST_GUILESS_MAIN(TestHostProgramDeviceUsage)
#include "tst_host_program_device_usage.moc"
