#include "tools/service/plant/service.h"

#include <QTest>

using namespace tovik_service::plant;

class TestCloudService : public QObject
{
    Q_OBJECT

private slots:
    void logsIn();
    void refuses_data();
    void refuses();
    void listsWithAllMembers();
    void readsWhatWasWritten();

private:
    Reply ask(ApiPath path, const Json& body)
    {
        return service_.answer(path, "application/json", parseBody(toText(body)));
    }

    Plant plant_{parseProject(R"({
        "accounts": [{"email": "e", "password": "p", "project": "x"}],
        "groups": [{"id": "g", "name": "Büro", "items": [
            {"id": "i", "name": "Außen", "type": "16Bit-UINT", "value": 5},
            {"id": "r", "name": "R", "type": "Bit", "readonly": true}]}]})"),
                 {}};
    TokenStore tokens_{{}};
    Service service_{plant_, tokens_};
};

void TestCloudService::logsIn()
{
    const Reply reply = ask(ApiPath::Login, {{"email", "e"}, {"password", "p"}, {"project", "x"}});
    QCOMPARE(reply.errorCode(), 0);
    QVERIFY(tokens_.isKnown(reply.json.at("token").get<std::string>()));
}

void TestCloudService::refuses_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("code");
    const auto row = [](const char* title, const char* path, const char* body, int code) {
        QTest::newRow(title) << QByteArray(path) << QByteArray(body) << code;
    };
    row("wrong password", "login", R"({"email":"e","password":"q","project":"x"})", 1);
    row("unknown project", "login", R"({"email":"e","password":"p","project":"y"})", 3);
    row("unknown token", "groups", R"({"token":"nonsense"})", 4);
    row("unknown group", "items", R"({"group_id":"h","token":"TOKEN"})", 7);
    row("unknown item", "value", R"({"dataitem_id":"j","token":"TOKEN"})", 7);
    row("write to an unknown item", "write", R"({"dataitem_id":"j","token":"TOKEN","value":1})", 7);
    row("read-only item", "write", R"({"dataitem_id":"r","token":"TOKEN","value":true})", 8);
    row("wrong type", "write", R"({"dataitem_id":"i","token":"TOKEN","value":"7"})", 9);
    row("out of range", "write", R"({"dataitem_id":"i","token":"TOKEN","value":70000})", 9);
    row("malformed", "write", R"({"token":"TOKEN"})", 15);
}

void TestCloudService::refuses()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, body);
    QFETCH(int, code);
    body.replace("TOKEN", QByteArray::fromStdString(tokens_.create()));
    const Reply reply =
        ask(apiPathFromName(path.toStdString()).value(), Json::parse(body.toStdString()));
    QCOMPARE(reply.errorCode(), code);
    QVERIFY(!reply.problem.empty());
}

void TestCloudService::listsWithAllMembers()
{
    const std::string token = tokens_.create();
    const Reply groups = ask(ApiPath::Groups, {{"token", token}});
    QVERIFY(groups.json.at("Number") == 1);
    QVERIFY(groups.json.at("groups").at(0) == Json::parse(R"({"group_id":"g","name":"Büro",
        "location":"","ddLocation":"","alert":false,"permission":"RW"})"));
    const Reply items = ask(ApiPath::Items, {{"group_id", "g"}, {"token", token}});
    QVERIFY(items.json.at("Number") == 2);
    Json first = items.json.at("dataitems").at(0);
    QVERIFY(first.at("update_time").is_number_integer());
    first.erase("update_time");
    QVERIFY(first == Json::parse(R"({"name":"Außen","dataitem_id":"i","type":"16Bit-UINT",
        "length":16,"value":5,"cloud_status":1,"alert":false})"));
}

void TestCloudService::readsWhatWasWritten()
{
    const std::string token = tokens_.create();
    QCOMPARE(
        ask(ApiPath::Write, {{"dataitem_id", "i"}, {"token", token}, {"value", 77}}).errorCode(),
        0);
    QVERIFY(ask(ApiPath::Value, {{"dataitem_id", "i"}, {"token", token}}).json.at("value") == 77);
}

QTEST_APPLESS_MAIN(TestCloudService)
#include "tst_cloud_service.moc"
