#include "tools/host/terminal/context.h"
#include "tools/host/terminal/exit_code.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <thread>
#include <vector>

using namespace tovik_host;
using namespace tovik_host::terminal;

class TestHostDebugLog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void catchesLinesOfAllThreads();
    void countsRepeatedLines();
    void keepsTheLatestLines();
    void writesAFile();
    void refusesAFileThatCannotBe();
};

void TestHostDebugLog::catchesLinesOfAllThreads()
{
    DebugLog log;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([i] {
            for (int j = 0; j < 20; ++j)
                qDebug("line %d of thread %d", j, i);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    const QStringList lines = log.lastLines(1000);
    QCOMPARE(lines.size(), 80);
    QVERIFY(lines.contains(QStringLiteral("line 19 of thread 3")));
}

void TestHostDebugLog::countsRepeatedLines()
{
    DebugLog log;
    for (const char* line : {"a", "a", "b", "a"})
        qDebug("%s", line);
    QCOMPARE(log.lastLines(5), QStringList({QStringLiteral("a  (2 times)"), QStringLiteral("b"),
                                            QStringLiteral("a")}));
}

void TestHostDebugLog::keepsTheLatestLines()
{
    DebugLog log;
    for (int i = 0; i < 500; ++i)
        qDebug("%d", i);
    QCOMPARE(log.lastLines(2), QStringList({QStringLiteral("498"), QStringLiteral("499")}));
    QVERIFY(log.lastLines(1000).size() < 500);
}

void TestHostDebugLog::writesAFile()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("log"));
    {
        DebugLog log;
        log.start(path, false);
        qDebug("Gr\u00fc\u00dfe");
    }
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString line = QString::fromUtf8(file.readAll());
    QVERIFY2(
        QRegularExpression(QStringLiteral("^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3} "
                                          "Gr\u00fc\u00dfe\n$"))
            .match(line)
            .hasMatch(),
        qPrintable(line));
}

void TestHostDebugLog::refusesAFileThatCannotBe()
{
    DebugLog log;
    QVERIFY_EXCEPTION_THROWN(log.start(QStringLiteral("/no/such/folder/log"), false), UsageError);
}

QTEST_GUILESS_MAIN(TestHostDebugLog)
#include "tst_host_debug_log.moc"
