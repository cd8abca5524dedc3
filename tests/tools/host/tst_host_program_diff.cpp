#include "tests/support/cloud_process.h"
#include "tests/tools/host/service_run.h"

#include <QTest>

/// `tovik-host diff` with files and against the simulated service.
class TestHostProgramDiff : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void findsNothing();
    void findsWhatHasChanged();
    void ignoresWhatDoesNotCount();
    void needsNoPasswordForFiles();
    void saysThatItCannotWrite();
    void printsJson();
    void comparesAConfiguration();
    void isInTrouble_data();
    void isInTrouble();

private:
    QString write(const QString& name, const nlohmann::json& json);

    CloudProcess cloud_;
    QTemporaryDir folder_;
    nlohmann::json now_;
    QString now_file_;
};

QString TestHostProgramDiff::write(const QString& name, const nlohmann::json& json)
{
    QFile file(folder_.filePath(name));
    if (file.open(QIODevice::WriteOnly))
        file.write(QByteArray::fromStdString(json.dump(1)));
    return file.fileName();
}

void TestHostProgramDiff::initTestCase()
{
    QVERIFY(cloud_.start());
    ServiceRun run(cloud_.port());
    QCOMPARE(run.command({QStringLiteral("catalogue"), QStringLiteral("--json")}), 0);
    now_ = nlohmann::json::parse(run.host().output().toStdString());
    now_file_ = write(QStringLiteral("now.json"), now_);
}

void TestHostProgramDiff::cleanup()
{
    QCOMPARE(cloud_.control("DELETE", "/faults").status, 200);
}

void TestHostProgramDiff::findsNothing()
{
    ServiceRun run(cloud_.port());
    run.host().startBare({QStringLiteral("diff"), now_file_});
    QCOMPARE(run.host().wait(), 0);
    QCOMPARE(run.host().output(), QString());
    QCOMPARE(run.host().errors(), QString());
}

/// The catalogue as if it had been saved long ago, against the service of now.
void TestHostProgramDiff::findsWhatHasChanged()
{
    nlohmann::json old = now_;
    nlohmann::json& boiler = old["groups"][0]["items"];
    boiler[0]["name"] = "On";
    boiler[3]["type"] = "32Bit-INT";
    boiler[11]["length"] = 8;
    boiler.push_back({{"id", "old"}, {"name", "Old"}, {"type", "Bit"}});
    old["groups"][0]["items"].erase(8);
    old["groups"][1]["items"].push_back(boiler[1]);
    boiler.erase(1);
    ServiceRun run(cloud_.port());
    run.host().startBare({QStringLiteral("diff"), write(QStringLiteral("old.json"), old)});
    QCOMPARE(run.host().wait(), 1);
    QCOMPARE(run.host().output(),
             QStringLiteral("~ Boiler/On (boiler-on): renamed from \"On\" to \"Boiler on\"\n"
                            "~ Boiler/Flow setpoint (boiler-setpoint): type 16Bit-INT, was "
                            "32Bit-INT\n"
                            "~ Boiler/Serial number (boiler-serial): length 16, was 8\n"
                            "- Boiler/Old (old): gone\n"
                            "~ Hall/Burner running (boiler-burner): moved from group \"Hall\" to "
                            "\"Boiler\"\n"
                            "+ Boiler/Pump speed (boiler-pump): added, 16Bit-BCD\n"));
}

void TestHostProgramDiff::ignoresWhatDoesNotCount()
{
    nlohmann::json old = now_;
    old["groups"][0]["items"][0]["name"] = "On";
    old["groups"][0]["items"][0]["type"] = "String";
    const QString file = write(QStringLiteral("old.json"), old);
    HostProcess host;
    host.startBare({QStringLiteral("diff"), QStringLiteral("--ignore"), QStringLiteral("renamed"),
                    file, now_file_});
    QCOMPARE(host.wait(), 1);
    QCOMPARE(host.outputLines().size(), 1);
    host.startBare({QStringLiteral("diff"), QStringLiteral("--ignore"), QStringLiteral("renamed"),
                    QStringLiteral("--ignore"), QStringLiteral("type"), file, now_file_});
    QCOMPARE(host.wait(), 0);
}

void TestHostProgramDiff::needsNoPasswordForFiles()
{
    qunsetenv("TOVIK_TEST_UNSET");
    const QString config = write(
        QStringLiteral("c.json"),
        {{"service", {{"project", "p"}, {"email", "e"}, {"password_env", "TOVIK_TEST_UNSET"}}},
         {"items", {{{"name", "Boiler.Boiler on"}, {"id", "boiler-on"}, {"type", "Bit"}}}}});
    HostProcess host;
    host.startBare({QStringLiteral("diff"), config, now_file_});
    QCOMPARE(host.wait(), 0);
    QCOMPARE(host.errors(), QString());
}

void TestHostProgramDiff::saysThatItCannotWrite()
{
    HostProcess host;
    for (const char* command : {"diff \"$1\" \"$1\" --json", "configure '*' --catalogue \"$1\""}) {
        host.process().start(
            QStringLiteral("sh"),
            {QStringLiteral("-c"),
             QStringLiteral("exec \"$0\" ") + QLatin1String(command) + QStringLiteral(" >&-"),
             HostProcess::program(), now_file_});
        QCOMPARE(host.wait(), 2);
        const QString errors = host.errors();
        QVERIFY2(errors.contains(QLatin1String("cannot write the standard output: ")),
                 qPrintable(errors));
    }
}

void TestHostProgramDiff::printsJson()
{
    nlohmann::json old = now_;
    old["groups"][0]["items"][0]["id"] = "old";
    const QString file = write(QStringLiteral("old.json"), old);
    HostProcess host;
    host.startBare({QStringLiteral("diff"), file, now_file_, QStringLiteral("--json")});
    QCOMPARE(host.wait(), 1);
    const auto json = nlohmann::json::parse(host.output().toStdString());
    QCOMPARE(json.at("old").get<std::string>(), file.toStdString());
    QCOMPARE(json.at("new").get<std::string>(), now_file_.toStdString());
    const nlohmann::json expected = {
        {{"change", "gone"},
         {"id", "old"},
         {"item", "Boiler/Boiler on"},
         {"before", "Bit"},
         {"same_name_id", "boiler-on"}},
        {{"change", "added"}, {"id", "boiler-on"}, {"item", "Boiler/Boiler on"}, {"after", "Bit"}}};
    QVERIFY2(json.at("differences") == expected, json.dump().c_str());
    host.startBare({QStringLiteral("diff"), now_file_, now_file_, QStringLiteral("--json")});
    QCOMPARE(host.wait(), 0);
    QVERIFY(nlohmann::json::parse(host.output().toStdString()).at("differences").empty());
}

void TestHostProgramDiff::comparesAConfiguration()
{
    HostProcess host;
    host.addItem(QStringLiteral("Boiler.Boiler on"), QStringLiteral("boiler-on"),
                 QStringLiteral("Bit"));
    host.addItem(QStringLiteral("Hall.Light"), QStringLiteral("hall-light"),
                 QStringLiteral("16Bit-INT"));
    host.addItem(QStringLiteral("Gone"), QStringLiteral("gone"), QStringLiteral("Bit"));
    host.useAddress(QStringLiteral("https://127.0.0.1:%1").arg(cloud_.port()));
    host.useAccount(QStringLiteral("operator@example.com"), QStringLiteral("tovik"));
    host.writeConfig();
    qunsetenv("TOVIK_PASSWORD");
    // The account is the configuration's own.
    host.startBare({QStringLiteral("diff"), host.configFile()});
    QCOMPARE(host.wait(), 1);
    QCOMPARE(host.output(), QStringLiteral("~ Hall.Light (hall-light): type Bit, was 16Bit-INT\n"
                                           "- Gone (gone): gone\n"));
}

void TestHostProgramDiff::isInTrouble_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("message");
    const QByteArray good;
    QTest::newRow("login refused") << QByteArray("errorcode:code=1,path=login") << good
                                   << QStringLiteral("refused with its error code 1");
    QTest::newRow("reply no object")
        << QByteArray("not-object:path=items") << good << QStringLiteral("is no JSON object");
    QTest::newRow("file no JSON") << QByteArray() << QByteArray("{\n\n}}")
                                  << QStringLiteral("old.json:3: not valid JSON");
    QTest::newRow("neither catalogue nor configuration")
        << QByteArray() << QByteArray("{\"x\": 1}")
        << QStringLiteral("old.json:1: x: is no member of this object");
    QTest::newRow("wrong member in a catalogue")
        << QByteArray() << QByteArray("{\"service\": {},\n\"groups\": [{}]}")
        << QStringLiteral("old.json:2: groups[0]: the member \"id\" is missing");
}

void TestHostProgramDiff::isInTrouble()
{
    QFETCH(QByteArray, fault);
    QFETCH(QByteArray, file);
    QFETCH(QString, message);
    if (!fault.isEmpty())
        QVERIFY(cloud_.addFault(fault.toStdString()) > 0);
    QFile old(folder_.filePath(QStringLiteral("old.json")));
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write(file.isEmpty() ? QByteArray::fromStdString(now_.dump()) : file);
    old.close();
    ServiceRun run(cloud_.port());
    run.host().startBare({QStringLiteral("diff"), old.fileName()});
    QCOMPARE(run.host().wait(), 2);
    QCOMPARE(run.host().output(), QString());
    const QString errors = run.host().errors();
    QVERIFY2(errors.contains(message), qPrintable(errors));
}

QTEST_GUILESS_MAIN(TestHostProgramDiff)
#include "tst_host_program_diff.moc"
