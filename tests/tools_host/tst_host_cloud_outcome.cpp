#include "tools/host/cloud_outcome.h"

#include <QtTest>

using namespace tovik_host;

class TestHostCloudOutcome : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void judges_data();
    void judges();
    void leavesOutUserAndPassword_data();
    void leavesOutUserAndPassword();
};

void TestHostCloudOutcome::judges_data()
{
    QTest::addColumn<int>("result");
    QTest::addColumn<bool>("raised");
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("reason");
    const QString not_json = QStringLiteral("[TOVIK IoT] Login Error: parsing JSON failed!");
    QTest::newRow("success") << 0 << false << QStringList() << int(ClientOutcome::Done)
                             << QString();
    QTest::newRow("success in spite of an HTTP error")
        << 0 << false << QStringList{QStringLiteral("[TOVIK IoT] Post Request Error:  \"x\"")}
        << int(ClientOutcome::Done) << QString();
    QTest::newRow("code of the service")
        << 7 << false << QStringList{QStringLiteral("[TOVIK IoT] ReadDataitemValue Error:  7")}
        << int(ClientOutcome::Failed)
        << QStringLiteral("the service refused with its error code 7");
    QTest::newRow("network")
        << 256 << false
        << QStringList{QStringLiteral("[TOVIK IoT] Post Request Error:  \"Connection refused\""),
                       not_json}
        << int(ClientOutcome::Failed) << QStringLiteral("Connection refused");
    QTest::newRow("network, with quotes in the words")
        << 256 << false
        << QStringList{QStringLiteral("[TOVIK IoT] Post Request Error:  \"a \\\"b\\\" \\\\ c\"")}
        << int(ClientOutcome::Failed) << QStringLiteral("a \"b\" \\ c");
    QTest::newRow("no JSON") << 256 << false << QStringList{not_json}
                             << int(ClientOutcome::BadReply)
                             << QStringLiteral("the reply is not understood: Login: parsing JSON "
                                               "failed");
    QTest::newRow("empty token, of which no line tells")
        << 256 << false << QStringList() << int(ClientOutcome::BadReply)
        << QStringLiteral("the reply is not understood: the token is empty");
    QTest::newRow("exception") << 0 << true << QStringList() << int(ClientOutcome::BadReply)
                               << QStringLiteral("the reply, or an entry of the list in it, is no "
                                                 "JSON object; such a reply ends a host that runs "
                                                 "the driver");
}

void TestHostCloudOutcome::judges()
{
    QFETCH(int, result);
    QFETCH(bool, raised);
    QFETCH(QStringList, lines);
    QFETCH(int, kind);
    QFETCH(QString, reason);
    const ClientOutcome outcome = judgeStep(result, raised, lines);
    QCOMPARE(int(outcome.kind), kind);
    QCOMPARE(outcome.reason, reason);
    QCOMPARE(outcome.result, raised ? 256 : result);
}

void TestHostCloudOutcome::leavesOutUserAndPassword_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    QTest::newRow("user and password")
        << QStringLiteral("https://me:s3cret@h:1")
        << QStringLiteral("Error transferring https://me:s3cret@h:1/x - no")
        << QStringLiteral("Error transferring https://h:1/x - no");
    QTest::newRow("escaped in the address, plain in the text")
        << QStringLiteral("https://me:a%2Fb@h") << QStringLiteral("to https://me:a/b@h/x")
        << QStringLiteral("to https://h/x");
    QTest::newRow("user alone") << QStringLiteral("https://me@h")
                                << QStringLiteral("to https://me@h/x")
                                << QStringLiteral("to https://h/x");
    QTest::newRow("none") << QStringLiteral("https://h") << QStringLiteral("to https://h/@x")
                          << QStringLiteral("to https://h/@x");
}

void TestHostCloudOutcome::leavesOutUserAndPassword()
{
    QFETCH(QString, url);
    QFETCH(QString, text);
    QFETCH(QString, shown);
    QCOMPARE(withoutUserInfo(text, url), shown);
}

QTEST_GUILESS_MAIN(TestHostCloudOutcome)
#include "tst_host_cloud_outcome.moc"
