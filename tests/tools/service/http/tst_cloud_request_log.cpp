#include "tools/service/http/event_log.h"
#include "tools/service/http/request_log.h"

#include <QTemporaryDir>
#include <QTest>

using namespace tovik_service::http;

class TestCloudRequestLog : public QObject
{
    Q_OBJECT

private slots:
    void keepsTheLastThousand();
    void countsByPath();
    void logLinesCannotBeForged();
};

namespace {

RequestRecord record(const std::string& path)
{
    RequestRecord result;
    result.path = path;
    return result;
}

} // namespace

void TestCloudRequestLog::keepsTheLastThousand()
{
    RequestLog log;
    for (int i = 0; i < 1005; ++i)
        log.add(record("value"));
    QCOMPARE(log.since(0).size(), std::size_t(1000));
    QCOMPARE(log.since(0).front().number, std::uint64_t(6));
    QCOMPARE(log.since(1004).size(), std::size_t(1));
    QVERIFY(log.since(1005).empty());
}

void TestCloudRequestLog::countsByPath()
{
    RequestLog log;
    for (const char* path : {"value", "value", "login", "/a", "/b"})
        log.add(record(path));
    const auto counts = log.counts();
    QCOMPARE(counts.at("value"), std::uint64_t(2));
    QCOMPARE(counts.at("login"), std::uint64_t(1));
    QCOMPARE(counts.at("other"), std::uint64_t(2));
}

void TestCloudRequestLog::logLinesCannotBeForged()
{
    QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("log"));
    {
        EventLog log(name.toStdString(), false);
        log.note("one\ntwo\x1b[0m");
        log.detail("not written");
    }
    QFile file(name);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    QCOMPARE(text.count('\n'), 1);
    QVERIFY(text.endsWith(" one?two?[0m\n"));
    QVERIFY_EXCEPTION_THROWN(EventLog(folder.path().toStdString(), false), std::runtime_error);
}

QTEST_APPLESS_MAIN(TestCloudRequestLog)
#include "tst_cloud_request_log.moc"
