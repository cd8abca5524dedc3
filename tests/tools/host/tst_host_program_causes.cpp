#include "tests/tools/host/check_run.h"

#include <QTcpServer>
#include <QTest>

#include <csignal>

/// What the commands say when nothing comes from the service: the cause, and what to try next.
class TestHostProgramCauses : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void saysWhyThereIsNoConnection_data();
    void saysWhyThereIsNoConnection();
    void saysThatTheLoginIsRefused_data();
    void saysThatTheLoginIsRefused();
    void saysThatTheServiceDoesNotAnswer_data();
    void saysThatTheServiceDoesNotAnswer();
    void namesACheckWithoutAConfiguration();
    void goesOnWithACertificateThatNobodyTrusts_data();
    void goesOnWithACertificateThatNobodyTrusts();
    void tellsTheCauseWhileItWatches_data();
    void tellsTheCauseWhileItWatches();
    void tellsWhichItemEndsTheCycle_data();
    void tellsWhichItemEndsTheCycle();

private:
    CloudProcess tls_;
    CloudProcess plain_;
    QString nobody_;
};

namespace {

/// A run with the real driver.
struct CauseRun : CheckRun
{
    CauseRun() { host.useDriver(latin1(TOVIK_DRIVER)); }

    /// Runs the words of a command line with the configuration, and returns the exit code.
    int command(const QStringList& words)
    {
        const bool has_driver =
            QStringList{latin1("read"), latin1("write"), latin1("watch")}.contains(words.first());
        if (has_driver)
            return host.run(words);
        host.writeConfig();
        const QStringList old =
            words.first() == latin1("diff") ? QStringList{host.configFile()} : QStringList();
        host.startBare(words + old + QStringList{latin1("--config"), host.configFile()});
        return host.wait();
    }
};

/// All commands that ask the service.
const QVector<QStringList> commands = {
    {latin1("read"), latin1("Flow"), latin1("--timeout"), latin1("2")},
    {latin1("write"), latin1("On"), latin1("1"), latin1("--timeout"), latin1("2")},
    {latin1("watch"), latin1("--seconds"), latin1("2")},
    {latin1("catalogue")},
    {latin1("configure"), latin1("*")},
    {latin1("diff")}};

/// What a command ends with that got nothing; diff leaves 1 to differences.
int failureOf(const QStringList& words)
{
    return words.first() == latin1("diff") ? 2 : 1;
}

} // namespace

void TestHostProgramCauses::initTestCase()
{
    QVERIFY(tls_.start());
    QVERIFY(plain_.start({latin1("--http")}));
    QTcpServer nobody;
    QVERIFY(nobody.listen(QHostAddress::LocalHost));
    nobody_ = latin1("https://127.0.0.1:%1").arg(nobody.serverPort());
}

void TestHostProgramCauses::saysWhyThereIsNoConnection_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("cause");
    const auto address = [](const char* scheme, const CloudProcess& cloud) {
        return latin1("%1://127.0.0.1:%2").arg(latin1(scheme)).arg(cloud.port());
    };
    for (const QStringList& words : commands) {
        const auto row = [&words](const char* name, const QString& url, const char* cause) {
            QTest::newRow(qPrintable(latin1("%1: %2").arg(words.first(), latin1(name))))
                << words << url << latin1(cause);
        };
        row("name not found", latin1("https://nowhere.invalid"),
            "name nowhere.invalid: is not found: Host not found; correct the address");
        row("nobody listens", nobody_, "refused: nobody listens on this port");
        row("no TLS there", address("https", plain_), "speaks plain HTTP, not TLS");
        row("TLS where none is meant", address("http", tls_), "the port speaks TLS");
    }
}

void TestHostProgramCauses::saysWhyThereIsNoConnection()
{
    QFETCH(QStringList, words);
    QFETCH(QString, url);
    QFETCH(QString, cause);
    CauseRun run;
    run.host.useAddress(url);
    QCOMPARE(run.command(words), failureOf(words));
    const QString last = run.host.errors().trimmed().split(QLatin1Char('\n')).last();
    QVERIFY2(last.startsWith(latin1("tovik-host: ")), qPrintable(last));
    QVERIFY2(last.contains(cause), qPrintable(last));
    QVERIFY2(last.endsWith(latin1("; next: tovik-host check --config ") + run.host.configFile()),
             qPrintable(last));
}

void TestHostProgramCauses::saysThatTheLoginIsRefused_data()
{
    QTest::addColumn<QStringList>("words");
    for (const QStringList& words : commands)
        QTest::newRow(qPrintable(words.first())) << words;
}

void TestHostProgramCauses::saysThatTheLoginIsRefused()
{
    QFETCH(QStringList, words);
    CauseRun run;
    run.host.useAddress(latin1("https://127.0.0.1:%1").arg(tls_.port()));
    run.host.useAccount(latin1("operator@example.com"), latin1("wrong"));
    QCOMPARE(run.command(words), failureOf(words));
    const QString errors = run.host.errors();
    QVERIFY2(errors.contains(latin1("look at e-mail, password and project")), qPrintable(errors));
    QVERIFY2(
        errors.endsWith(latin1("next: tovik-host check --config %1\n").arg(run.host.configFile())),
        qPrintable(errors));
}

/// The certificate is one that nobody trusts, here as often: that keeps no value away.
void TestHostProgramCauses::saysThatTheServiceDoesNotAnswer_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("said");
    const QString hangs = latin1("hang:path=login");
    const QString is_silent = latin1("the way to the service is free, but it has not answered yet");
    for (const QStringList& words : {commands.at(0), commands.at(1), commands.at(2)})
        QTest::newRow(qPrintable(words.first() + latin1(" of one that hangs")))
            << hangs << words << is_silent;
    QTest::newRow("one that hangs, while it is watched")
        << hangs << QStringList{latin1("watch"), latin1("--seconds"), latin1("8")}
        << latin1("  cause: ") + is_silent;
    QTest::newRow("catalogue of one that hangs")
        << hangs << QStringList{latin1("catalogue"), latin1("--timeout"), latin1("1")}
        << latin1("failed: no answer within 1 s\ntovik-host: next: tovik-host check ");
    QTest::newRow("one that answers with a page")
        << latin1("not-json") << commands.at(0)
        << latin1(
               "the way to the service is free, but no answer comes that the driver understands");
}

void TestHostProgramCauses::saysThatTheServiceDoesNotAnswer()
{
    QFETCH(QString, fault);
    QFETCH(QStringList, words);
    QFETCH(QString, said);
    CauseRun run;
    QVERIFY(run.startService({latin1("--fault"), fault}));
    QCOMPARE(run.command(words), 1);
    const QString all = run.host.output() + run.host.errors();
    QVERIFY2(all.contains(said), qPrintable(all));
    QVERIFY2(!all.contains(latin1("certificate")), qPrintable(all));
}

/// An account on the command line is none that a check could take.
void TestHostProgramCauses::namesACheckWithoutAConfiguration()
{
    HostProcess host;
    qputenv("TOVIK_PASSWORD", "tovik");
    host.startBare({latin1("catalogue"), latin1("--url"), nobody_, latin1("--project"),
                    latin1("plant"), latin1("--email"), latin1("operator@example.com")});
    QCOMPARE(host.wait(), 1);
    QVERIFY2(host.errors().endsWith(latin1("; next: tovik-host check --url %1\n").arg(nobody_)),
             qPrintable(host.errors()));
    host.startBare({latin1("check"), latin1("--url"), nobody_});
    QCOMPARE(host.wait(), 1);
    QVERIFY2(host.output().contains(latin1("refused: nobody listens on this port")),
             qPrintable(host.output()));
    host.startBare(
        {latin1("check"), latin1("--url"), latin1("https://127.0.0.1:%1").arg(tls_.port())});
    QCOMPARE(host.wait(), 0);
    QVERIFY2(host.output().contains(
                 latin1("\nVerdict: the way to the service is free; login, catalogue and values "
                        "need an account: --config FILE.\n")),
             qPrintable(host.output()));
}

void TestHostProgramCauses::goesOnWithACertificateThatNobodyTrusts_data()
{
    QTest::addColumn<QString>("fault");
    QTest::newRow("expired") << latin1("expired");
    QTest::newRow("for another host") << latin1("wrong-host");
}

void TestHostProgramCauses::goesOnWithACertificateThatNobodyTrusts()
{
    QFETCH(QString, fault);
    CauseRun run;
    QVERIFY(run.startService({latin1("--fault"), fault}));
    for (const QStringList& words :
         {QStringList{latin1("read"), latin1("Flow")}, QStringList{latin1("catalogue")}}) {
        QCOMPARE(run.command(words), 0);
        QVERIFY2(!run.host.errors().contains(latin1("certificate")), qPrintable(run.host.errors()));
    }
}

void TestHostProgramCauses::tellsTheCauseWhileItWatches_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("text");
    QTest::newRow("lines") << QStringList()
                           << latin1("  cause: connect 127.0.0.1 port %1: refused: ");
    QTest::newRow("JSON") << QStringList{latin1("--json")}
                          << latin1("\"cause\":\"connect 127.0.0.1 port %1: refused: ");
}

void TestHostProgramCauses::tellsTheCauseWhileItWatches()
{
    QFETCH(QStringList, options);
    QFETCH(QString, text);
    CauseRun run;
    run.host.useAddress(nobody_);
    run.host.start(QStringList{latin1("watch"), latin1("--interval"), latin1("20")} + options);
    QVERIFY2(run.host.waitForOutput(text.arg(QUrl(nobody_).port())), qPrintable(run.host.output()));
    run.host.sendSignal(SIGINT);
    QCOMPARE(run.host.wait(), 1);
    QCOMPARE(run.host.output().count(latin1("nobody listens")), 1);
}

void TestHostProgramCauses::tellsWhichItemEndsTheCycle_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("text");
    QTest::newRow("lines") << QStringList()
                           << latin1("  status: service error 7 (0x400F0007): Unknown ends the "
                                     "cycle, items not reached: 1\n");
    QTest::newRow("JSON") << QStringList{latin1("--json")}
                          << latin1("\"status_text\":\"service error 7\",\"cycle_ends_at\":"
                                    "\"Unknown\",\"not_reached\":[\"Behind\"]}\n");
}

void TestHostProgramCauses::tellsWhichItemEndsTheCycle()
{
    QFETCH(QStringList, options);
    QFETCH(QString, text);
    CauseRun run;
    run.host.useAddress(latin1("https://127.0.0.1:%1").arg(tls_.port()));
    run.host.addItem(latin1("Unknown"), latin1("nothing"), latin1("Bit"));
    run.host.addItem(latin1("Behind"), latin1("boiler-setpoint"), latin1("16Bit-INT"));
    run.host.start(QStringList{latin1("watch"), latin1("--interval"), latin1("20")} + options);
    QVERIFY2(run.host.waitForOutput(text), qPrintable(run.host.output()));
    run.host.sendSignal(SIGINT);
    QCOMPARE(run.host.wait(), 0);
    run.host.start(QStringList{latin1("watch"), latin1("Unknown"), latin1("Behind"),
                               latin1("--seconds"), latin1("3")});
    QCOMPARE(run.host.wait(), 1);
    const QString errors = run.host.errors();
    QVERIFY2(errors.contains(latin1("tovik-host: service error 7 (0x400F0007): Unknown ends the "
                                    "cycle, items not reached: 1; next: tovik-host check ")),
             qPrintable(errors));
}

QTEST_GUILESS_MAIN(TestHostProgramCauses)
#include "tst_host_program_causes.moc"
