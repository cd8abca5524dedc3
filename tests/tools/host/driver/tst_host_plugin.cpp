#include "tools/host/driver/plugin.h"
#include "tools/host/terminal/exit_code.h"

#include <QtTest>

using namespace tovik_host;
using namespace tovik_host::driver;

class TestHostPlugin : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void looksInUsualPlaces();
    void leavesTheLastCandidateToTheLoader();
};

void TestHostPlugin::looksInUsualPlaces()
{
    const QStringList places = Plugin::candidates(QStringLiteral("/opt/tovik/tools/host"));
    QVERIFY(places.contains(QStringLiteral("/opt/tovik/tools/lib/libtovik_iot.so.1")));
    QVERIFY(places.contains(QStringLiteral("/opt/tovik/libtovik_iot.so.1")));
    QCOMPARE(places.last(), QStringLiteral("libtovik_iot.so.1"));
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
