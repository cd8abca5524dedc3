#include "tools/service/faults/fault.h"

#include <QTest>

using namespace tovik_service::plant;
using namespace tovik_service::faults;

class TestCloudFaultSpec : public QObject
{
    Q_OBJECT

private slots:
    void everyNameIsKnown();
    void readsAllKeys();
    void hasDefaults();
    void rejects_data();
    void namesOfThePlant_data();
    void namesOfThePlant();
    void rejects();
};

void TestCloudFaultSpec::everyNameIsKnown()
{
    for (const FaultDefinition& definition : faultDefinitions()) {
        QVERIFY(parseFault(definition.name).kind() == definition.kind);
        QVERIFY(faultHelp().find(definition.name) != std::string::npos);
    }
}

void TestCloudFaultSpec::readsAllKeys()
{
    const FaultSpec delay = parseFault("delay:path=value,item=a b,group=g,count=2,seconds=1.5,"
                                       "after=3,ms=40");
    QVERIFY(delay.path == ApiPath::Value);
    QVERIFY(delay.item == "a b" && delay.group == "g");
    QCOMPARE(*delay.count, 2);
    QCOMPARE(*delay.seconds, 1.5);
    QCOMPARE(delay.after, 3);
    QCOMPARE(delay.ms, 40);
    QCOMPARE(parseFault("errorcode:code=9").code, 9);
    QCOMPARE(parseFault("http500:status=503").status, 503);
    QVERIFY(parseFault("missing:member=token").member == "token");
    QVERIFY(parseFault("tls-version:version=1.3").version == "1.3");
}

void TestCloudFaultSpec::hasDefaults()
{
    const FaultSpec drip = parseFault("drip:path=all");
    QVERIFY(!drip.path && !drip.count && !drip.seconds);
    QCOMPARE(drip.ms, 20);
    QCOMPARE(parseFault("delay").ms, 1000);
    QCOMPARE(parseFault("errorcode").code, 255);
    QCOMPARE(*parseFault("token-expiry").count, 1);
    QCOMPARE(*parseFault("token-expiry:count=4").count, 4);
    QCOMPARE(*parseFault("tickets-lost").count, 1);
    QVERIFY(parseFault("tls-version").version == "1.2");
}

void TestCloudFaultSpec::rejects_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("problem");
    const auto row = [](const char* title, const char* text, const char* problem) {
        QTest::newRow(title) << QByteArray(text) << QByteArray(problem);
    };
    row("unknown name", "dely", "unknown name \"dely\"; delay? use one of refuse, reset");
    row("unknown name that is like none", "earthquake",
        "unknown name \"earthquake\"; use one of refuse, reset");
    row("empty", "", "unknown name \"\"");
    row("no keys after the colon", "hang:", "not of the form key=value");
    row("no value", "hang:count", "\"count\" is not of the form");
    row("unknown key", "hang:cont=1", "hang takes no key \"cont\"");
    row("key of another fault", "hang:ms=1", "hang takes no key \"ms\"");
    row("key twice", "hang:count=1,count=2", "key \"count\" comes twice");
    row("no number", "hang:count=many", "count= needs a number, not \"many\"");
    row("fraction", "hang:count=1.5", "whole number");
    row("zero times", "hang:count=0", "from 1 to");
    row("no time", "hang:seconds=0", "more than 0");
    row("endless time", "hang:seconds=inf", "needs a number");
    row("unknown path", "hang:path=x", "login, groups, items, value, write or all");
    row("status that is no error", "http500:status=200", "from 400 to 599");
    row("item of a login", "hang:path=login,item=a", "item= works with");
    row("group of a login", "hang:path=login,group=a", "group= works with");
    row("count of refuse", "refuse:count=1", "refuse takes no key \"count\"");
    row("path of a certificate", "expired:path=login", "expired takes no key \"path\"");
    row("no version of TLS", "tls-version:version=1.1", "version= needs 1.2 or 1.3, not \"1.1\"");
    row("empty item", "hang:item=", "item= needs a value");
}

void TestCloudFaultSpec::rejects()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, problem);
    try {
        parseFault(text.toStdString());
        QFAIL("no error");
    } catch (const FaultError& error) {
        QVERIFY2(QByteArray(error.what()).contains(problem), error.what());
    }
}

void TestCloudFaultSpec::namesOfThePlant_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("problem");
    const auto row = [](const char* title, const char* text, const char* problem) {
        QTest::newRow(title) << QByteArray(text) << QByteArray(problem);
    };
    row("neither item nor group", "hang", "");
    row("both are there", "hang:item=boiler-flow,group=boiler", "");
    row("two letters changed places", "errorcode:item=boiler-flwo",
        "fault \"errorcode:item=boiler-flwo\": the plant has no item \"boiler-flwo\"; "
        "boiler-flow?");
    row("another case", "hang:item=Boiler-Flow",
        "fault \"hang:item=Boiler-Flow\": the plant has no item \"Boiler-Flow\"; boiler-flow?");
    row("nothing like it", "hang:item=x", "fault \"hang:item=x\": the plant has no item \"x\"");
    row("a group", "hang:group=boilr",
        "fault \"hang:group=boilr\": the plant has no group \"boilr\"; boiler?");
}

void TestCloudFaultSpec::namesOfThePlant()
{
    QFETCH(QByteArray, text);
    const Project project = parseProject(R"({
        "accounts": [{"email": "e", "password": "p", "project": "x"}],
        "groups": [{"id": "boiler", "name": "B", "items": [
            {"id": "boiler-on", "name": "O", "type": "Bit"},
            {"id": "boiler-flow", "name": "F", "type": "Bit"}]}]})");
    QTEST(QByteArray(plantProblem(parseFault(text.constData()), project).c_str()), "problem");
}

QTEST_APPLESS_MAIN(TestCloudFaultSpec)
#include "tst_cloud_fault_spec.moc"
