#include "tests/reliability/bursts/write_log.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

/// What is read out of the service's log of a burst.
class TestWriteLog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void counts_data();
    void counts();
    void noFile();
};

void TestWriteLog::counts_data()
{
    QTest::addColumn<QList<int>>("numbers");
    QTest::addColumn<int>("arrived");
    QTest::addColumn<int>("repeated");
    QTest::addColumn<int>("out_of_order");
    QTest::newRow("none") << QList<int>() << 0 << 0 << 0;
    QTest::newRow("in order") << QList<int>{0, 1, 2} << 3 << 0 << 0;
    QTest::newRow("one is missing") << QList<int>{0, 2} << 2 << 0 << 0;
    QTest::newRow("one twice") << QList<int>{0, 1, 1, 2} << 3 << 1 << 0;
    QTest::newRow("one late") << QList<int>{1, 2, 0, 3} << 4 << 0 << 1;
    QTest::newRow("all turned round") << QList<int>{2, 1, 0} << 3 << 0 << 2;
}

void TestWriteLog::counts()
{
    QFETCH(QList<int>, numbers);
    const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("log"));
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    const QByteArray begin = "2026-01-01T00:00:00.000Z request 1 write \"hall-display\": ";
    const QByteArray member = "{\"dataitem_id\":\"hall-display\",\"token\":\"abcdef\",\"value\":\"";
    for (const int number : numbers) {
        file.write(begin + "status 200, " + member + WriteLog::text(number) + "\"}\n");
        // Reads, refusals and the notes of faults are no arrivals.
        file.write("2026-01-01T00:00:00.000Z request 2 value \"hall-display\": status 200, {}\n");
        file.write(begin + "status 500, " + member + WriteLog::text(99) + "\"}\n");
        file.write(begin + "fault 1 applied, delay:path=write,ms=50\n");
    }
    file.close();
    const WriteLog log = WriteLog::read(name);
    QTEST(log.arrived, "arrived");
    QTEST(log.repeated, "repeated");
    QTEST(log.out_of_order, "out_of_order");
}

void TestWriteLog::noFile()
{
    QCOMPARE(WriteLog::read(QStringLiteral("/nowhere/log")).arrived, 0);
}

QTEST_GUILESS_MAIN(TestWriteLog)
#include "tst_write_log.moc"
