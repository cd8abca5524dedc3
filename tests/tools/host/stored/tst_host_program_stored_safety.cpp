#include "tests/property/records.h"
#include "tests/support/host_process.h"
#include "tests/tools/host/stored/stored_run.h"
#include "tests/tools/host/stored/stored_samples.h"

#include <QProcess>
#include <QTest>

#include <sys/stat.h>

using namespace tovik_host::stored;

namespace {

const Format qt4_variant = {true, 12, true, false};
const QFile::Permissions owner_only =
    QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;

} // namespace

/// What the commands for stored configurations must not do to files, terminals and secrets.
class TestHostProgramStoredSafety : public QObject, private StoredRun
{
    Q_OBJECT

private Q_SLOTS:
    void init() { newFolder(); }
    void leavesFilesAsTheyWere_data();
    void leavesFilesAsTheyWere();
    void newFilesAreTheOwners();
    void replacesWithForce();
    void replacesRegularFilesOnly();
    void salvagesNothingOfNothing();
    void limitsFiles();
    void neverShowsThePassword();
    void hidesTheAccountOfDamagedStreams_data();
    void hidesTheAccountOfDamagedStreams();
    void showsNamesOfFilesAsText();
    void saysThatOutputFails_data();
    void saysThatOutputFails();
};

void TestHostProgramStoredSafety::leavesFilesAsTheyWere_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("code");
    const QByteArray good = writtenByQt(filledRoot(1, 1), qt4_variant);
    const QStringList force = {QStringLiteral("--force")};
    QTest::newRow("without --force") << good << QStringList() << 2;
    QTest::newRow("cut stream") << good.left(200) << force << 1;
    QTest::newRow("bytes after the record") << good + "x" << force << 1;
    QTest::newRow("no JSON") << QByteArray("{\"tovik_iot\": ") << force << 2;
    QTest::newRow("wrong member") << QByteArray("{\"tovik_iot\": {\"x\": 1}}") << force << 2;
    QTest::newRow("nothing") << QByteArray() << force << 2;
    QTest::newRow("too deep") << QByteArray(100000, '[').prepend('{') << force << 2;
}

void TestHostProgramStoredSafety::leavesFilesAsTheyWere()
{
    QFETCH(QByteArray, input);
    QFETCH(QStringList, options);
    QFETCH(int, code);
    const QString old = write("old.json", "old");
    QCOMPARE(convert(write("in", input), old, options), code);
    QCOMPARE(read(old), QByteArray("old"));
    QVERIFY(!errors_.isEmpty());
    QCOMPARE(QDir(folder_->path()).entryList(QDir::Files | QDir::Hidden).size(), 2);
}

void TestHostProgramStoredSafety::newFilesAreTheOwners()
{
    const QString stream = write("a.bin", writtenByQt(filledRoot(1, 1), qt4_variant));
    QCOMPARE(convert(stream, path("a.json")), 0);
    QCOMPARE(QFile::permissions(path("a.json")), owner_only);
    QCOMPARE(convert(path("a.json"), path("b.bin")), 0);
    QCOMPARE(QFile::permissions(path("b.bin")), owner_only);
}

void TestHostProgramStoredSafety::replacesWithForce()
{
    const QByteArray bytes = writtenByQt(filledRoot(1, 1), qt4_variant);
    QCOMPARE(convert(write("a.bin", bytes), path("a.json")), 0);
    const QString old = write("old.bin", "old");
    const QFile::Permissions shared = owner_only | QFile::ReadGroup;
    QVERIFY(QFile::setPermissions(old, shared));
    QCOMPARE(convert(path("a.json"), old, {QStringLiteral("--force")}), 0);
    QCOMPARE(read(old).toHex(), bytes.toHex());
    QCOMPARE(QFile::permissions(old), owner_only);
    // Without a password it keeps the mode that it had.
    PropertyTovikIot open = filledRoot(1, 1);
    open.password.clear();
    QVERIFY(QFile::setPermissions(old, shared));
    const QStringList options = {QStringLiteral("--force"), QStringLiteral("--to"),
                                 QStringLiteral("json")};
    QCOMPARE(convert(write("open.bin", writtenByQt(open, qt4_variant)), old, options), 0);
    QCOMPARE(QFile::permissions(old), shared);
}

void TestHostProgramStoredSafety::replacesRegularFilesOnly()
{
    const QString fifo = path("fifo.json");
    QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    const QString stream = write("a.bin", writtenByQt(filledRoot(1, 1), qt4_variant));
    for (const QStringList& options : {QStringList(), QStringList{QStringLiteral("--force")}}) {
        QCOMPARE(convert(stream, fifo, options), 2);
        QVERIFY2(errors_.contains(QLatin1String("is a device, a pipe or a socket")),
                 qPrintable(errors_));
    }
    struct stat what = {};
    QCOMPARE(::stat(QFile::encodeName(fifo).constData(), &what), 0);
    QVERIFY(S_ISFIFO(what.st_mode));
    QCOMPARE(convert(stream, folder_->path(), {QStringLiteral("--force")}), 2);
    QVERIFY2(errors_.contains(QLatin1String("is a folder")), qPrintable(errors_));
}

void TestHostProgramStoredSafety::salvagesNothingOfNothing()
{
    const QString none = write("none.bin", "root:x:0:0:");
    const QString old = write("old.json", "old");
    const QStringList options = {QStringLiteral("--salvage"), QStringLiteral("--force")};
    QCOMPARE(convert(none, old, options), 1);
    QVERIFY2(errors_.contains(QLatin1String("can be read, and nothing was written")),
             qPrintable(errors_));
    QCOMPARE(read(old), QByteArray("old"));
}

void TestHostProgramStoredSafety::limitsFiles()
{
    const int most = 4 * 1024 * 1024;
    QCOMPARE(show(write("x", QByteArray(most, 'x'))), 1);
    QCOMPARE(show(write("x", QByteArray(most + 1, 'x'))), 2);
    QVERIFY2(errors_.contains(QLatin1String("is larger than 4 MiB")), qPrintable(errors_));
}

void TestHostProgramStoredSafety::neverShowsThePassword()
{
    PropertyTovikIot record = filledRoot(1, 1);
    record.password = QStringLiteral("PaSsWoRd");
    const QByteArray bytes = writtenByQt(record, qt4_variant);
    const QString file = write("a.bin", bytes);
    QCOMPARE(convert(file, path("a.json")), 0);
    for (const QString& shown : {file, path("a.json")}) {
        for (const QStringList& options : {QStringList(), QStringList{QStringLiteral("--json")}}) {
            QCOMPARE(show(shown, options), 0);
            QVERIFY(!(output_ + errors_).contains(record.password));
            QCOMPARE(show(shown, options + QStringList{QStringLiteral("--show-password")}), 0);
            QVERIFY(output_.contains(record.password));
        }
    }
    QCOMPARE(show(write("cut.bin", bytes.left(300))), 1);
    QVERIFY(!(output_ + errors_).contains(record.password));
}

void TestHostProgramStoredSafety::hidesTheAccountOfDamagedStreams_data()
{
    QTest::addColumn<int>("place");
    QTest::newRow("type's name") << 5;
    QTest::newRow("host") << 27;
    QTest::newRow("project") << 39;
    QTest::newRow("email") << 45;
    QTest::newRow("password") << 51;
}

// Lengths up to the end of the account: the password, or half of it, then stands in other texts.
void TestHostProgramStoredSafety::hidesTheAccountOfDamagedStreams()
{
    QFETCH(int, place);
    PropertyTovikIot record = filledRoot(0, 1);
    record.host = QStringLiteral("h");
    record.project = QStringLiteral("p");
    record.email = QStringLiteral("e");
    record.password = QStringLiteral("PaSsWoRd");
    record.host += record.host;
    const QByteArray whole = writtenByQt(record, qt4_variant);
    const int length = uchar(whole.at(place + 3));
    QCOMPARE(whole.mid(place, 3), QByteArray(3, '\0'));
    for (int wrong = 0; wrong <= 64; wrong += place == 5 ? 5 : 6) {
        if (wrong == length)
            continue;
        QByteArray bytes = whole;
        bytes[place + 3] = char(wrong);
        const QString file = write("a.bin", bytes);
        for (const QStringList& options : {QStringList(), QStringList{QStringLiteral("--json")}}) {
            QCOMPARE(show(file, options), 1);
            // Texts out of the streams' bytes may have marks between the characters.
            const QString all = QString(output_ + errors_).remove(QChar(0xb7));
            QVERIFY2(!all.contains(record.password.mid(4)), qPrintable(all));
            QVERIFY2(!all.contains(record.password.left(4)), qPrintable(all));
        }
    }
    QCOMPARE(show(write("cut.bin", whole.left(whole.size() - 4))), 1);
    QVERIFY2(errors_.contains(QLatin1String("host, project and email are hidden, too")),
             qPrintable(errors_));
    QCOMPARE(output_.count(QLatin1String("(hidden; ")), 4);
    QCOMPARE(show(path("cut.bin"), {QStringLiteral("--show-password")}), 1);
    QVERIFY(output_.contains(record.password));
    QVERIFY(!errors_.contains(QLatin1String("hidden")));
}

void TestHostProgramStoredSafety::showsNamesOfFilesAsText()
{
    const QString file =
        write("a\x1b[2J.bin", writtenByQt(filledRoot(1, 1), qt4_variant).left(200));
    const QString config = write("c\x1b.json", R"({"service": {"project": "q", "email": "e"},
        "items": [{"name": "A", "id": "1", "type": "Bit"}]})");
    QCOMPARE(show(file), 1);
    QVERIFY(!(output_ + errors_).contains(QChar(0x1b)));
    QCOMPARE(show(config), 0);
    QVERIFY(!(output_ + errors_).contains(QChar(0x1b)));
    QCOMPARE(convert(file, config), 2);
    QVERIFY2(errors_.contains(QLatin1String("--force replaces it")), qPrintable(errors_));
    QVERIFY(!errors_.contains(QChar(0x1b)));
}

void TestHostProgramStoredSafety::saysThatOutputFails_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<int>("code");
    const auto row = [](const char* name, const char* script, int code) {
        QTest::newRow(name) << QString::fromLatin1(script) << code;
    };
    row("file that may not grow", "trap '' XFSZ; ulimit -f 0; exec \"$@\" > out", 2);
    row("closed", "exec \"$@\" >&-", 2);
    row("no reader any more",
        "trap '' PIPE; mkfifo pipe; exec 4<>pipe 5>pipe 4>&-; exec \"$@\" >&5", 0);
}

void TestHostProgramStoredSafety::saysThatOutputFails()
{
    QFETCH(QString, script);
    QFETCH(int, code);
    const QString file = write("a.bin", writtenByQt(filledRoot(1, 1), qt4_variant));
    for (const char* option : {"--from=stream", "--json"}) {
        QProcess shell;
        shell.setWorkingDirectory(QDir(folder_->path()).path());
        QFile::remove(path("pipe"));
        shell.start(QStringLiteral("sh"),
                    {QStringLiteral("-c"), script, QStringLiteral("sh"), HostProcess::program(),
                     QStringLiteral("show"), file, QString::fromLatin1(option)});
        QVERIFY(shell.waitForFinished(60000));
        const QByteArray errors = shell.readAllStandardError();
        QCOMPARE(shell.exitStatus(), QProcess::NormalExit);
        QVERIFY2(shell.exitCode() == code, errors.constData());
        QCOMPARE(errors.contains("cannot write the standard output: "), code != 0);
    }
}

QTEST_GUILESS_MAIN(TestHostProgramStoredSafety)
#include "tst_host_program_stored_safety.moc"
