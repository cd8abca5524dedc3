#include "tools/host/status_text.h"

#include <QtTest>

using namespace tovik_host;

class TestHostStatusText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void saysWhatAStatusMeans_data();
    void saysWhatAStatusMeans();
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

QTEST_APPLESS_MAIN(TestHostStatusText)
#include "tst_host_status_text.moc"
