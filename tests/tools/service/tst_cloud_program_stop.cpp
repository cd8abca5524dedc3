#include "tests/support/cloud_process.h"
#include "tests/tools/service/raw_client.h"

#include <QTest>

#include <csignal>
#include <memory>
#include <vector>

class TestCloudProgramStop : public QObject
{
    Q_OBJECT

private slots:
    void stopsAtOnce_data();
    void stopsAtOnce();
};

void TestCloudProgramStop::stopsAtOnce_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<QString>("fault");
    QTest::addColumn<int>("clients");
    QTest::newRow("SIGTERM without clients") << SIGTERM << QString() << 0;
    QTest::newRow("SIGINT without clients") << SIGINT << QString() << 0;
    QTest::newRow("SIGHUP without clients") << SIGHUP << QString() << 0;
    QTest::newRow("hung requests") << SIGTERM << QStringLiteral("hang") << 40;
    QTest::newRow("delayed requests") << SIGTERM << QStringLiteral("delay:ms=60000") << 5;
    QTest::newRow("dripping replies") << SIGINT << QStringLiteral("drip:ms=60000") << 5;
    QTest::newRow("closed port") << SIGTERM << QStringLiteral("refuse") << 0;
}

void TestCloudProgramStop::stopsAtOnce()
{
    QFETCH(int, signal);
    QFETCH(QString, fault);
    QFETCH(int, clients);
    CloudProcess cloud;
    QStringList options{QStringLiteral("--http")};
    if (!fault.isEmpty())
        options << QStringLiteral("--fault") << fault;
    QVERIFY(cloud.start(options));
    std::vector<std::unique_ptr<RawClient>> hanging;
    for (int i = 0; i < clients; ++i) {
        hanging.push_back(std::make_unique<RawClient>(cloud.port()));
        hanging.back()->sendRequest("{}");
    }
    // Clients that say nothing, on both ports.
    const RawClient silent(cloud.port());
    const RawClient silent_control(cloud.controlPort());
    if (clients > 0)
        QTRY_COMPARE(cloud.applied(1), clients);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(cloud.stop(signal), 0);
    // At once, with allowance for a busy machine; a silent client alone would keep it for 5 s.
    QVERIFY2(timer.elapsed() < 3000, qPrintable(QString::number(timer.elapsed())));
}

QTEST_GUILESS_MAIN(TestCloudProgramStop)
#include "tst_cloud_program_stop.moc"
