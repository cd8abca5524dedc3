#include "tests/support/host_process.h"

#include <QRegularExpression>
#include <QTest>

#include <csignal>

class TestHostProgramWatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void printsALineForEveryChange();
    void printsJsonForEveryChange();
    void keepsDebugLinesOffTheOutput();
    void handsOverTheErrorHandling();
    void endsOnSignal_data();
    void endsOnSignal();
    void endsWhenNobodyReads();
    void saysThatTheDriverIsMute();
    void saysWhenValuesAreStale_data();
    void saysWhenValuesAreStale();
    void saysAsJsonWhenValuesAreStale();
    void failsStrictly_data();
    void failsStrictly();
    void endsAfterSoManyValues();
    void watchesChosenItems_data();
    void watchesChosenItems();
};

namespace {

const QStringList watch = {QStringLiteral("watch"), QStringLiteral("--interval"),
                           QStringLiteral("20")};

/// The lines without their times, which are checked for their form.
QStringList withoutTimes(const QStringList& lines)
{
    static const QRegularExpression time(
        QStringLiteral("^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3}  "));
    QStringList rest;
    for (const QString& line : lines)
        rest << (time.match(line).hasMatch() ? line.mid(25) : QStringLiteral("no time: ") + line);
    return rest;
}

} // namespace

void TestHostProgramWatch::printsALineForEveryChange()
{
    HostProcess host;
    host.addItem(QStringLiteral("A"), QStringLiteral("hex:0500/0500/0600"),
                 QStringLiteral("16Bit-INT"));
    host.addItem(QStringLiteral("T\u00fcr"), QStringLiteral("hex:1b5bfc"),
                 QStringLiteral("String"));
    host.addItem(QStringLiteral("Z"), QStringLiteral("bad"), QStringLiteral("Bit"));
    host.start(watch);
    QVERIFY(host.waitForOutput(QStringLiteral("A = 6")));
    host.sendSignal(SIGINT);
    QCOMPARE(host.wait(), 0);
    const QStringList lines = withoutTimes(host.outputLines());
    QCOMPARE(lines.first(),
             QStringLiteral("driver 7.8.9 watches project plant at https://127.0.0.1:1"));
    QCOMPARE(lines.at(1), QStringLiteral("A = \u2013  no value yet"));
    QVERIFY(lines.contains(QStringLiteral("A = 5  [05 00]  0x400F0007")));
    QVERIFY(lines.contains(QStringLiteral("T\u00fcr = \u00b7[\u00fc  [1b 5b fc]  0x400F0007")));
    QVERIFY(lines.contains(QStringLiteral("status: service error 7 (0x400F0007): Z ends "
                                          "the cycle")));
    QCOMPARE(lines.last(), QStringLiteral("end"));
}

void TestHostProgramWatch::printsJsonForEveryChange()
{
    HostProcess host;
    host.addItem(QStringLiteral("A"), QStringLiteral("hex:0500"), QStringLiteral("16Bit-INT"));
    host.addItem(QStringLiteral("T"), QStringLiteral("hex:fc"), QStringLiteral("String"));
    host.addItem(QStringLiteral("Z"), QStringLiteral("bad"), QStringLiteral("Bit"));
    host.start(watch + QStringList{QStringLiteral("--json")});
    QVERIFY(host.waitForOutput(
        QStringLiteral("0x400F0007\",\"status_text\":\"service error 7\","
                       "\"stale\":false}\n{\"version\":1,\"event\":\"status\"")));
    host.sendSignal(SIGTERM);
    QCOMPARE(host.wait(), 0);
    const QVector<nlohmann::json> lines = host.outputJson();
    QCOMPARE(lines.size(), 8);
    QCOMPARE(lines.at(0).at("event").get<std::string>(), std::string("start"));
    QCOMPARE(lines.at(0).at("driver_version").get<std::string>(), std::string("7.8.9"));
    QVERIFY(lines.at(1).at("value").is_null());
    QCOMPARE(lines.at(1).at("bytes").get<std::string>(), std::string());
    QCOMPARE(lines.at(1).at("problem").get<std::string>(), std::string("no value yet"));
    QVERIFY(!lines.at(4).contains("problem"));
    QCOMPARE(lines.at(4).at("event").get<std::string>(), std::string("value"));
    QCOMPARE(lines.at(4).at("value").get<int>(), 5);
    QCOMPARE(lines.at(5).at("value").get<std::string>(), std::string("\u00fc"));
    QCOMPARE(lines.at(6).at("event").get<std::string>(), std::string("status"));
    QCOMPARE(lines.at(6).at("status").get<std::string>(), std::string("0x400F0007"));
    QCOMPARE(lines.at(7).at("event").get<std::string>(), std::string("end"));
    for (const nlohmann::json& line : lines)
        QCOMPARE(line.at("time").get<std::string>().size(), std::size_t(24));
}

void TestHostProgramWatch::keepsDebugLinesOffTheOutput()
{
    HostProcess host;
    host.addItem(QStringLiteral("A"), QStringLiteral("hex:0500"), QStringLiteral("16Bit-INT"));
    const auto run_until_value = [&host](const QStringList& options) {
        host.start(watch + options);
        const bool came = host.waitForOutput(QStringLiteral("A = 5"));
        host.sendSignal(SIGTERM);
        return came && host.wait() == 0;
    };
    QVERIFY(run_until_value({}));
    QVERIFY(!host.output().contains(QLatin1String("[TOVIK IoT]")));
    QCOMPARE(host.errors(), QString());
    QVERIFY(run_until_value({QStringLiteral("--verbose")}));
    QVERIFY(!host.output().contains(QLatin1String("[TOVIK IoT]")));
    QVERIFY(host.errors().contains(QLatin1String("[TOVIK IoT] Connected to Cloud Success!\n")));
    QVERIFY(run_until_value({QStringLiteral("--log"), host.logFile()}));
    QCOMPARE(host.errors(), QString());
    QVERIFY(host.log().contains(QLatin1String(" [TOVIK IoT] Connected to Cloud Success!\n")));
    QVERIFY(host.log().contains(QLatin1String("[Fake] deleted after release\n")));
}

void TestHostProgramWatch::handsOverTheErrorHandling()
{
    HostProcess host;
    host.addItem(QStringLiteral("A"), QStringLiteral("hex:0500"), QStringLiteral("16Bit-INT"));
    host.run(watch + QStringList{QStringLiteral("--seconds"), QStringLiteral("0.1"),
                                 QStringLiteral("--log"), host.logFile()});
    QVERIFY(host.log().contains(QLatin1String("error handling 6 settings, type 0")));
}

void TestHostProgramWatch::endsOnSignal_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("interrupt") << SIGINT;
    QTest::newRow("termination") << SIGTERM;
    QTest::newRow("hang-up") << SIGHUP;
}

void TestHostProgramWatch::endsOnSignal()
{
    QFETCH(int, number);
    HostProcess host;
    host.addItem(QStringLiteral("A"), QStringLiteral("hex:0500"), QStringLiteral("16Bit-INT"));
    host.start(watch + QStringList{QStringLiteral("--log"), host.logFile()});
    QVERIFY(host.waitForOutput(QStringLiteral("A = 5")));
    host.sendSignal(number);
    QCOMPARE(host.wait(), 0);
    QVERIFY(host.log().contains(QLatin1String("[Fake] deleted after release")));
}

void TestHostProgramWatch::endsWhenNobodyReads()
{
    HostProcess host;
    host.addItem(QStringLiteral("A"), QStringLiteral("hex:0500/0600"), QStringLiteral("16Bit-INT"));
    host.startInShell(QStringLiteral("(\"$@\"; echo code $? >&2) | head -n 3"),
                      watch + QStringList{QStringLiteral("--log"), host.logFile()});
    QCOMPARE(host.wait(), 0);
    QCOMPARE(host.outputLines().size(), 3);
    QCOMPARE(host.errors(), QStringLiteral("code 0\n"));
    QVERIFY(host.log().contains(QLatin1String("[Fake] deleted after release")));
}

void TestHostProgramWatch::saysThatTheDriverIsMute()
{
    HostProcess host(QStringLiteral("mute"));
    host.addItem(QStringLiteral("A"), QStringLiteral("hex:0500"), QStringLiteral("16Bit-INT"));
    QCOMPARE(host.run(watch + QStringList{QStringLiteral("--seconds"), QStringLiteral("0.2")}), 1);
    QCOMPARE(withoutTimes(host.outputLines()).mid(1),
             QStringList({QStringLiteral("A: the driver does not answer"), QStringLiteral("end")}));
}

void TestHostProgramWatch::saysWhenValuesAreStale_data()
{
    QTest::addColumn<QString>("cycles");
    QTest::addColumn<QStringList>("lines");
    const QString over = QStringLiteral("A: no longer stale");
    QTest::newRow("after three cycles")
        << QStringLiteral("3") << QStringList{QStringLiteral("A: stale, no news for 4.0 s"), over};
    QTest::newRow("after one") << QStringLiteral("1")
                               << QStringList{QStringLiteral("A: stale, no news for 2.0 s"), over};
    QTest::newRow("never") << QStringLiteral("0") << QStringList();
}

void TestHostProgramWatch::saysWhenValuesAreStale()
{
    QFETCH(QString, cycles);
    QFETCH(QStringList, lines);
    HostProcess host(QStringLiteral("stalls"));
    host.addItem(QStringLiteral("A"), QStringLiteral("hex:0500"), QStringLiteral("16Bit-INT"));
    QCOMPARE(host.run(watch + QStringList{QStringLiteral("--stale"), cycles,
                                          QStringLiteral("--seconds"), QStringLiteral("1.5")}),
             0);
    QCOMPARE(withoutTimes(host.outputLines()).filter(QStringLiteral("stale")), lines);
}

void TestHostProgramWatch::saysAsJsonWhenValuesAreStale()
{
    HostProcess host(QStringLiteral("stalls"));
    host.addItem(QStringLiteral("A"), QStringLiteral("hex:0500"), QStringLiteral("16Bit-INT"));
    QCOMPARE(host.run(watch + QStringList{QStringLiteral("--json"), QStringLiteral("--seconds"),
                                          QStringLiteral("1.5")}),
             0);
    std::vector<bool> stale;
    for (const nlohmann::json& line : host.outputJson()) {
        if (line.at("event") == "value")
            QVERIFY(!line.at("stale").get<bool>());
        if (line.at("event") != "stale")
            continue;
        QCOMPARE(line.at("item").get<std::string>(), std::string("A"));
        stale.push_back(line.at("stale").get<bool>());
        QCOMPARE(line.at("age_seconds").get<double>(), stale.back() ? 4.0 : 0.0);
    }
    QCOMPARE(stale, std::vector<bool>({true, false}));
}

void TestHostProgramWatch::failsStrictly_data()
{
    QTest::addColumn<QString>("project");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("message");
    const QStringList strict = {QStringLiteral("--strict")};
    QTest::newRow("all is well") << QStringLiteral("plant") << strict << 0 << QString();
    QTest::newRow("stale") << QStringLiteral("stalls") << strict << 1
                           << QStringLiteral("tovik-host: --strict: A was stale at ");
    QTest::newRow("stale without the option")
        << QStringLiteral("stalls") << QStringList() << 0 << QString();
    QTest::newRow("error at first") << QStringLiteral("late") << strict << 1
                                    << QStringLiteral("tovik-host: --strict: A was service not "
                                                      "reachable");
}

void TestHostProgramWatch::failsStrictly()
{
    QFETCH(QString, project);
    QFETCH(QStringList, options);
    QFETCH(int, code);
    QFETCH(QString, message);
    HostProcess host(project);
    host.addItem(QStringLiteral("A"), QStringLiteral("hex:0500"), QStringLiteral("16Bit-INT"));
    QCOMPARE(
        host.run(watch + options + QStringList{QStringLiteral("--seconds"), QStringLiteral("1.5")}),
        code);
    const QString errors = host.errors();
    QVERIFY2(errors.startsWith(message) && errors.isEmpty() == message.isEmpty(),
             qPrintable(errors));
}

void TestHostProgramWatch::endsAfterSoManyValues()
{
    const auto run = [](const char* id, const QStringList& options) {
        HostProcess host;
        host.addItem(QStringLiteral("A"), QString::fromLatin1(id), QStringLiteral("16Bit-INT"));
        const int code = host.run(watch + options);
        return QStringLiteral("%1 %2 %3")
            .arg(code)
            .arg(host.outputLines().filter(QStringLiteral("A = ")).size())
            .arg(host.errors().trimmed());
    };
    const QStringList three = {QStringLiteral("-C"), QStringLiteral("3")};
    // One line says that the value is waited for.
    QCOMPARE(run("hex:0500/0600", three), QStringLiteral("0 4 "));
    QCOMPARE(run("hex:0500", three + QStringList{QStringLiteral("--seconds"), QStringLiteral("1")}),
             QStringLiteral("1 2 tovik-host: 1 of 3 values have come in time"));
}

void TestHostProgramWatch::watchesChosenItems_data()
{
    QTest::addColumn<QStringList>("wanted");
    QTest::addColumn<QStringList>("lines");
    const QString one = QStringLiteral("Pump.One = 1  [01 00]  ok");
    const QString two = QStringLiteral("Pump.Two = 2  [02 00]  ok");
    const QString light = QStringLiteral("[Light] = 3  [03 00]  ok");
    QTest::newRow("by name") << QStringList{QStringLiteral("Pump.Two")} << QStringList{two};
    QTest::newRow("by pattern") << QStringList{QStringLiteral("Pump.*")} << QStringList{one, two};
    QTest::newRow("in brackets") << QStringList{QStringLiteral("[Light]")} << QStringList{light};
    QTest::newRow("characters in brackets")
        << QStringList{QStringLiteral("[[]L*")} << QStringList{light};
    QTest::newRow("several, each once")
        << QStringList{QStringLiteral("[Light]"), QStringLiteral("*One"), QStringLiteral("*[t]]")}
        << QStringList{light, one};
}

void TestHostProgramWatch::watchesChosenItems()
{
    QFETCH(QStringList, wanted);
    QFETCH(QStringList, lines);
    HostProcess host;
    host.addItem(QStringLiteral("Pump.One"), QStringLiteral("hex:0100"),
                 QStringLiteral("16Bit-INT"));
    host.addItem(QStringLiteral("Pump.Two"), QStringLiteral("hex:0200"),
                 QStringLiteral("16Bit-INT"));
    host.addItem(QStringLiteral("[Light]"), QStringLiteral("hex:0300"),
                 QStringLiteral("16Bit-INT"));
    const QString count = QString::number(lines.size());
    QCOMPARE(host.run(QStringList{QStringLiteral("watch")} + wanted +
                      QStringList{QStringLiteral("--count"), count}),
             0);
    QStringList values = withoutTimes(host.outputLines()).filter(QStringLiteral("  ok"));
    values = values.filter(QStringLiteral("  ["));
    QCOMPARE(values, lines);
}

QTEST_GUILESS_MAIN(TestHostProgramWatch)
#include "tst_host_program_watch.moc"
