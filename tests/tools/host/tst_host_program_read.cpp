#include "tests/support/host_process.h"

#include <QTest>

#include <csignal>

class TestHostProgramRead : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void printsValues();
    void isNotFooledByInitialValues_data();
    void isNotFooledByInitialValues();
    void explainsMissingValues_data();
    void explainsMissingValues();
    void keepsWhatCameBeforeAnError();
    void saysTheCauseAndWhatIsNext_data();
    void saysTheCauseAndWhatIsNext();
    void saysThatThereIsNoPassword();
    void waitsForALateService();
    void refusesALibraryWithoutAges();
    void printsJson();
    void takesPatterns();
    void namesWhatIsNear();
    void keepsBytesInAPipe();
    void endsOnSignal();
};

void TestHostProgramRead::printsValues()
{
    HostProcess host;
    host.addItem(QStringLiteral("Pump"), QStringLiteral("hex:d204"), QStringLiteral("16Bit-INT"));
    host.addItem(QStringLiteral("Text"), QStringLiteral("hex:4772fcdf65"), QStringLiteral("String"),
                 8);
    host.addItem(QStringLiteral("Other"), QStringLiteral("hex:01"), QStringLiteral("Bit"));
    const QStringList items = {QStringLiteral("read"), QStringLiteral("Text"),
                               QStringLiteral("Pump")};
    QCOMPARE(host.run(items), 0);
    QCOMPARE(host.output(), QStringLiteral("Text = Gr\u00fc\u00dfe\nPump = 1234\n"));
    QCOMPARE(host.errors(), QString());
    QCOMPARE(host.run(items + QStringList{QStringLiteral("--quiet")}), 0);
    QCOMPARE(host.output(), QStringLiteral("Gr\u00fc\u00dfe\n1234\n"));
}

void TestHostProgramRead::isNotFooledByInitialValues_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("value");
    const auto row = [](const char* name, const char* type, const char* id, const char* value) {
        QTest::newRow(name) << QString::fromLatin1(type) << QString::fromLatin1(id)
                            << QString::fromLatin1(value);
    };
    row("bit off is the first initial value", "Bit", "hex:00", "0");
    row("bit on is the second initial value", "Bit", "hex:01", "1");
    row("number zero", "16Bit-INT", "hex:0000", "0");
    row("first initial value", "16Bit-INT", "hex:b51c", "7349");
    row("second initial value", "16Bit-INT", "hex:ad21", "8621");
    row("text as the first initial value", "String", "hex:37333439", "7349");
    row("empty text", "String", "hex:", "");
}

void TestHostProgramRead::isNotFooledByInitialValues()
{
    QFETCH(QString, type);
    QFETCH(QString, id);
    QFETCH(QString, value);
    HostProcess host;
    host.addItem(QStringLiteral("A"), id, type);
    QCOMPARE(host.run({QStringLiteral("read"), QStringLiteral("A"), QStringLiteral("-q")}), 0);
    QCOMPARE(host.output(), value + QLatin1Char('\n'));
}

void TestHostProgramRead::explainsMissingValues_data()
{
    QTest::addColumn<QString>("project");
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("message");
    const auto row = [](const char* name, const char* project, const char* id,
                        const char* message) {
        QTest::newRow(name) << QString::fromLatin1(project) << QString::fromLatin1(id)
                            << QString::fromLatin1(message);
    };
    row("login refused", "refused", "hex:00", "no value: service error 1 (0x400F0001)");
    row("not reachable", "unreachable", "hex:00",
        "no value: service not reachable, or its reply not understood (0x400F0256)");
    row("no word at all", "slow", "hex:00", "no value came in time");
    row("mute driver", "mute", "hex:00", "no value came in time");
    row("unknown item", "plant", "bad", "no value: service error 7 (0x400F0007)");
    row("value of another type", "plant", "keep", "the service's value is no 16Bit-INT");
    row("too few bytes", "plant", "hex:05", "the driver's bytes [05] are no 16Bit-INT");
}

void TestHostProgramRead::explainsMissingValues()
{
    QFETCH(QString, project);
    QFETCH(QString, id);
    QFETCH(QString, message);
    HostProcess host(project);
    host.addItem(QStringLiteral("A"), id, QStringLiteral("16Bit-INT"));
    QCOMPARE(host.run({QStringLiteral("read"), QStringLiteral("A"), QStringLiteral("--timeout"),
                       QStringLiteral("2")}),
             1);
    QCOMPARE(host.output(), QString());
    const QString errors = host.errors();
    QVERIFY2(errors.startsWith(QLatin1String("tovik-host: A: ") + message), qPrintable(errors));
}

void TestHostProgramRead::keepsWhatCameBeforeAnError()
{
    HostProcess host;
    host.addItem(QStringLiteral("A"), QStringLiteral("hex:0500"), QStringLiteral("16Bit-INT"));
    host.addItem(QStringLiteral("B"), QStringLiteral("bad"), QStringLiteral("16Bit-INT"));
    host.addItem(QStringLiteral("C"), QStringLiteral("hex:0700"), QStringLiteral("16Bit-INT"));
    QCOMPARE(host.run({QStringLiteral("read"), QStringLiteral("*")}), 1);
    QCOMPARE(host.output(), QStringLiteral("A = 5\n"));
    QCOMPARE(host.errors(),
             QStringLiteral(
                 "tovik-host: B: no value: service error 7 (0x400F0007); does the service have an "
                 "item with the id \"bad\"?\n"
                 "tovik-host: C: not reached: B ends the cycle with service error 7 (0x400F0007)\n"
                 "tovik-host: next: tovik-host check --config %1\n")
                 .arg(host.configFile()));
}

void TestHostProgramRead::saysTheCauseAndWhatIsNext_data()
{
    QTest::addColumn<QString>("project");
    QTest::addColumn<QString>("cause");
    QTest::newRow("login refused") << QStringLiteral("refused")
                                   << QStringLiteral("login refused with service error 1: look at "
                                                     "e-mail, password and project");
    const QString nobody =
        QStringLiteral("connect 127.0.0.1 port 1: refused: nobody listens on this port, or a "
                       "firewall says no; see whether the service runs, and on this port");
    QTest::newRow("not reachable") << QStringLiteral("unreachable") << nobody;
    QTest::newRow("no word at all") << QStringLiteral("slow") << nobody;
}

void TestHostProgramRead::saysTheCauseAndWhatIsNext()
{
    QFETCH(QString, project);
    QFETCH(QString, cause);
    const QString last = QStringLiteral("tovik-host: %1; next: tovik-host check --config %2\n");
    HostProcess host(project);
    host.addItem(QStringLiteral("A"), QStringLiteral("hex:00"), QStringLiteral("Bit"));
    for (const QStringList& words :
         {QStringList{QStringLiteral("read"), QStringLiteral("A"), QStringLiteral("--timeout"),
                      QStringLiteral("1")},
          QStringList{QStringLiteral("write"), QStringLiteral("A"), QStringLiteral("1"),
                      QStringLiteral("--timeout"), QStringLiteral("1")},
          QStringList{QStringLiteral("watch"), QStringLiteral("--seconds"), QStringLiteral("1")}}) {
        QCOMPARE(host.run(words), 1);
        const QString errors = host.errors();
        QVERIFY2(errors.endsWith(last.arg(cause, host.configFile())), qPrintable(errors));
    }
}

/// Before anything is tried.
void TestHostProgramRead::saysThatThereIsNoPassword()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("c.json"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("{\"service\": {\"url\": \"https://127.0.0.1:1\", \"project\": \"p\", "
               "\"email\": \"e\"},\n\"items\": [{\"name\": \"A\", \"id\": \"a\", \"type\": "
               "\"Bit\"}]}");
    file.close();
    HostProcess host;
    host.startBare({QStringLiteral("read"), QStringLiteral("A"), QStringLiteral("--config"), path});
    QCOMPARE(host.wait(), 2);
    QCOMPARE(host.errors(),
             QStringLiteral("tovik-host: %1:1: service: no password is given: add "
                            "\"password_file\", \"password_env\" or \"password\", or set "
                            "TOVIK_PASSWORD\n")
                 .arg(path));
    host.startBare({QStringLiteral("catalogue"), QStringLiteral("--config"), path});
    QCOMPARE(host.wait(), 2);
    QVERIFY(host.errors().startsWith(QLatin1String("tovik-host: no password was given; set ")));
}

void TestHostProgramRead::waitsForALateService()
{
    HostProcess host(QStringLiteral("late"));
    host.addItem(QStringLiteral("A"), QStringLiteral("hex:0500"), QStringLiteral("16Bit-INT"));
    QCOMPARE(host.run({QStringLiteral("read"), QStringLiteral("A")}), 0);
    QCOMPARE(host.output(), QStringLiteral("A = 5\n"));
}

void TestHostProgramRead::refusesALibraryWithoutAges()
{
    HostProcess host(QStringLiteral("older"));
    host.addItem(QStringLiteral("A"), QStringLiteral("hex:0500"), QStringLiteral("16Bit-INT"));
    QCOMPARE(host.run({QStringLiteral("read"), QStringLiteral("A")}), 2);
    QVERIFY(host.errors().contains(QLatin1String("does not tell when a value has come")));
}

void TestHostProgramRead::printsJson()
{
    HostProcess host;
    host.addItem(QStringLiteral("A"), QStringLiteral("hex:feff"), QStringLiteral("16Bit-INT"));
    host.addItem(QStringLiteral("B"), QStringLiteral("bad"), QStringLiteral("Bit"));
    QCOMPARE(host.run({QStringLiteral("read"), QStringLiteral("A"), QStringLiteral("B"),
                       QStringLiteral("--json")}),
             1);
    const QVector<nlohmann::json> lines = host.outputJson();
    QCOMPARE(lines.size(), 2);
    QCOMPARE(lines.at(0).at("version").get<int>(), 1);
    QCOMPARE(lines.at(0).at("time").get<std::string>().size(), std::size_t(24));
    QCOMPARE(lines.at(0).at("value").get<int>(), -2);
    QCOMPARE(lines.at(0).at("bytes").get<std::string>(), std::string("feff"));
    QVERIFY(!lines.at(0).contains("problem"));
    QVERIFY(lines.at(1).at("value").is_null());
    QCOMPARE(lines.at(1).at("status").get<std::string>(), std::string("0x400F0007"));
    QVERIFY(lines.at(1).contains("problem"));
}

void TestHostProgramRead::takesPatterns()
{
    HostProcess host;
    host.addItem(QStringLiteral("Pump"), QStringLiteral("hex:0100"), QStringLiteral("16Bit-INT"));
    host.addItem(QStringLiteral("[Light]"), QStringLiteral("hex:0200"),
                 QStringLiteral("16Bit-INT"));
    host.addItem(QStringLiteral("Pipe"), QStringLiteral("hex:0300"), QStringLiteral("16Bit-INT"));
    QCOMPARE(host.run({QStringLiteral("read"), QStringLiteral("[Light]"), QStringLiteral("[NOP]*"),
                       QStringLiteral("Pi??")}),
             0);
    QCOMPARE(host.output(), QStringLiteral("[Light] = 2\nPump = 1\nPipe = 3\n"));
}

void TestHostProgramRead::namesWhatIsNear()
{
    HostProcess host;
    host.addItem(QStringLiteral("Boiler.Flow"), QStringLiteral("hex:01"), QStringLiteral("Bit"));
    QCOMPARE(host.run({QStringLiteral("read"), QStringLiteral("boiler.flow")}), 2);
    QCOMPARE(host.errors(), QStringLiteral("tovik-host: the configuration has no item "
                                           "\"boiler.flow\"; Boiler.Flow?\n"));
}

void TestHostProgramRead::keepsBytesInAPipe()
{
    HostProcess host;
    host.addItem(QStringLiteral("T"), QStringLiteral("hex:411b5b324a0a0742"),
                 QStringLiteral("String"));
    QCOMPARE(host.run({QStringLiteral("read"), QStringLiteral("T")}), 0);
    QCOMPARE(host.output(), QStringLiteral("T = A\033[2J\n\007B\n"));
}

void TestHostProgramRead::endsOnSignal()
{
    HostProcess host(QStringLiteral("slow"));
    host.addItem(QStringLiteral("A"), QStringLiteral("hex:0500"), QStringLiteral("16Bit-INT"));
    host.start({QStringLiteral("read"), QStringLiteral("A"), QStringLiteral("--timeout"),
                QStringLiteral("60"), QStringLiteral("--log"), host.logFile()});
    QTRY_VERIFY(host.log().contains(QLatin1String("[Fake]")));
    host.sendSignal(SIGINT);
    QCOMPARE(host.wait(), 1);
    QCOMPARE(host.errors(), QStringLiteral("tovik-host: A: interrupted\n"));
    QVERIFY(host.log().contains(QLatin1String("[Fake] deleted after release")));
}

QTEST_GUILESS_MAIN(TestHostProgramRead)
#include "tst_host_program_read.moc"
