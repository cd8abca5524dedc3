#include "tests/support/cloud_process.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

class TestCloudProgramCommandLine : public QObject
{
    Q_OBJECT

private slots:
    void exitsWith_data();
    void exitsWith();
    void takesSettings_data();
    void takesSettings();
    void fullDisk_data();
    void fullDisk();
    void fullDiskOfTheLog();
    void namesPlaceInBadProject();
    void portInUseFails();
    void addressOfAnotherComputerFails();
    void writesUrlFiles();
    void logsToAFile();

private:
    struct Outcome
    {
        int exit_code = -1;
        QString output;
        QString errors;
    };

    static Outcome run(const QStringList& arguments);
};

TestCloudProgramCommandLine::Outcome TestCloudProgramCommandLine::run(const QStringList& arguments)
{
    QProcess process;
    process.start(CloudProcess::program(), arguments);
    Outcome outcome;
    if (process.waitForFinished(20000))
        outcome.exit_code = process.exitCode();
    outcome.output = QString::fromUtf8(process.readAllStandardOutput());
    outcome.errors = QString::fromUtf8(process.readAllStandardError());
    return outcome;
}

void TestCloudProgramCommandLine::exitsWith_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* title, const char* arguments, int code, const char* text) {
        QTest::newRow(title) << QString::fromUtf8(arguments) << code << QString::fromUtf8(text);
    };
    row("help", "--help", 0, "wrong-host");
    row("help without dashes", "help", 0, "wrong-host");
    row("list of faults", "--list-faults", 0, "connection reset before any reply");
    row("check of a good project", "--check PROJECT", 0, "good");
    row("version", "--version", 0, "tovik-cloud 1.");
    row("fault of an item that the plant does not have", "--fault hang:item=boiler-flwo PROJECT", 2,
        "the plant has no item \"boiler-flwo\"; boiler-flow?");
    row("no project", "", 2, "the project file is missing");
    row("project that does not exist", "/nonexistent.json", 2, "cannot read the project file");
    row("configuration of the host tool", "CONFIGURATION", 2,
        "watch.json: is a configuration of tovik-host, and a project file is wanted");
    row("unknown option", "--colour PROJECT", 2, "no option \"--colour\"\n");
    row("misspelt option", "--list-fault", 2, "no option \"--list-fault\"; --list-faults?");
    row("misspelt option with a value", "--prot=8443 PROJECT", 2,
        "no option \"--prot=8443\"; --port?");
    row("port out of range", "--port 70000 PROJECT", 2, "70000");
    row("unknown TLS version", "--tls 1.1 PROJECT", 2, "1.1");
    row("unknown key type", "--key-type dsa PROJECT", 2, "dsa");
    row("certificate without a key", "--cert PROJECT PROJECT", 2, "--key");
    row("TLS options with plain HTTP", "--http --tls 1.2 PROJECT", 2, "--http");
    row("bad fault", "--fault hang:often=1 PROJECT", 2, "hang takes no key \"often\"");
    row("fault of certificates with plain HTTP", "--http --fault expired PROJECT", 2,
        "without TLS");
    row("no lifetime", "--token-lifetime 0 PROJECT", 2, "--token-lifetime");
    row("certificate that is none", "--cert PROJECT --key PROJECT PROJECT", 1,
        "cannot use the certificate");
    row("log that cannot be written", "--log /nonexistent/x PROJECT", 1, "cannot write the log");
    row("URL file that cannot be written", "--url-file /nonexistent/x PROJECT", 1,
        "cannot write /nonexistent/x");
    row("token file that does not exist", "--control-token-file /nonexistent PROJECT", 2,
        "/nonexistent");
    row("token file that is a folder", "--control-token-file /tmp PROJECT", 2,
        "cannot read the token file /tmp");
    row("token file without a name", "--control-token-file NOTHING PROJECT", 2,
        "--control-token-file: the name is empty");
    row("log without a name", "--log NOTHING PROJECT", 2, "--log: the name is empty");
    row("token file that holds something else", "--control-token-file PROJECT PROJECT", 2,
        "plant.json: a token has 16 to 200 visible ASCII characters");
    row("control address that is not ours", "--control-host 192.0.2.1 PROJECT", 1,
        "cannot use 192.0.2.1");
    row("host that is not ours", "--host 192.0.2.1 PROJECT", 1, "cannot use 192.0.2.1");
}

void TestCloudProgramCommandLine::exitsWith()
{
    QFETCH(QString, arguments);
    QFETCH(int, code);
    QFETCH(QString, text);
    arguments.replace(QStringLiteral("PROJECT"), CloudProcess::exampleProject());
    arguments.replace(QStringLiteral("CONFIGURATION"),
                      CloudProcess::exampleProject().replace(QLatin1String("plant.json"),
                                                             QLatin1String("watch.json")));
    QStringList list = arguments.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    list.replaceInStrings(QStringLiteral("NOTHING"), QString());
    const Outcome outcome = run(list);
    const QString& where = code == 0 ? outcome.output : outcome.errors;
    QVERIFY2(where.contains(text), qPrintable(where));
    QCOMPARE(outcome.exit_code, code);
    QVERIFY2(code == 0 || outcome.errors.startsWith(QStringLiteral("tovik-cloud: ")) ||
                 outcome.errors.startsWith(QStringLiteral("20")), // the log's lines have a date
             qPrintable(outcome.errors));
}

void TestCloudProgramCommandLine::takesSettings_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* title, const char* settings, const char* arguments, int code,
                        const char* text) {
        QTest::newRow(title) << QByteArray(settings) << QString::fromUtf8(arguments) << code
                             << QString::fromUtf8(text);
    };
    row("number", "{\"port\": 70000}", "PROJECT", 2,
        "--port: Value 70000 not in range 0 to 65535 (in FILE)\n");
    row("what the line says, it says", "{\"port\": 70000}", "--port 70001 PROJECT", 2,
        "70001 not in range 0 to 65535\n");
    row("what the line says in one word", "{\"port\": 70000}", "--port=70001 PROJECT", 2,
        "70001 not in range 0 to 65535\n");
    row("switch", "{\"list-faults\": true}", "PROJECT", 0, "connection reset before any reply");
    row("switched off", "{\"list-faults\": false, \"check\": true}", "PROJECT", 0, "good");
    row("list", "{\"fault\": [\"reset\", \"hang:often=1\"]}", "PROJECT", 2,
        "hang takes no key \"often\"");
    row("two that exclude each other", "{\"http\": true}", "--tls 1.2 PROJECT", 2,
        "--http excludes --tls");
    row("unknown option", "{\"colour\": 1}", "PROJECT", 2,
        "tovik-cloud: FILE: no option \"colour\"");
    row("value of another kind", "{\"port\": {}}", "PROJECT", 2,
        "tovik-cloud: FILE: port must be a text, a number, true, false or a list of texts");
    row("list of numbers", "{\"fault\": [1]}", "PROJECT", 2,
        "tovik-cloud: FILE: fault must be a text");
    row("no object", "[", "PROJECT", 2, "tovik-cloud: FILE: the file is no JSON object");
    row("file that is not there", "{}", "--settings /nonexistent PROJECT", 2, "/nonexistent");
}

void TestCloudProgramCommandLine::takesSettings()
{
    QFETCH(QByteArray, settings);
    QFETCH(QString, arguments);
    QFETCH(int, code);
    QFETCH(QString, text);
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("tovik")));
    QFile file(folder.filePath(QStringLiteral("tovik/tovik-cloud.json")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(settings);
    file.close();
    arguments.replace(QStringLiteral("PROJECT"), CloudProcess::exampleProject());
    text.replace(QStringLiteral("FILE"), file.fileName());
    qputenv("XDG_CONFIG_HOME", folder.path().toUtf8());
    const Outcome outcome = run(arguments.split(QLatin1Char(' ')));
    qunsetenv("XDG_CONFIG_HOME");
    const QString& where = code == 0 ? outcome.output : outcome.errors;
    QVERIFY2(where.contains(text), qPrintable(where));
    QCOMPARE(outcome.exit_code, code);
}

void TestCloudProgramCommandLine::fullDisk_data()
{
    QTest::addColumn<QStringList>("arguments");
    for (const char* option : {"--help", "--version", "--list-faults"})
        QTest::newRow(option) << QStringList{QLatin1String(option)};
    QTest::newRow("--check") << QStringList{QStringLiteral("--check"),
                                            CloudProcess::exampleProject()};
    QTest::newRow("the service") << QStringList{CloudProcess::exampleProject()};
}

void TestCloudProgramCommandLine::fullDisk()
{
    QFETCH(QStringList, arguments);
    QProcess process;
    process.setStandardOutputFile(QStringLiteral("/dev/full"));
    process.start(CloudProcess::program(), arguments);
    QVERIFY(process.waitForFinished(20000));
    QCOMPARE(process.exitCode(), 1);
    const QByteArray errors = process.readAllStandardError();
    QVERIFY2(errors.contains("tovik-cloud: cannot write to standard output: No space left"),
             errors.constData());
}

void TestCloudProgramCommandLine::fullDiskOfTheLog()
{
    CloudProcess cloud;
    QVERIFY(cloud.start(
        {QStringLiteral("--verbose"), QStringLiteral("--log"), QStringLiteral("/dev/full")}));
    const std::string token = cloud.login();
    QVERIFY(!token.empty());
    QCOMPARE(cloud.stop(SIGTERM), 0);
    const QString said = QString::fromStdString(cloud.log());
    QVERIFY2(said.endsWith(QStringLiteral(
                 " the log file lacks lines from here on: No space left on device\n")),
             qPrintable(said));
    QCOMPARE(said.count(QLatin1Char('\n')), 1);
}

void TestCloudProgramCommandLine::namesPlaceInBadProject()
{
    QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("bad.json"));
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("{\n  \"accounts\": [}\n");
    file.close();
    const Outcome outcome = run({name});
    QCOMPARE(outcome.exit_code, 2);
    QVERIFY2(outcome.errors.contains(name + QStringLiteral(": line 2, column 16: not valid JSON")),
             qPrintable(outcome.errors));
}

void TestCloudProgramCommandLine::portInUseFails()
{
    CloudProcess cloud;
    QVERIFY(cloud.start());
    const Outcome outcome = run(
        {CloudProcess::exampleProject(), QStringLiteral("--port"), QString::number(cloud.port())});
    QCOMPARE(outcome.exit_code, 1);
    QVERIFY2(outcome.errors.contains(QStringLiteral("choose another port")),
             qPrintable(outcome.errors));
}

void TestCloudProgramCommandLine::addressOfAnotherComputerFails()
{
    // Nobody has an address of this network: it is for documents.
    const Outcome outcome = run(
        {CloudProcess::exampleProject(), QStringLiteral("--host"), QStringLiteral("192.0.2.1")});
    QCOMPARE(outcome.exit_code, 1);
    QVERIFY2(outcome.errors.contains(QStringLiteral("give an address of this computer")),
             qPrintable(outcome.errors));
}

void TestCloudProgramCommandLine::writesUrlFiles()
{
    QTemporaryDir folder;
    const QString url = folder.filePath(QStringLiteral("url"));
    const QString control = folder.filePath(QStringLiteral("control"));
    CloudProcess cloud;
    QVERIFY(cloud.start(
        {QStringLiteral("--url-file"), url, QStringLiteral("--control-file"), control}));
    const auto content = [](const QString& name) {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    QCOMPARE(content(url), "https://127.0.0.1:" + QByteArray::number(cloud.port()) + "\n");
    QCOMPARE(content(control),
             "http://127.0.0.1:" + QByteArray::number(cloud.controlPort()) + "\n");
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files).size(), 2);
    QCOMPARE(cloud.stop(SIGTERM), 0);
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files).size(), 0);
}

void TestCloudProgramCommandLine::logsToAFile()
{
    QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("log"));
    CloudProcess cloud;
    QVERIFY(cloud.start({QStringLiteral("--log"), name}));
    cloud.post("/qlix_api/imonitor/group/list", {{"tokn", "x"}});
    QCOMPARE(cloud.stop(SIGTERM), 0);
    QFile file(name);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    QVERIFY(text.contains("started"));
    QVERIFY(text.contains("refused with error code 15, member \"token\" is missing"));
    QVERIFY(cloud.log().empty());
}

QTEST_GUILESS_MAIN(TestCloudProgramCommandLine)
#include "tst_cloud_program_command_line.moc"
