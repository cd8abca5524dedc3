#include "tests/support/cloud_process.h"
#include "tests/support/pty.h"
#include "tests/tools/host/service_run.h"

#include <QProcess>
#include <QTest>

#include <csignal>

/// `tovik-host configure` against the simulated service.
class TestHostProgramConfigure : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void makesAConfiguration();
    void usesASavedCatalogue();
    void saysWhatMatchedNothing();
    void leavesFilesAlone_data();
    void leavesFilesAlone();
    void replacesAFileIfForced();
    void writesThePasswordIfAsked();
    void looksAtTheFolderFirst();
    void readsADialogueFromAPipe();
    void leadsADialogueOnATerminal();
    void endsADialogueOnSignal();
    void asksForThePasswordUnseen();

private:
    void startOnTerminal(const QStringList& arguments);
    bool waitFor(const QByteArray& text);

    CloudProcess cloud_;
    Pty terminal_;
    QByteArray seen_;
    QProcess on_terminal_;
};

namespace {

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

nlohmann::json jsonIn(const QString& path)
{
    return nlohmann::json::parse(contentOf(path).toStdString(), nullptr, false);
}

QString namesIn(const nlohmann::json& config)
{
    QStringList names;
    for (const auto& item : config.at("items"))
        names << QString::fromStdString(item.at("name").get<std::string>());
    return names.join(QLatin1Char('|'));
}

} // namespace

void TestHostProgramConfigure::initTestCase()
{
    QVERIFY(terminal_.isValid());
    QVERIFY(cloud_.start());
}

void TestHostProgramConfigure::cleanup()
{
    QCOMPARE(cloud_.control("DELETE", "/faults").status, 200);
    if (on_terminal_.state() != QProcess::NotRunning) {
        on_terminal_.kill();
        on_terminal_.waitForFinished();
    }
}

/// Starts the program with a terminal as input and as standard error.
void TestHostProgramConfigure::startOnTerminal(const QStringList& arguments)
{
    terminal_.take();
    seen_.clear();
    on_terminal_.start(QStringLiteral("sh"),
                       QStringList{QStringLiteral("-c"), QStringLiteral("exec \"$@\" <$0 2>$0"),
                                   terminal_.portName(), HostProcess::program()} +
                           arguments);
    QVERIFY(on_terminal_.waitForStarted());
}

/// Waits until the terminal shows \a text, and drops everything up to its end.
bool TestHostProgramConfigure::waitFor(const QByteArray& text)
{
    const bool came = QTest::qWaitFor(
        [&] {
            seen_ += terminal_.take();
            return seen_.contains(text);
        },
        30000);
    if (!came)
        qWarning() << "waited for" << text << "and saw" << seen_;
    seen_.remove(0, seen_.indexOf(text) + text.size());
    return came;
}

void TestHostProgramConfigure::makesAConfiguration()
{
    ServiceRun run(cloud_.port());
    QCOMPARE(run.command({QStringLiteral("configure"), QStringLiteral("Boiler/*"),
                          QStringLiteral("hall-display"), QStringLiteral("--exclude"),
                          QStringLiteral("*er*"), QStringLiteral("--exclude"),
                          QStringLiteral("Boiler/S*"), QStringLiteral("nothing*")}),
             0);
    QCOMPARE(
        run.host().errors(),
        QStringLiteral("tovik-host: warning: nothing in the catalogue matches \"nothing*\"\n"));
    const auto config = nlohmann::json::parse(run.host().output().toStdString());
    QCOMPARE(namesIn(config), QStringLiteral("Boiler.Flow setpoint|Boiler.Pressure|"
                                             "Boiler.Pump speed|Hall.Display text"));
    QCOMPARE(config.at("items").at(3).at("length").get<int>(), 40);
    QCOMPARE(config.at("service").at("password_env").get<std::string>(),
             std::string("TOVIK_PASSWORD"));
    QVERIFY(!run.host().output().contains(QLatin1String("\"tovik\"")));
    // Members in the order of the documentation.
    QVERIFY(run.host().output().startsWith(QLatin1String("{\n  \"service\": {\n    \"url\": ")));
}

void TestHostProgramConfigure::usesASavedCatalogue()
{
    ServiceRun run(cloud_.port());
    QCOMPARE(run.command({QStringLiteral("catalogue"), QStringLiteral("--json")}), 0);
    QFile saved(run.file(QStringLiteral("saved.json")));
    QVERIFY(saved.open(QIODevice::WriteOnly));
    saved.write(run.host().output().toUtf8());
    saved.close();
    // Nobody is asked: the service hangs, and there is no password.
    QVERIFY(cloud_.addFault("hang") > 0);
    qunsetenv("TOVIK_PASSWORD");
    run.host().startBare({QStringLiteral("configure"), QStringLiteral("--catalogue"),
                          saved.fileName(), QStringLiteral("--type"), QStringLiteral("16Bit-HEX")});
    QCOMPARE(run.host().wait(), 0);
    const auto config = nlohmann::json::parse(run.host().output().toStdString());
    QCOMPARE(namesIn(config), QStringLiteral("Boiler.Status word|Recipes.Options"));
    QCOMPARE(config.at("service").at("email").get<std::string>(),
             std::string("operator@example.com"));
}

void TestHostProgramConfigure::saysWhatMatchedNothing()
{
    ServiceRun run(cloud_.port());
    const QString output = run.file(QStringLiteral("out.json"));
    QCOMPARE(run.command({QStringLiteral("configure"), QStringLiteral("Pump/*"),
                          QStringLiteral("x?"), QStringLiteral("Boilr/*"),
                          QStringLiteral("boiler/Status wrd"), QStringLiteral("--output"), output}),
             1);
    QCOMPARE(run.host().errors(),
             QStringLiteral("tovik-host: nothing is chosen of 47 items; nothing in the catalogue "
                            "matches \"Pump/*\", \"x?\", \"Boilr/*\" (Boiler/*?), "
                            "\"boiler/Status wrd\" (Boiler/Status word?)\n"));
    QVERIFY(!QFile::exists(output));
}

void TestHostProgramConfigure::leavesFilesAlone_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("message");
    const auto row = [](const char* name, const QStringList& arguments, int code,
                        const char* message) {
        QTest::newRow(name) << arguments << code << QString::fromLatin1(message);
    };
    const QString force = QStringLiteral("--force");
    row("not forced", {QStringLiteral("*")}, 2, "exists; --force replaces it");
    row("no choice", {force}, 2, "which items? Give patterns such as 'Boiler/*'");
    row("no such item", {force, QStringLiteral("x")}, 1, "nothing is chosen of 47 items");
    row("wrong type", {force, QStringLiteral("--type"), QStringLiteral("Byte")}, 2,
        "--type: \"Byte\" is no type; the types are: Bit, ");
    row("wrong pattern", {force, QStringLiteral("x[z-a]")}, 2,
        "the pattern \"x[z-a]\" is not valid");
    row("no catalogue",
        {force, QStringLiteral("*"), QStringLiteral("--catalogue"), QStringLiteral("/none")}, 2,
        "cannot read the catalogue \"/none\"");
    row("a configuration for a catalogue",
        {force, QStringLiteral("*"), QStringLiteral("--catalogue"),
         QStringLiteral(TOVIK_EXAMPLES "/plant/watch.json")},
        2, "watch.json:1: is a configuration, and a catalogue is wanted");
}

void TestHostProgramConfigure::leavesFilesAlone()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, code);
    QFETCH(QString, message);
    ServiceRun run(cloud_.port());
    QFile existing(run.file(QStringLiteral("out.json")));
    QVERIFY(existing.open(QIODevice::WriteOnly));
    existing.write("mine");
    existing.close();
    QCOMPARE(run.command(QStringList{QStringLiteral("configure"), QStringLiteral("--output"),
                                     existing.fileName()} +
                         arguments),
             code);
    const QString errors = run.host().errors();
    QVERIFY2(errors.contains(message), qPrintable(errors));
    QCOMPARE(contentOf(existing.fileName()), QByteArray("mine"));
}

void TestHostProgramConfigure::replacesAFileIfForced()
{
    ServiceRun run(cloud_.port());
    const QString output = run.file(QStringLiteral("out.json"));
    const QStringList arguments = {QStringLiteral("configure"), QStringLiteral("Hall/*"),
                                   QStringLiteral("-o"), output};
    QCOMPARE(run.command(arguments), 0);
    QCOMPARE(run.host().errors(), output + QStringLiteral(": 11 items\n"));
    QCOMPARE(
        run.command(arguments + QStringList{QStringLiteral("--force"), QStringLiteral("--type"),
                                            QStringLiteral("Bit"), QStringLiteral("-q")}),
        0);
    QCOMPARE(run.host().errors(), QString());
    QCOMPARE(namesIn(jsonIn(output)), QStringLiteral("Hall.Light|Hall.Door open"));
}

void TestHostProgramConfigure::writesThePasswordIfAsked()
{
    ServiceRun run(cloud_.port());
    const QString output = run.file(QStringLiteral("out.json"));
    QCOMPARE(run.command({QStringLiteral("configure"), QStringLiteral("*"),
                          QStringLiteral("--with-password"), QStringLiteral("--output"), output}),
             0);
    const auto service = jsonIn(output).at("service");
    QCOMPARE(service.at("password").get<std::string>(), std::string("tovik"));
    QVERIFY(!service.contains("password_env"));
    QVERIFY(!(QFile::permissions(output) & (QFile::ReadGroup | QFile::ReadOther)));
}

void TestHostProgramConfigure::looksAtTheFolderFirst()
{
    ServiceRun run(cloud_.port());
    const QString output = run.file(QStringLiteral("none/out.json"));
    // Nobody chooses: it must not come to the dialogue.
    QCOMPARE(run.command({QStringLiteral("configure"), QStringLiteral("--interactive"),
                          QStringLiteral("--output"), output}),
             2);
    QCOMPARE(run.host().errors(),
             QStringLiteral("tovik-host: cannot write %1: there is no folder %2\n")
                 .arg(output, run.file(QStringLiteral("none"))));
}

void TestHostProgramConfigure::readsADialogueFromAPipe()
{
    ServiceRun run(cloud_.port());
    run.start(
        {QStringLiteral("configure"), QStringLiteral("Hall/*"), QStringLiteral("--interactive")});
    run.host().process().write("1-2\nd");
    run.host().process().closeWriteChannel();
    QCOMPARE(run.host().wait(), 0);
    QCOMPARE(namesIn(nlohmann::json::parse(run.host().output().toStdString())),
             QStringLiteral("Hall.Light|Hall.Door open"));

    run.start({QStringLiteral("configure"), QStringLiteral("--interactive")});
    run.host().process().write("1-2\n");
    run.host().process().closeWriteChannel();
    QCOMPARE(run.host().wait(), 1);
    QCOMPARE(run.host().output(), QString());
    QVERIFY(run.host().errors().endsWith(
        QLatin1String("tovik-host: nothing is chosen, and nothing was written\n")));
}

void TestHostProgramConfigure::leadsADialogueOnATerminal()
{
    ServiceRun run(cloud_.port());
    const QString output = run.file(QStringLiteral("out.json"));
    startOnTerminal(QStringList{QStringLiteral("configure"), QStringLiteral("--interactive"),
                                QStringLiteral("--output"), output} +
                    run.account());
    QVERIFY(waitFor("   1  Boiler/Boiler on  Bit"));
    QVERIFY(waitFor("more: press Enter --"));
    QVERIFY(waitFor("0 of 47 items chosen> "));
    QVERIFY(terminal_.send("\n"));
    QVERIFY(waitFor("  21  Hall/Visitors  32Bit-BCD"));
    QVERIFY(terminal_.send("s pump\n"));
    QVERIFY(waitFor("   9  Boiler/Pump speed  16Bit-BCD"));
    QVERIFY(terminal_.send("9\n"));
    QVERIFY(waitFor("*  9  Boiler/Pump speed  16Bit-BCD"));
    QVERIFY(terminal_.send("Hall/*\n"));
    QVERIFY(waitFor("11 items chosen, 11 of them new"));
    QVERIFY(terminal_.send("-13-22\n"));
    QVERIFY(waitFor("2 of 47 items chosen> "));
    QVERIFY(terminal_.send("p\n"));
    QVERIFY(waitFor("  Hall.Schicht  hall-shift  String"));
    // Nothing but what the dumbest terminal understands.
    QVERIFY(!seen_.contains('\033'));
    QVERIFY(terminal_.send("d\n"));
    QVERIFY(waitFor(": 2 items"));
    QVERIFY(on_terminal_.waitForFinished(30000));
    QCOMPARE(on_terminal_.exitCode(), 0);
    QCOMPARE(namesIn(jsonIn(output)), QStringLiteral("Boiler.Pump speed|Hall.Schicht"));
}

void TestHostProgramConfigure::endsADialogueOnSignal()
{
    ServiceRun run(cloud_.port());
    const QString output = run.file(QStringLiteral("out.json"));
    startOnTerminal(QStringList{QStringLiteral("configure"), QStringLiteral("--interactive"),
                                QStringLiteral("--output"), output} +
                    run.account());
    QVERIFY(waitFor("0 of 47 items chosen> "));
    kill(pid_t(on_terminal_.processId()), SIGINT);
    QVERIFY(waitFor("tovik-host: nothing is chosen, and nothing was written"));
    QVERIFY(on_terminal_.waitForFinished(30000));
    QCOMPARE(on_terminal_.exitStatus(), QProcess::NormalExit);
    QCOMPARE(on_terminal_.exitCode(), 1);
    QVERIFY(!QFile::exists(output));
}

void TestHostProgramConfigure::asksForThePasswordUnseen()
{
    ServiceRun run(cloud_.port());
    qunsetenv("TOVIK_PASSWORD");
    startOnTerminal(QStringList{QStringLiteral("configure"), QStringLiteral("Boiler/*"),
                                QStringLiteral("--with-password")} +
                    run.account());
    QVERIFY(waitFor("Password of operator@example.com for project plant: "));
    QVERIFY(!(terminal_.attributes().c_lflag & tcflag_t(ECHO)));
    QVERIFY(terminal_.send("tovik\n"));
    QVERIFY(on_terminal_.waitForFinished(30000));
    QCOMPARE(on_terminal_.exitCode(), 0);
    seen_ += terminal_.take();
    QVERIFY(!seen_.contains("tovik"));
    QVERIFY(terminal_.attributes().c_lflag & tcflag_t(ECHO));
    QVERIFY(on_terminal_.readAllStandardOutput().contains("\"password\": \"tovik\""));
}

QTEST_GUILESS_MAIN(TestHostProgramConfigure)
#include "tst_host_program_configure.moc"
