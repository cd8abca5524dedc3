#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

// What a host may do to the library with dlclose. Each host is a process of its own.

namespace {

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

const char* const library = TOVIK_LIBRARY;
/// The same objects, linked so that they can be taken out.
const char* const removable_library = TOVIK_REMOVABLE_LIBRARY;

} // namespace

class TestPluginUnload : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hosts_data();
    void hosts();
    void withoutTheLinkOption();
    void linkOption_data();
    void linkOption();

private:
    void run(const QStringList& arguments);

    QProcess host_;
    QByteArray output_;
};

void TestPluginUnload::run(const QStringList& arguments)
{
    host_.setProcessChannelMode(QProcess::MergedChannels);
    host_.start(QFile::decodeName(UNLOAD_HOST), arguments);
    QVERIFY(host_.waitForFinished(-1)); // the test has its own limits
    output_ = host_.readAll();
}

void TestPluginUnload::hosts_data()
{
    QTest::addColumn<QString>("what");
    QTest::newRow("closes, unloads, goes on, loads again") << latin1("go-on");
    QTest::newRow("unloads without closing, then ends") << latin1("without-closing");
    QTest::newRow("loads two copies of the file") << latin1("two-copies");
}

void TestPluginUnload::hosts()
{
    QFETCH(QString, what);
    const QTemporaryDir folder;
    const QString copy = folder.filePath(latin1("copy.so"));
    QVERIFY(QFile::copy(QFile::decodeName(library), copy));
    run({what, QFile::decodeName(library), copy});
    QCOMPARE(output_, QByteArray("done\n"));
    QCOMPARE(host_.exitStatus(), QProcess::NormalExit);
    QCOMPARE(host_.exitCode(), 0);
}

/// The same host with a library that goes when it is told to: why the option is there.
void TestPluginUnload::withoutTheLinkOption()
{
    run({latin1("go-on"), QFile::decodeName(removable_library)});
    QVERIFY2(!output_.contains("done"), output_.constData());
    QVERIFY(host_.exitStatus() == QProcess::CrashExit || host_.exitCode() != 0);
    QVERIFY2(!output_.contains("not so"), output_.constData());
}

void TestPluginUnload::linkOption_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<bool>("stays");
    QTest::newRow("the library") << QFile::decodeName(library) << true;
    QTest::newRow("without the option") << QFile::decodeName(removable_library) << false;
#ifdef TEMPLATE_LIBRARY
    QTest::newRow("the template driver") << QFile::decodeName(TEMPLATE_LIBRARY) << true;
    QTest::newRow("the Modbus driver") << QFile::decodeName(MODBUS_LIBRARY) << true;
#endif
}

void TestPluginUnload::linkOption()
{
    QFETCH(QString, file);
    QFETCH(bool, stays);
    QProcess readelf;
    readelf.start(latin1("readelf"), {latin1("-dW"), file});
    QVERIFY(readelf.waitForFinished(-1));
    const QByteArray section = readelf.readAllStandardOutput();
    QVERIFY(section.contains("(NEEDED)"));
    bool is_there = false;
    for (const QByteArray& line : section.split('\n'))
        is_there = is_there || (line.contains("(FLAGS_1)") && line.contains("NODELETE"));
    QCOMPARE(is_there, stays);
}

QTEST_GUILESS_MAIN(TestPluginUnload)
#include "tst_plugin_unload.moc"
