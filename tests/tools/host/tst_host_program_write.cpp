#include "tests/support/host_process.h"

#include <QTest>

#include <csignal>

class TestHostProgramWrite : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void saysHowFarItCame_data();
    void saysHowFarItCame();
    void refusesValues_data();
    void refusesValues();
    void takesNegativeNumbers();
    void printsJson_data();
    void printsJson();
    void needsNoDebugLines();
    void endsOnSignal();
};

void TestHostProgramWrite::saysHowFarItCame_data()
{
    QTest::addColumn<QString>("project");
    QTest::addColumn<QString>("id");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    const QStringList confirm = {QStringLiteral("--confirm"), QStringLiteral("2")};
    const auto row = [](const char* name, const char* project, const char* id,
                        const QStringList& options, int code, const char* text) {
        QTest::newRow(name) << QString::fromLatin1(project) << QString::fromLatin1(id) << options
                            << code << QString::fromLatin1(text);
    };
    row("sent", "plant", "hex:0500", {}, 0, "A = 6  sent");
    row("confirmed", "plant", "hex:0500", confirm, 0, "A = 6  confirmed");
    row("sent to a late service", "late", "hex:0500", confirm, 0, "A = 6  confirmed");
    row("read-only item", "plant", "ro:0500", {}, 1,
        "tovik-host: A: the value was not written: service error 8 (0x400F0008)");
    row("done, but not kept", "plant", "forgets:0500", confirm, 1,
        "tovik-host: A: sent, but the service shows 5");
    row("done, but not kept, nor asked", "plant", "forgets:0500", {}, 0, "A = 6  sent");
    row("never done", "plant", "lost:0500", {}, 1,
        "tovik-host: A: no answer to the write in time; the service may have taken the value");
    row("no usable answer", "plant", "garbled:0500", {}, 1,
        "tovik-host: A: no usable answer to the write; the service may have taken the value: "
        "service not reachable, or its reply not understood (0x400F0256)");
    row("a code that the driver keeps to itself", "plant", "oddcode:0500", {}, 1,
        "tovik-host: A: the value was not written: the service gave a code that the driver does "
        "not pass on; --verbose shows it");
    row("login refused", "refused", "hex:0500", {}, 1,
        "tovik-host: A: no connection: service error 1 (0x400F0001)");
    row("not reachable", "unreachable", "hex:0500", {}, 1,
        "tovik-host: A: no connection: service not reachable");
    row("a library that tells nothing", "older", "hex:0500", {}, 1,
        "tovik-host: A: this library does not tell what becomes of a write");
    row("no word at all", "slow", "hex:0500", {}, 1, "tovik-host: A: no connection");
}

void TestHostProgramWrite::saysHowFarItCame()
{
    QFETCH(QString, project);
    QFETCH(QString, id);
    QFETCH(QStringList, options);
    QFETCH(int, code);
    QFETCH(QString, text);
    HostProcess host(project);
    host.addItem(QStringLiteral("A"), id, QStringLiteral("16Bit-INT"));
    QCOMPARE(host.run(QStringList{QStringLiteral("write"), QStringLiteral("A"), QStringLiteral("6"),
                                  QStringLiteral("--timeout"), QStringLiteral("2")} +
                      options),
             code);
    const QString said = host.output() + host.errors();
    QVERIFY2(said.startsWith(text), qPrintable(said));
}

void TestHostProgramWrite::refusesValues_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("message");
    QTest::newRow("out of range") << QStringLiteral("A") << QStringLiteral("32768")
                                  << QStringLiteral(
                                         "A: 32768 is out of range for 16Bit-INT: -32768 to 32767");
    QTest::newRow("no number") << QStringLiteral("A") << QStringLiteral("warm")
                               << QStringLiteral("A: \"warm\" is not a whole number");
    QTest::newRow("text too long") << QStringLiteral("T") << QStringLiteral("abcde")
                                   << QStringLiteral("T: the text has 5 characters");
    QTest::newRow("unknown item") << QStringLiteral("X") << QStringLiteral("1")
                                  << QStringLiteral("the configuration has no item \"X\"");
}

void TestHostProgramWrite::refusesValues()
{
    QFETCH(QString, item);
    QFETCH(QString, value);
    QFETCH(QString, message);
    HostProcess host;
    host.addItem(QStringLiteral("A"), QStringLiteral("hex:0500"), QStringLiteral("16Bit-INT"));
    host.addItem(QStringLiteral("T"), QStringLiteral("hex:"), QStringLiteral("String"), 4);
    QCOMPARE(host.run({QStringLiteral("write"), item, value}), 2);
    const QString errors = host.errors();
    QVERIFY2(errors.startsWith(QLatin1String("tovik-host: ") + message), qPrintable(errors));
}

void TestHostProgramWrite::takesNegativeNumbers()
{
    HostProcess host;
    host.addItem(QStringLiteral("A"), QStringLiteral("hex:0500"), QStringLiteral("16Bit-INT"));
    host.addItem(QStringLiteral("F"), QStringLiteral("hex:00000000"),
                 QStringLiteral("32Bit-FLOAT"));
    QCOMPARE(host.run({QStringLiteral("write"), QStringLiteral("A"), QStringLiteral("-12")}), 0);
    QCOMPARE(host.output(), QStringLiteral("A = -12  sent\n"));
    QCOMPARE(host.run({QStringLiteral("write"), QStringLiteral("F"), QStringLiteral("-2.5")}), 0);
    QCOMPARE(host.output(), QStringLiteral("F = -2.5  sent\n"));
}

void TestHostProgramWrite::printsJson_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("done");
    QTest::newRow("sent") << QStringLiteral("hex:0500") << 0 << QStringLiteral("\"sent\"");
    QTest::newRow("refused") << QStringLiteral("ro:0500") << 1 << QStringLiteral("null");
}

void TestHostProgramWrite::printsJson()
{
    QFETCH(QString, id);
    QFETCH(int, code);
    QFETCH(QString, done);
    HostProcess host;
    host.addItem(QStringLiteral("A"), id, QStringLiteral("16Bit-INT"));
    QCOMPARE(host.run({QStringLiteral("write"), QStringLiteral("A"), QStringLiteral("6"),
                       QStringLiteral("--json")}),
             code);
    QCOMPARE(host.errors(), QString());
    const nlohmann::json line = host.outputJson().first();
    QCOMPARE(line.at("version").get<int>(), 1);
    QCOMPARE(line.at("time").get<std::string>().size(), std::size_t(24));
    QCOMPARE(line.at("value").get<int>(), 6);
    QCOMPARE(line.at("bytes").get<std::string>(), std::string("0600"));
    QCOMPARE(QString::fromStdString(line.at("done").dump()), done);
    QCOMPARE(line.contains("problem"), code != 0);
}

/// An environment may have switched them off.
void TestHostProgramWrite::needsNoDebugLines()
{
    qputenv("QT_LOGGING_RULES", "*.debug=false");
    HostProcess host;
    host.addItem(QStringLiteral("A"), QStringLiteral("hex:0500"), QStringLiteral("16Bit-INT"));
    const int code = host.run({QStringLiteral("write"), QStringLiteral("A"), QStringLiteral("6")});
    qunsetenv("QT_LOGGING_RULES");
    QCOMPARE(code, 0);
    QCOMPARE(host.output(), QStringLiteral("A = 6  sent\n"));
}

void TestHostProgramWrite::endsOnSignal()
{
    HostProcess host;
    host.addItem(QStringLiteral("A"), QStringLiteral("forgets:0500"), QStringLiteral("16Bit-INT"));
    host.start({QStringLiteral("write"), QStringLiteral("A"), QStringLiteral("6"),
                QStringLiteral("--confirm"), QStringLiteral("60"), QStringLiteral("--log"),
                host.logFile()});
    QTRY_VERIFY(host.log().contains(QLatin1String("Write value done!")));
    host.sendSignal(SIGTERM);
    QCOMPARE(host.wait(), 1);
    QVERIFY(host.errors().contains(QLatin1String("interrupted")));
    QVERIFY(!host.log().contains(QLatin1String("deleted without release")));
}

QTEST_GUILESS_MAIN(TestHostProgramWrite)
#include "tst_host_program_write.moc"
