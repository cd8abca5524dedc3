#include "tests/support/cloud_process.h"

#include <QTest>

class TestCloudProgramFaults : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void spoilsTheReply_data();
    void spoilsTheReply();
    void breaksTheConnection_data();
    void breaksTheConnection();
    void delays();
    void expiresTokens();
    void strikesOnlyWhereTold();
    void countRunsOut();
    void worksFromTheCommandLine();

private:
    CloudProcess cloud_;
    std::string token_;
};

void TestCloudProgramFaults::initTestCase()
{
    QVERIFY(cloud_.start());
    token_ = cloud_.login();
    QCOMPARE(cloud_.write(token_, "hall-fan", 3).errorCode(), 0);
}

void TestCloudProgramFaults::cleanup()
{
    QCOMPARE(cloud_.control("DELETE", "/faults").status, 200);
    QCOMPARE(cloud_.value(cloud_.login(), "hall-fan").errorCode(), 0);
}

void TestCloudProgramFaults::spoilsTheReply_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    const auto row = [](const char* title, const char* fault, int status, const char* body) {
        QTest::newRow(title) << QByteArray(fault) << status << QByteArray(body);
    };
    row("empty", "empty", 200, "");
    row("truncated", "truncated", 200, "{\"errorcode\"");
    row("not an object", "not-object", 200, R"([{"errorcode":0,"value":3}])");
    row("no error code", "missing", 200, R"({"value":3})");
    row("no value", "missing:member=value", 200, R"({"errorcode":0})");
    row("mistyped error code", "mistyped", 200, R"({"errorcode":"wrong","value":3})");
    row("error code", "errorcode:code=9", 200, R"({"errorcode":9})");
    row("server error", "http500", 500, "The service is out of order.\n");
    row("server error without a body", "http500-empty:status=503", 503, "");
    row("not found without a body", "http500-empty:status=404", 404, "");
    row("one byte at a time", "drip:ms=1", 200, R"({"errorcode":0,"value":3})");
}

void TestCloudProgramFaults::spoilsTheReply()
{
    QFETCH(QByteArray, fault);
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    QVERIFY(cloud_.addFault(fault.toStdString()) > 0);
    const ServiceAnswer answer = cloud_.value(token_, "hall-fan");
    QVERIFY(answer.arrived);
    QCOMPARE(answer.status, status);
    QCOMPARE(QByteArray::fromStdString(answer.text), body);
}

void TestCloudProgramFaults::breaksTheConnection_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::newRow("reset before the reply") << QByteArray("reset");
    QTest::newRow("reset in the reply") << QByteArray("reset-mid");
    QTest::newRow("hang, then gone") << QByteArray("hang:seconds=0.2");
    QTest::newRow("port closed") << QByteArray("refuse");
}

void TestCloudProgramFaults::breaksTheConnection()
{
    QFETCH(QByteArray, fault);
    QVERIFY(cloud_.addFault(fault.toStdString()) > 0);
    QVERIFY(!cloud_.value(token_, "hall-fan").arrived);
}

void TestCloudProgramFaults::delays()
{
    QVERIFY(cloud_.addFault("delay:ms=250,path=value") > 0);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(cloud_.value(token_, "hall-fan").errorCode(), 0);
    QVERIFY(timer.elapsed() >= 250);
}

void TestCloudProgramFaults::expiresTokens()
{
    const int fault = cloud_.addFault("token-expiry:path=value,after=1");
    QCOMPARE(cloud_.value(token_, "hall-fan").errorCode(), 0);
    QCOMPARE(cloud_.value(token_, "hall-fan").errorCode(), 4);
    token_ = cloud_.login();
    QCOMPARE(cloud_.value(token_, "hall-fan").errorCode(), 0);
    QCOMPARE(cloud_.applied(fault), 1);
}

void TestCloudProgramFaults::strikesOnlyWhereTold()
{
    QVERIFY(cloud_.addFault("errorcode:item=hall-fan,path=value") > 0);
    QVERIFY(cloud_.addFault("empty:group=energy") > 0);
    QCOMPARE(cloud_.value(token_, "hall-fan").errorCode(), 255);
    QCOMPARE(cloud_.value(token_, "hall-light").errorCode(), 0);
    QCOMPARE(cloud_.write(token_, "hall-fan", 3).errorCode(), 0);
    QCOMPARE(cloud_.value(token_, "energy-power").errorCode(), -1);
}

void TestCloudProgramFaults::countRunsOut()
{
    const int fault = cloud_.addFault("reset:count=2");
    QVERIFY(!cloud_.value(token_, "hall-fan").arrived);
    QVERIFY(!cloud_.value(token_, "hall-fan").arrived);
    QVERIFY(cloud_.value(token_, "hall-fan").arrived);
    QCOMPARE(cloud_.applied(fault), 2);
}

void TestCloudProgramFaults::worksFromTheCommandLine()
{
    CloudProcess cloud;
    QVERIFY(cloud.start({QStringLiteral("--fault"),
                         QStringLiteral("errorcode:code=3,path=login,count=1"),
                         QStringLiteral("--fault"), QStringLiteral("not-json:path=value")}));
    QVERIFY(cloud.login().empty());
    const std::string token = cloud.login();
    QVERIFY(!token.empty());
    QVERIFY(cloud.value(token, "hall-fan").text.find("<html>") == 0);
    QVERIFY(cloud.log().find("fault 2 applied") != std::string::npos);
}

QTEST_GUILESS_MAIN(TestCloudProgramFaults)
#include "tst_cloud_program_faults.moc"
