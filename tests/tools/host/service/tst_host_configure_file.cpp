#include "tools/host/config/config_file.h"
#include "tools/host/service/configure.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/output.h"

#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace tovik_host;
using namespace tovik_host::service;

/// Names of the chosen items, and the file that is made of them.
class TestHostConfigureFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void namesItems_data();
    void namesItems();
    void takesLengthsOfTexts_data();
    void takesLengthsOfTexts();
    void makesWhatTheToolReads();
    void saysWhereThePasswordIs_data();
    void saysWhereThePasswordIs();
    void savesWholeFiles();
    void keepsSecretsFromOthers();
    void leavesExistingFilesAlone();
    void replacesRegularFilesOnly();

private:
    QTemporaryDir folder_;
};

namespace {

OfferedItem offered(const QString& group, const QString& name, const QString& id,
                    const QString& type = QStringLiteral("Bit"), int length = 1)
{
    return {id, name, type, length, false, group, group};
}

config::Account account()
{
    return {QStringLiteral("https://me:other@h:1"), QStringLiteral("p"), QStringLiteral("e"),
            QStringLiteral("s3cret"), true};
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

} // namespace

void TestHostConfigureFile::namesItems_data()
{
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<int>("warnings");
    const auto row = [](const char* name, const QStringList& paths, const QStringList& names,
                        int warnings) { QTest::newRow(name) << paths << names << warnings; };
    row("plain", {QStringLiteral("A|x"), QStringLiteral("B|x")},
        {QStringLiteral("A.x"), QStringLiteral("B.x")}, 0);
    row("the same twice", {QStringLiteral("A|x"), QStringLiteral("A|x")},
        {QStringLiteral("A.x"), QStringLiteral("A.x (2)")}, 1);
    row("three times", {QStringLiteral("A|x"), QStringLiteral("A|x"), QStringLiteral("A|x")},
        {QStringLiteral("A.x"), QStringLiteral("A.x (2)"), QStringLiteral("A.x (3)")}, 2);
    row("the same by the point", {QStringLiteral("A.b|x"), QStringLiteral("A|b.x")},
        {QStringLiteral("A.b.x"), QStringLiteral("A.b.x (2)")}, 1);
    row("a number that is taken further down",
        {QStringLiteral("A|x"), QStringLiteral("A|x"), QStringLiteral("A|x (2)")},
        {QStringLiteral("A.x"), QStringLiteral("A.x (3)"), QStringLiteral("A.x (2)")}, 1);
    row("control characters", {QStringLiteral("A\n|x\u0085\u2028"), QStringLiteral("A\t|x__")},
        {QStringLiteral("A_.x__"), QStringLiteral("A_.x__ (2)")}, 1);
    row("placeholders", {QStringLiteral("A|%2 %1"), QStringLiteral("A|%2 %1")},
        {QStringLiteral("A.%2 %1"), QStringLiteral("A.%2 %1 (2)")}, 1);
    row("slashes and emoji", {QString::fromUtf8("A/B|\xF0\x9F\x9A\x80")},
        {QString::fromUtf8("A/B.\xF0\x9F\x9A\x80")}, 0);
}

void TestHostConfigureFile::namesItems()
{
    QFETCH(QStringList, paths);
    QFETCH(QStringList, names);
    QFETCH(int, warnings);
    QVector<OfferedItem> chosen;
    for (const QString& path : paths) {
        chosen << offered(path.section(QLatin1Char('|'), 0, 0), path.section(QLatin1Char('|'), 1),
                          QStringLiteral("id%1").arg(chosen.size()));
    }
    const NamedItems named = nameItems(chosen);
    QStringList found;
    for (const config::ItemConfig& item : named.items)
        found << item.name;
    QCOMPARE(found, names);
    QCOMPARE(named.warnings.size(), warnings);
    if (warnings > 0)
        QVERIFY2(named.warnings.first().contains(QLatin1String("the id \"id1\" is called \"")),
                 qPrintable(named.warnings.first()));
}

void TestHostConfigureFile::takesLengthsOfTexts_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("expected");
    QTest::newRow("text") << QStringLiteral("String") << 40 << 40;
    QTest::newRow("longest") << QStringLiteral("String") << 65535 << 65535;
    QTest::newRow("too long") << QStringLiteral("String") << 65536 << 0;
    QTest::newRow("none") << QStringLiteral("String") << 0 << 0;
    QTest::newRow("negative") << QStringLiteral("String") << -1 << 0;
    QTest::newRow("bits of a number") << QStringLiteral("16Bit-INT") << 16 << 0;
}

void TestHostConfigureFile::takesLengthsOfTexts()
{
    QFETCH(QString, type);
    QFETCH(int, length);
    QFETCH(int, expected);
    const NamedItems named = nameItems(
        {offered(QStringLiteral("A"), QStringLiteral("x"), QStringLiteral("i"), type, length)});
    QCOMPARE(named.items.first().length, expected);
}

void TestHostConfigureFile::makesWhatTheToolReads()
{
    const NamedItems named =
        nameItems({offered(QStringLiteral("A\"\\"), QString::fromUtf8("x\xF0\x9F\x9A\x80"),
                           QStringLiteral("\x01/"), QStringLiteral("String"), 12),
                   offered(QStringLiteral("B"), QStringLiteral("y"), QStringLiteral("i"),
                           QStringLiteral("32Bit-FLOAT"), 32)});
    const QString path = folder_.filePath(QStringLiteral("c.json"));
    terminal::saveFile(path, config::configJson(account(), named.items, true).toUtf8(), false);
    const config::LoadedConfig loaded = config::loadConfig(path);
    QCOMPARE(loaded.warnings, QStringList());
    QCOMPARE(loaded.config.service.url, account().url);
    QCOMPARE(loaded.config.service.project, QStringLiteral("p"));
    QCOMPARE(loaded.config.service.email, QStringLiteral("e"));
    QCOMPARE(loaded.config.service.password, QStringLiteral("s3cret"));
    QCOMPARE(loaded.config.items.size(), 2);
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(loaded.config.items.at(i).name, named.items.at(i).name);
        QCOMPARE(loaded.config.items.at(i).id, named.items.at(i).id);
        QCOMPARE(loaded.config.items.at(i).type, named.items.at(i).type);
        QCOMPARE(loaded.config.items.at(i).length, named.items.at(i).length);
    }
}

void TestHostConfigureFile::saysWhereThePasswordIs_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QString>("expected");
    QTest::newRow("nobody knows") << QString() << QString()
                                  << QStringLiteral("\"password_env\": \"TOVIK_PASSWORD\"");
    QTest::newRow("variable") << QString() << QStringLiteral("MINE")
                              << QStringLiteral("\"password_env\": \"MINE\"");
    QTest::newRow("file") << QStringLiteral("/x/y") << QString()
                          << QStringLiteral("\"password_file\": \"/x/y\"");
}

void TestHostConfigureFile::saysWhereThePasswordIs()
{
    QFETCH(QString, file);
    QFETCH(QString, variable);
    QFETCH(QString, expected);
    config::Account from = account();
    from.password_file = file;
    from.password_env = variable;
    const QString text = config::configJson(from, {}, false);
    QVERIFY2(text.contains(expected), qPrintable(text));
    QVERIFY(!text.contains(QLatin1String("s3cret")));
    QVERIFY(!text.contains(QLatin1String("other")));
    QCOMPARE(text.count(QLatin1String("\"password")), 1);
}

void TestHostConfigureFile::savesWholeFiles()
{
    const QString path = folder_.filePath(QStringLiteral("whole"));
    terminal::saveFile(path, "\u00fc\n", false);
    QCOMPARE(contentOf(path), QByteArray("\u00fc\n"));
    QCOMPARE(QDir(folder_.path()).entryList({QStringLiteral("whole*")}, QDir::Files).size(), 1);
}

void TestHostConfigureFile::keepsSecretsFromOthers()
{
    const QString path = folder_.filePath(QStringLiteral("secret"));
    terminal::saveFile(path, "x", true);
    const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    QVERIFY(!(QFile::permissions(path) & others));
    QCOMPARE(contentOf(path), QByteArray("x"));
    // Also in the place of a file that others may read; one without a secret keeps its mode.
    const auto shared = QFile::permissions(path) | QFile::ReadGroup | QFile::ReadOther;
    QVERIFY(QFile::setPermissions(path, shared));
    terminal::saveFile(path, "y", false);
    QCOMPARE(QFile::permissions(path), shared);
    terminal::saveFile(path, "z", true);
    QVERIFY(!(QFile::permissions(path) & others));
}

void TestHostConfigureFile::leavesExistingFilesAlone()
{
    const QString path = folder_.filePath(QStringLiteral("there"));
    terminal::saveFile(path, "old", false);
    terminal::checkOutputFile(path, true);
    terminal::checkOutputFile(folder_.filePath(QStringLiteral("new")), false);
    QVERIFY_EXCEPTION_THROWN(terminal::checkOutputFile(path, false), terminal::UsageError);
    QVERIFY_EXCEPTION_THROWN(terminal::checkOutputFile(folder_.path(), true), terminal::UsageError);
    QVERIFY_EXCEPTION_THROWN(
        terminal::saveFile(folder_.filePath(QStringLiteral("none/x")), "new", false),
        terminal::UsageError);
    QCOMPARE(contentOf(path), QByteArray("old"));
}

// A FIFO stands for all that is no regular file; a link to one is no better.
void TestHostConfigureFile::replacesRegularFilesOnly()
{
    const QString fifo = folder_.filePath(QStringLiteral("fifo"));
    QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    const QString link = folder_.filePath(QStringLiteral("link"));
    QVERIFY(QFile::link(fifo, link));
    for (const QString& path : {fifo, link}) {
        QVERIFY_EXCEPTION_THROWN(terminal::checkOutputFile(path, true), terminal::UsageError);
        QVERIFY_EXCEPTION_THROWN(terminal::saveFile(path, "x", false), terminal::UsageError);
    }
    struct stat what = {};
    QCOMPARE(::stat(QFile::encodeName(fifo).constData(), &what), 0);
    QVERIFY(S_ISFIFO(what.st_mode));
}

QTEST_GUILESS_MAIN(TestHostConfigureFile)
#include "tst_host_configure_file.moc"
