#include "tests/tools/host/check_run.h"
#include "tests/tools/host/device_run.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

namespace {

QString contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// The arrows of a trace of a device, such as ">><<==".
QString arrowsOf(const QString& trace)
{
    const QRegularExpression line(
        QStringLiteral("^\\d\\d:\\d\\d:\\d\\d\\.\\d{6} [+-]\\d+\\.\\d{6} (>>|<<|xx|==) "),
        QRegularExpression::MultilineOption);
    QString arrows;
    QRegularExpressionMatchIterator found = line.globalMatch(trace);
    while (found.hasNext())
        arrows += found.next().captured(1);
    return arrows;
}

} // namespace

/// What --trace prints, in each command that has it.
class TestHostProgramTrace : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ofADevice_data();
    void ofADevice();
    void appendsToAFile();
    void needsAFileThatCanBeWritten();
    void goesOnWithAFullDisk();
    void ofAService();
};

void TestHostProgramTrace::ofADevice_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("arrows");
    QTest::newRow("read") << words("read hex:0500 hex:0600") << QStringLiteral(">><<==>><<==");
    QTest::newRow("write") << words("write a 7") << QStringLiteral(">><<==");
    QTest::newRow("raw") << words("raw 78010A") << QStringLiteral(">><<==");
    QTest::newRow("watch") << words("watch hex:0500 --count 1") << QStringLiteral(">><<==");
    QTest::newRow("no answer") << words("read silent --response-timeout 50")
                               << QStringLiteral(">>==");
}

void TestHostProgramTrace::ofADevice()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, arrows);
    LineDevice device;
    HostProcess host;
    runOn(host, device, arguments + words("--trace"));
    const QString found = arrowsOf(host.errors());
    // A watch may have begun another exchange before it ended.
    QVERIFY2(found.startsWith(arrows), qPrintable(host.errors()));
    QVERIFY(arguments.first() == QLatin1String("watch") || found == arrows);
}

void TestHostProgramTrace::appendsToAFile()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("trace"));
    const QStringList arguments{QStringLiteral("read"), QStringLiteral("--trace=") + path,
                                QStringLiteral("hex:0500")};
    LineDevice device;
    HostProcess host;
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(runOn(host, device, arguments), 0);
        QCOMPARE(host.output(), QStringLiteral("hex:0500 = 5\n"));
        QCOMPARE(host.errors(), QString());
    }
    const QString trace = contentOf(path);
    QCOMPARE(arrowsOf(trace), QStringLiteral(">><<==>><<=="));
    QVERIFY2(trace.contains(QLatin1String("== ok\n")), qPrintable(trace));
}

void TestHostProgramTrace::needsAFileThatCanBeWritten()
{
    LineDevice device;
    HostProcess host;
    QCOMPARE(runOn(host, device, words("read a --trace=/no/such/folder/trace")), 2);
    QVERIFY(host.errors().contains(QLatin1String("/no/such/folder/trace")));
    QCOMPARE(device.lines().size(), 0);
}

void TestHostProgramTrace::goesOnWithAFullDisk()
{
    LineDevice device;
    HostProcess host;
    QCOMPARE(runOn(host, device, words("read hex:0500 hex:0600 --trace=/dev/full")), 0);
    QCOMPARE(host.output(), QStringLiteral("hex:0500 = 5\nhex:0600 = 6\n"));
    QCOMPARE(
        host.errors(),
        QStringLiteral("tovik-host: warning: the trace \"/dev/full\" lacks lines from here on: "
                       "No space left on device\n"));
}

void TestHostProgramTrace::ofAService()
{
    CheckRun run;
    QVERIFY(run.startService());
    QCOMPARE(run.check({QStringLiteral("--trace")}), 0);
    const QString trace = run.host.errors();
    for (const char* text : {"#1 >> POST https://", "/qlix_api/auth/login", "connected\n",
                             "TLS handshake done\n", "first byte\n", "TLS session resumed\n",
                             "<< HTTP 200 after ", "\"password\":\"***\"", "\"token\":\"***\""})
        QVERIFY2(trace.contains(QLatin1String(text)), text);
    QVERIFY(!trace.contains(QLatin1String("\"password\":\"t")));
}

QTEST_GUILESS_MAIN(TestHostProgramTrace)
#include "tst_host_program_trace.moc"
