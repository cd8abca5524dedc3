#include "interface/drv_ethernet.h"
#include "interface/drv_interface.h"
#include "interface/drvlib.h"
#include "tests/support/log_recorder.h"

#include <QTest>

#include <memory>

/// The entry points, called without a library around them.
class TestDrvlib : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void makesADriver_data();
    void makesADriver();
    void version();
};

void TestDrvlib::makesADriver_data()
{
    QTest::addColumn<bool>("has_link");
    QTest::addColumn<QString>("second_line");
    QTest::newRow("without a link") << false << QStringLiteral("No ethernet!");
    QTest::newRow("with a link") << true << QStringLiteral("Have ethernet!");
}

void TestDrvlib::makesADriver()
{
    QFETCH(bool, has_link);
    DrvEthernet link;
    int ignored = 0;
    LogRecorder log;
    const std::unique_ptr<DrvInterface> driver(
        create_drvlib(&ignored, &ignored, has_link ? &link : nullptr));
    QVERIFY(driver);
    QCOMPARE(QByteArray(driver->metaObject()->className()), QByteArray("DrvTovikIot"));
    const QStringList lines = log.take();
    QCOMPARE(lines.value(0), QStringLiteral("Create library - TOVIK IoT"));
    QTEST(lines.value(1), "second_line");
    Q_EMIT link.EmitNotifyBeforeRelease();
}

void TestDrvlib::version()
{
    LogRecorder log;
    QCOMPARE(drv_version(), 0x10653U);
    QCOMPARE(log.take(), QStringList(QStringLiteral("\"[Driver Version] v1.6.83\"")));
}

QTEST_GUILESS_MAIN(TestDrvlib)
#include "tst_drvlib.moc"
