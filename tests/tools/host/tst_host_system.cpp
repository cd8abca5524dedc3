#include "tests/support/host_process.h"

#include <QFileInfo>
#include <QProcess>
#include <QTest>

#include <csignal>

/// The real driver against the simulated service, over HTTPS.
class TestHostSystem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void reads();
    void writesAndConfirms_data();
    void writesAndConfirms();
    void tellsWhatTheServiceRefuses();
    void tellsThatTheAccountIsWrong();
    void watches();

private:
    void addItems(HostProcess& host);
    QStringList withAddress(const QStringList& arguments) const;

    QTemporaryDir folder_;
    QProcess service_;
};

void TestHostSystem::initTestCase()
{
    service_.start(QStringLiteral(TOVIK_CLOUD_PROGRAM),
                   {QStringLiteral(TOVIK_CLOUD_PROJECT), QStringLiteral("--url-file"),
                    folder_.filePath(QStringLiteral("url")), QStringLiteral("--log"),
                    folder_.filePath(QStringLiteral("log"))});
    QVERIFY(service_.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(folder_.filePath(QStringLiteral("url"))).size() > 0, 20000);
}

void TestHostSystem::cleanupTestCase()
{
    service_.terminate();
    QVERIFY(service_.waitForFinished());
}

void TestHostSystem::addItems(HostProcess& host)
{
    const auto add = [&host](const char* id, const char* type, int length = 0) {
        host.addItem(QLatin1String(id), QLatin1String(id), QLatin1String(type), length);
    };
    add("boiler-on", "Bit");
    add("boiler-setpoint", "16Bit-INT");
    add("boiler-flow", "32Bit-FLOAT");
    add("hall-setpoint", "32Bit-FLOAT");
    add("hall-fan", "16Bit-UINT");
    add("hall-display", "String", 40);
    add("energy-meter", "32Bit-HEX");
    host.useDriver(QStringLiteral(TOVIK_DRIVER));
    host.useAccount(QStringLiteral("operator@example.com"), QStringLiteral("tovik"));
}

QStringList TestHostSystem::withAddress(const QStringList& arguments) const
{
    return arguments +
           QStringList{QStringLiteral("--url-file"), folder_.filePath(QStringLiteral("url"))};
}

void TestHostSystem::reads()
{
    HostProcess host;
    addItems(host);
    QCOMPARE(host.run(withAddress({QStringLiteral("read"), QStringLiteral("energy-meter"),
                                   QStringLiteral("boiler-on"), QStringLiteral("hall-display"),
                                   QStringLiteral("--timeout"), QStringLiteral("40")})),
             0);
    QCOMPARE(host.output(), QStringLiteral("energy-meter = 1A2B3C4D\nboiler-on = 1\n"
                                           "hall-display = Willkommen\n"));
}

void TestHostSystem::writesAndConfirms_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("value");
    QTest::newRow("bit") << QStringLiteral("boiler-on") << QStringLiteral("0");
    QTest::newRow("number") << QStringLiteral("boiler-setpoint") << QStringLiteral("-12");
    QTest::newRow("float") << QStringLiteral("hall-setpoint") << QStringLiteral("21.333334");
    QTest::newRow("text") << QStringLiteral("hall-display") << QStringLiteral("Good evening");
}

void TestHostSystem::writesAndConfirms()
{
    QFETCH(QString, item);
    QFETCH(QString, value);
    HostProcess host;
    addItems(host);
    QCOMPARE(host.run(withAddress({QStringLiteral("write"), item, value,
                                   QStringLiteral("--timeout"), QStringLiteral("40"),
                                   QStringLiteral("--confirm"), QStringLiteral("40")})),
             0);
    QCOMPARE(host.output(), QStringLiteral("%1 = %2  confirmed\n").arg(item, value));
}

void TestHostSystem::tellsWhatTheServiceRefuses()
{
    HostProcess host;
    addItems(host);
    QCOMPARE(host.run(withAddress({QStringLiteral("write"), QStringLiteral("boiler-flow"),
                                   QStringLiteral("60"), QStringLiteral("--timeout"),
                                   QStringLiteral("40")})),
             1);
    QCOMPARE(host.errors(), QStringLiteral("tovik-host: boiler-flow: the value was not written: "
                                           "service error 8 (0x400F0008)\n"));
}

void TestHostSystem::tellsThatTheAccountIsWrong()
{
    HostProcess host;
    addItems(host);
    host.useAccount(QStringLiteral("operator@example.com"), QStringLiteral("wrong"));
    QCOMPARE(host.run(withAddress({QStringLiteral("read"), QStringLiteral("hall-fan"),
                                   QStringLiteral("--timeout"), QStringLiteral("40")})),
             1);
    QVERIFY(host.errors().contains(QLatin1String("service error 1 (0x400F0001)")));
}

void TestHostSystem::watches()
{
    HostProcess host;
    addItems(host);
    host.start(withAddress({QStringLiteral("watch"), QStringLiteral("--json"),
                            QStringLiteral("--seconds"), QStringLiteral("40")}));
    QVERIFY(host.waitForOutput(QStringLiteral("1A2B3C4D")));
    host.sendSignal(SIGINT);
    QCOMPARE(host.wait(), 0);
    QCOMPARE(host.outputJson().first().at("driver_version").get<std::string>(),
             std::string("1.6.83"));
    QCOMPARE(host.outputJson().last().at("event").get<std::string>(), std::string("end"));
}

QTEST_GUILESS_MAIN(TestHostSystem)
#include "tst_host_system.moc"
