#include "tools/service/faults/reply_fault.h"

#include <QTest>

using namespace tovik_service::plant;
using namespace tovik_service::faults;

class TestCloudReplyFault : public QObject
{
    Q_OBJECT

private slots:
    void spoils_data();
    void spoils();
    void replaces_data();
    void replaces();
};

void TestCloudReplyFault::spoils_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<QByteArray>("body");
    const auto row = [](const char* title, const char* fault, const char* body) {
        QTest::newRow(title) << QByteArray(fault) << QByteArray(body);
    };
    row("empty body", "empty", "");
    row("cut in half", "truncated", R"({"errorcode":0,"groups":[{)");
    row("array around it", "not-object",
        R"([{"errorcode":0,"groups":[{"alert":true,"name":"a"}]}])");
    row("no error code", "missing", R"({"groups":[{"alert":true,"name":"a"}]})");
    row("no list", "missing:member=groups", R"({"errorcode":0})");
    row("member of the entries", "missing:member=name",
        R"({"errorcode":0,"groups":[{"alert":true}]})");
    row("member that is not there", "missing:member=x",
        R"({"errorcode":0,"groups":[{"alert":true,"name":"a"}]})");
    row("text for a number", "mistyped",
        R"({"errorcode":"wrong","groups":[{"alert":true,"name":"a"}]})");
    row("list for a text", "mistyped:member=name",
        R"({"errorcode":0,"groups":[{"alert":true,"name":[1]}]})");
    row("text for a bit", "mistyped:member=alert",
        R"({"errorcode":0,"groups":[{"alert":"wrong","name":"a"}]})");
    row("text for a list", "mistyped:member=groups", R"({"errorcode":0,"groups":"wrong"})");
    row("delay leaves it alone", "delay",
        R"({"errorcode":0,"groups":[{"alert":true,"name":"a"}]})");
}

void TestCloudReplyFault::spoils()
{
    QFETCH(QByteArray, fault);
    QFETCH(QByteArray, body);
    const Json json = {{"errorcode", 0},
                       {"groups", Json::array({Json{{"alert", true}, {"name", "a"}}})}};
    const HttpReply reply = spoiltReply(parseFault(fault.toStdString()), json);
    QCOMPARE(reply.status, 200);
    QCOMPARE(QByteArray::fromStdString(reply.body), body);
}

void TestCloudReplyFault::replaces_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("error code") << QByteArray("errorcode:code=3") << 200
                                << QByteArray("{\"errorcode\":3}");
    QTest::newRow("server error") << QByteArray("http500") << 500
                                  << QByteArray("The service is out of order.\n");
    QTest::newRow("without a body")
        << QByteArray("http500-empty:status=502") << 502 << QByteArray();
}

void TestCloudReplyFault::replaces()
{
    QFETCH(QByteArray, fault);
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    const FaultSpec spec = parseFault(fault.toStdString());
    QVERIFY(replacesService(spec.kind()));
    const HttpReply reply = replacementReply(spec);
    QCOMPARE(reply.status, status);
    QCOMPARE(QByteArray::fromStdString(reply.body), body);
}

QTEST_APPLESS_MAIN(TestCloudReplyFault)
#include "tst_cloud_reply_fault.moc"
