#include "tools/host/driver/plugin.h"
#include "tools/host/terminal/exit_code.h"

#include <QTest>

using namespace tovik_host;
using namespace tovik_host::driver;

class TestHostPlugin : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void looksInUsualPlaces();
    void findsADriverByItsName();
    void takesAFileAsItIs_data();
    void takesAFileAsItIs();
    void leavesTheLastCandidateToTheLoader();
};

void TestHostPlugin::looksInUsualPlaces()
{
    const QStringList places = Plugin::candidates(QStringLiteral("/opt/tovik/tools/host"));
    QVERIFY(places.contains(QStringLiteral("/opt/tovik/tools/lib/libtovik_iot.so.1")));
    QVERIFY(places.contains(QStringLiteral("/opt/tovik/libtovik_iot.so.1")));
    QCOMPARE(places.last(), QStringLiteral("libtovik_iot.so.1"));
}

void TestHostPlugin::findsADriverByItsName()
{
    const QStringList places =
        Plugin::candidatesFor(QStringLiteral("modbus_drv"), QStringLiteral("/opt/tovik/bin"));
    QVERIFY(places.contains(QStringLiteral("/opt/tovik/lib/tovik/libmodbus_drv.so.1")));
    QVERIFY(places.contains(QStringLiteral("/opt/tovik/lib/tovik/libmodbus_drv.so")));
    QCOMPARE(places.last(), QStringLiteral("libmodbus_drv.so.1"));
    QVERIFY(
        Plugin::candidatesFor(QStringLiteral("modbus_drv"), QStringLiteral("/build/dev/tools/host"))
            .contains(QStringLiteral("/build/dev/examples/modbus/libmodbus_drv.so.1")));
}

void TestHostPlugin::takesAFileAsItIs_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("path") << QStringLiteral("drivers/mine");
    QTest::newRow("for the loader to find") << QStringLiteral("libmine.so.1");
    QTest::newRow("file in the current folder") << QFile::decodeName("Makefile-of-a-test");
}

void TestHostPlugin::takesAFileAsItIs()
{
    QFETCH(QString, name);
    const QTemporaryDir folder;
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(folder.path()));
    QFile file(QStringLiteral("Makefile-of-a-test"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(Plugin::candidatesFor(name, QStringLiteral("/usr/bin")), QStringList(name));
    QVERIFY(QDir::setCurrent(before));
}

void TestHostPlugin::leavesTheLastCandidateToTheLoader()
{
    try {
        Plugin::loadFirst({QStringLiteral("/no/such/file.so"), QStringLiteral("libno-such.so.9")});
        QFAIL("a library that is not there was loaded");
    } catch (const terminal::UsageError& error) {
        QVERIFY2(error.message().contains(QLatin1String("libno-such.so.9: cannot open")),
                 qPrintable(error.message()));
        QVERIFY(error.message().contains(QLatin1String("--library")));
    }
}

QTEST_APPLESS_MAIN(TestHostPlugin)
#include "tst_host_plugin.moc"
