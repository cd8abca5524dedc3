#include "tests/tools/host/device_run.h"

#include <QTest>

namespace {

/// The judgement of each step, such as "link ok".
QStringList judgements(HostProcess& host)
{
    QStringList all;
    for (const nlohmann::json& line : host.outputJson()) {
        if (line.at("event") == "step")
            all << QString::fromStdString(line.at("step").get<std::string>() + ' ' +
                                          line.at("judgement").get<std::string>());
    }
    return all;
}

} // namespace

/// The walk to a device, with a driver on the framework.
class TestHostProgramCheckLink : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void walks_data();
    void walks();
    void linkThatIsDown();
    void printsAVerdict();
    void needsAnAddress();
    void hasATrace();
    void saysThatTheOutputIsFull();
};

void TestHostProgramCheckLink::walks_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("code");
    QTest::addColumn<QStringList>("steps");
    const QStringList begin{QStringLiteral("link ok"), QStringLiteral("settings ok")};
    QTest::newRow("all well") << words("hex:0500 hex:0600") << 0
                              << begin + QStringList{QStringLiteral("answer ok"),
                                                     QStringLiteral("station ok"),
                                                     QStringLiteral("item ok"),
                                                     QStringLiteral("item ok"),
                                                     QStringLiteral("times ok")};
    QTest::newRow("silent") << words("silent --response-timeout 50") << 1
                            << begin + QStringList{QStringLiteral("answer fail"),
                                                   QStringLiteral("station not tried"),
                                                   QStringLiteral("item fail"),
                                                   QStringLiteral("times not tried")};
    QTest::newRow("one silent") << words("hex:0500 silent --response-timeout 2000") << 1
                                << begin + QStringList{QStringLiteral("answer ok"),
                                                       QStringLiteral("station ok"),
                                                       QStringLiteral("item ok"),
                                                       QStringLiteral("item fail"),
                                                       QStringLiteral("times ok")};
    QTest::newRow("left alone after three silent ones")
        << words("silent silent silent hex:0500 --response-timeout 50") << 1
        << begin +
               QStringList{QStringLiteral("answer fail"),    QStringLiteral("station not tried"),
                           QStringLiteral("item fail"),      QStringLiteral("item fail"),
                           QStringLiteral("item fail"),      QStringLiteral("item not tried"),
                           QStringLiteral("times not tried")};
}

void TestHostProgramCheckLink::walks()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, code);
    LineDevice device;
    HostProcess host;
    QCOMPARE(runOn(host, device, words("check --json") + arguments), code);
    QTEST(judgements(host), "steps");
}

void TestHostProgramCheckLink::linkThatIsDown()
{
    LineDevice device;
    const QStringList arguments = onDevice(words("check hex:0500 --json"), device);
    device.leave();
    HostProcess host;
    QCOMPARE(runOnly(host, arguments), 1);
    QCOMPARE(judgements(host),
             QStringList({QStringLiteral("link fail"), QStringLiteral("settings ok"),
                          QStringLiteral("answer not tried"), QStringLiteral("station not tried"),
                          QStringLiteral("item not tried")}));
}

void TestHostProgramCheckLink::printsAVerdict()
{
    LineDevice device(ScriptedDevice::Line::Pty);
    HostProcess host;
    QCOMPARE(runOn(host, device, words("check hex:0500")), 0);
    QVERIFY2(host.output().contains(QLatin1String("a character takes 0.1 ms")),
             qPrintable(host.output()));
    QVERIFY(
        host.output().endsWith(QLatin1String("\nVerdict: all is well, every value arrives.\n")));
}

void TestHostProgramCheckLink::needsAnAddress()
{
    LineDevice device;
    HostProcess host;
    QCOMPARE(runOn(host, device, words("check")), 2);
    QVERIFY(host.errors().contains(QLatin1String("name an address")));
}

void TestHostProgramCheckLink::hasATrace()
{
    LineDevice device;
    HostProcess host;
    QCOMPARE(runOn(host, device, words("check hex:0500 --trace")), 0);
    QCOMPARE(host.errors().count(QLatin1String(" >> ")), 5); // one item, as often as times need
}

void TestHostProgramCheckLink::saysThatTheOutputIsFull()
{
    LineDevice device;
    HostProcess host;
    host.process().setStandardOutputFile(QStringLiteral("/dev/full"));
    QCOMPARE(runOn(host, device, words("check hex:0500")), 2);
    QCOMPARE(host.errors(), QStringLiteral("tovik-host: cannot write the standard output: "
                                           "No space left on device\n"));
}

QTEST_GUILESS_MAIN(TestHostProgramCheckLink)
#include "tst_host_program_check_link.moc"
