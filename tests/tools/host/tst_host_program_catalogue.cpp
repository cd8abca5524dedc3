#include "tests/support/cloud_process.h"
#include "tests/tools/host/service_run.h"

#include <QTest>

#include <csignal>

/// `tovik-host catalogue` against the simulated service.
class TestHostProgramCatalogue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void printsATable();
    void printsATree();
    void printsJson();
    void takesTheAccountFromAConfiguration();
    void saysWhyThereIsNone_data();
    void saysWhyThereIsNone();
    void survivesTheEndOfTheService();
    void endsOnSignal();
    void keepsThePasswordToItself();
    void refusesWrongUsage_data();
    void refusesWrongUsage();

private:
    CloudProcess cloud_;
};

void TestHostProgramCatalogue::initTestCase()
{
    QVERIFY(cloud_.start());
}

void TestHostProgramCatalogue::cleanup()
{
    QCOMPARE(cloud_.control("DELETE", "/faults").status, 200);
}

void TestHostProgramCatalogue::printsATable()
{
    ServiceRun run(cloud_.port());
    QCOMPARE(run.command({QStringLiteral("catalogue")}), 0);
    const QStringList lines = run.host().outputLines();
    QCOMPARE(lines.size(), 48);
    QVERIFY(lines.first().startsWith(QLatin1String("GROUP    ITEM ")));
    QVERIFY(run.host().output().contains(QStringLiteral(
        "\nBoiler   St\u00f6rung               boiler-fault      Bit          alert\n")));
    QVERIFY(run.host().output().contains(
        QStringLiteral(" energy-power      32Bit-INT    read-only\n")));
}

void TestHostProgramCatalogue::printsATree()
{
    ServiceRun run(cloud_.port());
    QCOMPARE(run.command({QStringLiteral("catalogue"), QStringLiteral("--tree")}), 0);
    QVERIFY(run.host().output().contains(QLatin1String("  project plant: 4 groups, 47 items\n\n"
                                                       "Boiler  (boiler)  Cellar  alert\n"
                                                       "  Boiler on  ")));
}

void TestHostProgramCatalogue::printsJson()
{
    ServiceRun run(cloud_.port());
    QCOMPARE(run.command({QStringLiteral("catalogue"), QStringLiteral("--json")}), 0);
    const auto json = nlohmann::json::parse(run.host().output().toStdString());
    QCOMPARE(json.at("service").at("project").get<std::string>(), std::string("plant"));
    QCOMPARE(json.at("service").size(), std::size_t(3));
    QCOMPARE(json.at("groups").size(), std::size_t(4));
    const auto& item = json.at("groups").at(1).at("items").at(9);
    QCOMPARE(item.at("id").get<std::string>(), std::string("hall-display"));
    QCOMPARE(item.at("type").get<std::string>(), std::string("String"));
    QCOMPARE(item.at("length").get<int>(), 40);
}

void TestHostProgramCatalogue::takesTheAccountFromAConfiguration()
{
    HostProcess host;
    host.addItem(QStringLiteral("A"), QStringLiteral("i"), QStringLiteral("Bit"));
    host.useAccount(QStringLiteral("operator@example.com"), QStringLiteral("tovik"));
    host.useAddress(QStringLiteral("https://127.0.0.1:%1").arg(cloud_.port()));
    host.writeConfig();
    host.startBare({QStringLiteral("catalogue"), QStringLiteral("--config"), host.configFile()});
    QCOMPARE(host.wait(), 0);
    QCOMPARE(host.outputLines().size(), 48);
    QCOMPARE(host.errors(), QString());
}

void TestHostProgramCatalogue::saysWhyThereIsNone_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<QString>("message");
    const auto row = [](const char* fault, const char* message) {
        QTest::newRow(fault) << QByteArray(fault) << QString::fromLatin1(message);
    };
    row("errorcode:code=1,path=login", "failed: the service refused with its error code 1");
    row("hang:path=login", "failed: no answer within 0.5 s");
    row("hang:path=groups", "loading the catalogue failed: no answer within 0.5 s");
    row("not-object:path=login", "failed: the reply, or an entry of the list in it, is no JSON");
    row("not-object:path=groups", "failed: the reply, or an entry of the list in it, is no JSON");
    row("not-object:path=items,group=energy",
        "failed after 2 of 4 groups: the reply, or an entry of the list in it, is no JSON");
    row("mistyped:path=items,member=dataitems",
        "failed after 0 of 4 groups: the reply is not understood: GetDataitemList Respond: "
        "dataitems is not array");
    row("missing:path=groups", "failed: the reply is not understood: GetGroupList: no errorcode");
    row("reset-mid:path=items,after=3", "failed after 3 of 4 groups: ");
}

void TestHostProgramCatalogue::saysWhyThereIsNone()
{
    QFETCH(QByteArray, fault);
    QFETCH(QString, message);
    QVERIFY(cloud_.addFault(fault.toStdString()) > 0);
    ServiceRun run(cloud_.port());
    const QString timeout = fault.startsWith("hang") ? QStringLiteral("0.5") : QStringLiteral("60");
    QCOMPARE(run.command({QStringLiteral("catalogue"), QStringLiteral("--timeout"), timeout}), 1);
    QCOMPARE(run.host().output(), QString());
    const QString errors = run.host().errors();
    QVERIFY2(errors.startsWith(QLatin1String("tovik-host: ")), qPrintable(errors));
    QVERIFY2(errors.contains(message), qPrintable(errors));
}

void TestHostProgramCatalogue::survivesTheEndOfTheService()
{
    CloudProcess cloud;
    QVERIFY(cloud.start());
    const int fault = cloud.addFault("hang:path=items,after=1");
    ServiceRun run(cloud.port());
    run.start({QStringLiteral("catalogue"), QStringLiteral("--timeout"), QStringLiteral("300")});
    QTRY_VERIFY_WITH_TIMEOUT(cloud.applied(fault) > 0, 30000);
    QCOMPARE(cloud.stop(SIGTERM), 0);
    QCOMPARE(run.host().wait(), 1);
    const QString errors = run.host().errors();
    QVERIFY2(errors.contains(QLatin1String("loading the catalogue failed after 1 of 4 groups: ")),
             qPrintable(errors));
}

void TestHostProgramCatalogue::endsOnSignal()
{
    const int fault = cloud_.addFault("hang:path=groups");
    ServiceRun run(cloud_.port());
    run.start({QStringLiteral("catalogue"), QStringLiteral("--timeout"), QStringLiteral("300")});
    QTRY_VERIFY_WITH_TIMEOUT(cloud_.applied(fault) > 0, 30000);
    run.host().sendSignal(SIGINT);
    QCOMPARE(run.host().wait(), 1);
    QCOMPARE(run.host().errors(),
             QStringLiteral("tovik-host: loading the catalogue failed: interrupted\n"));
}

void TestHostProgramCatalogue::keepsThePasswordToItself()
{
    ServiceRun run(cloud_.port(), QStringLiteral("s3cret-and-wrong"));
    QCOMPARE(run.command({QStringLiteral("catalogue"), QStringLiteral("--verbose"),
                          QStringLiteral("--log"), run.host().logFile()}),
             1);
    const QString errors = run.host().errors();
    QVERIFY(errors.contains(QLatin1String("[TOVIK IoT] Login Error:  1")));
    QVERIFY(run.host().log().contains(QLatin1String("[TOVIK IoT] Login Error:  1")));
    QVERIFY(!errors.contains(QLatin1String("s3cret")));
    QVERIFY(!run.host().log().contains(QLatin1String("s3cret")));
}

void TestHostProgramCatalogue::refusesWrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    const auto row = [](const char* name, const QStringList& arguments, const char* message) {
        QTest::newRow(name) << arguments << QString::fromLatin1(message);
    };
    row("no account", {}, "the account is not complete; add --url URL (or --url-file FILE), ");
    row("no configuration", {QStringLiteral("--config"), QStringLiteral("/none")},
        "cannot read the configuration \"/none\"");
    row("two forms", {QStringLiteral("--json"), QStringLiteral("--table")},
        "--table excludes --json");
    row("time that is no number", {QStringLiteral("--timeout"), QStringLiteral("nan")},
        "--timeout: \"nan\" is no number from 0.1 to 86400");
    row("password on the command line", {QStringLiteral("--password"), QStringLiteral("x")},
        "--password");
    row("log that cannot be written",
        {QStringLiteral("--log"), QStringLiteral("/none/log"), QStringLiteral("--url"),
         QStringLiteral("https://h"), QStringLiteral("--project"), QStringLiteral("p"),
         QStringLiteral("--email"), QStringLiteral("e")},
        "cannot write the log \"/none/log\"");
}

void TestHostProgramCatalogue::refusesWrongUsage()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    HostProcess host;
    host.startBare(QStringList(QStringLiteral("catalogue")) + arguments);
    QCOMPARE(host.wait(), 2);
    const QString errors = host.errors();
    QVERIFY2(errors.contains(message), qPrintable(errors));
}

QTEST_GUILESS_MAIN(TestHostProgramCatalogue)
#include "tst_host_program_catalogue.moc"
