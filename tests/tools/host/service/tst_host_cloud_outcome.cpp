#include "tools/host/service/cloud_client.h"

#include <QTest>

using namespace tovik_host;
using namespace tovik_host::service;

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
    using Reason = ::service::Outcome::Reason;
    QTest::addColumn<int>("result");
    QTest::addColumn<int>("cause");
    QTest::addColumn<QString>("detail");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char* name, int result, Reason cause, const char* detail,
                        ClientOutcome::Kind kind, const char* reason) {
        QTest::newRow(name) << result << int(cause) << QString::fromLatin1(detail) << int(kind)
                            << QString::fromLatin1(reason);
    };
    row("success", 0, Reason::fine, "", ClientOutcome::Done, "");
    row("value of another kind", 0, Reason::other_kind, "a list", ClientOutcome::Done,
        "the value is a list, which is no Bit");
    row("unknown type", 0, Reason::unknown_type, "", ClientOutcome::Done, "\"Bit\" is no type");
    row("code of the service", 7, Reason::refused, "", ClientOutcome::Failed,
        "the service refused with its error code 7");
    row("network, with quotes in the words", 256, Reason::no_answer, "a \"b\" \\ c",
        ClientOutcome::Failed, "a \"b\" \\ c");
    row("no JSON", 256, Reason::not_json, "Login: parsing JSON failed", ClientOutcome::BadReply,
        "the reply is not understood: Login: parsing JSON failed");
    row("no errorcode", 256, Reason::no_errorcode, "Login: no errorcode", ClientOutcome::BadReply,
        "the reply is not understood: Login: no errorcode");
    row("empty token", 256, Reason::token_empty, "the token is empty", ClientOutcome::BadReply,
        "the reply is not understood: the token is empty");
}

void TestHostCloudOutcome::judges()
{
    QFETCH(int, result);
    QFETCH(int, cause);
    QFETCH(QString, detail);
    const ::service::Outcome asked(result, ::service::Outcome::Reason(cause), detail);
    const ClientOutcome outcome = clientOutcome(asked, QStringLiteral("Bit"));
    QTEST(int(outcome.kind), "kind");
    QTEST(outcome.reason, "reason");
    QCOMPARE(outcome.result, result);
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
