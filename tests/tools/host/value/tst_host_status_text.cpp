#include "tools/host/value/status_text.h"

#include <QTest>

using namespace tovik_host;
using namespace tovik_host::value;

class TestHostStatusText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void saysWhatAStatusMeans_data();
    void saysWhatAStatusMeans();
    void saysWhatADevicesStatusMeans_data();
    void saysWhatADevicesStatusMeans();
    void saysItInTheDriversWords();
    void namesACodeOnce();
};

void TestHostStatusText::saysWhatAStatusMeans_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("of_service");
    const auto row = [](const char* name, int status, const char* code, const char* text,
                        bool of_service) {
        QTest::newRow(name) << status << QString::fromLatin1(code) << QString::fromLatin1(text)
                            << of_service;
    };
    row("success", 0, "0", "ok", false);
    row("error 1", 0x400F0001, "0x400F0001", "service error 1", true);
    row("error 15", 0x400F0015, "0x400F0015", "service error 15", true);
    row("error 255", 0x400F0255, "0x400F0255", "service error 255", true);
    row("client's own failure", 0x400F0256, "0x400F0256",
        "service not reachable, or its reply not understood", false);
    row("no decimal digits", 0x400F000A, "0x400F000A", "unknown status 0x400F000A", true);
    row("another driver's", 5, "0x00000005", "unknown status 0x00000005", true);
    row("negative", -1, "0xFFFFFFFF", "unknown status 0xFFFFFFFF", true);
}

void TestHostStatusText::saysWhatAStatusMeans()
{
    QFETCH(int, status);
    QFETCH(QString, code);
    QFETCH(QString, text);
    QFETCH(bool, of_service);
    QCOMPARE(statusCode(status), code);
    QCOMPARE(statusText(status), text);
    QCOMPARE(isServiceError(status), of_service);
}

void TestHostStatusText::saysWhatADevicesStatusMeans_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, int status, const char* text) {
        QTest::newRow(name) << status << QString::fromLatin1(text);
    };
    row("success", 0, "ok");
    row("stopped", 0x1002, "stopped");
    row("unit", 0x2002, "unit not served");
    row("silent device", 0x400A0000, "the device did not answer in time");
    row("receiving", 0x400A0002, "receiving failed");
    row("offline", 0x400CFFFF, "offline: no link to the device, or not supported");
    row("length", 0x20010003, "the request could not be built, or the answer had the wrong length");
    row("the driver's own", 0x400B0101, "driver's code 0x400B0101");
    row("one that a service would use", 0x400F0007, "driver's code 0x400F0007");
    row("negative", -1, "driver's code 0xFFFFFFFF");
}

void TestHostStatusText::saysWhatADevicesStatusMeans()
{
    QFETCH(int, status);
    QFETCH(QString, text);
    QCOMPARE(statusText(status, StatusOf::device), text);
}

void TestHostStatusText::saysItInTheDriversWords()
{
    const result_code::Words words[] = {{7, 7, "no such register"}, {0, 0, nullptr}};
    const StatusOf whose = StatusOf::deviceWith(words);
    QCOMPARE(statusText(7, whose), QStringLiteral("no such register"));
    QCOMPARE(statusTextWithCode(7, whose), QStringLiteral("no such register (0x00000007)"));
    QCOMPARE(statusText(8, whose), QStringLiteral("driver's code 0x00000008"));
    QCOMPARE(statusText(0x1002, whose), QStringLiteral("stopped"));
    QCOMPARE(statusText(0, whose), QStringLiteral("ok"));
}

void TestHostStatusText::namesACodeOnce()
{
    QCOMPARE(statusTextWithCode(0, StatusOf::device), QStringLiteral("ok"));
    QCOMPARE(statusTextWithCode(0x1002, StatusOf::device), QStringLiteral("stopped (0x00001002)"));
    QCOMPARE(statusTextWithCode(5, StatusOf::device), QStringLiteral("driver's code 0x00000005"));
    QCOMPARE(statusTextWithCode(0x400F0007, StatusOf::service),
             QStringLiteral("service error 7 (0x400F0007)"));
}

QTEST_APPLESS_MAIN(TestHostStatusText)
#include "tst_host_status_text.moc"
