#include "tests/support/cloud_process.h"

#include <QTest>

#include <set>
#include <string>

using nlohmann::json;

class TestCloudProgramApi : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void listsGroupsAndItems();
    void everyTypeHasItsJsonKind();
    void readsWhatWasWritten_data();
    void readsWhatWasWritten();
    void refuses_data();
    void refuses();
    void answersForeignBytes();
    void turnsAwayOtherRequests();
    void tokensExpire();
    void speaksPlainHttp();
    void logHasNoSecrets();

private:
    CloudProcess cloud_;
    std::string token_;
};

void TestCloudProgramApi::initTestCase()
{
    QVERIFY(cloud_.start({QStringLiteral("--verbose")}));
    token_ = cloud_.login();
    QVERIFY(!token_.empty());
}

void TestCloudProgramApi::listsGroupsAndItems()
{
    const ServiceAnswer groups = cloud_.post("/qlix_api/imonitor/group/list", {{"token", token_}});
    QCOMPARE(groups.errorCode(), 0);
    QVERIFY(groups.json.at("Number") == groups.json.at("groups").size());
    QVERIFY(groups.json.at("groups").size() >= 4);
    std::size_t items = 0;
    bool has_name = false;
    for (const json& group : groups.json.at("groups")) {
        const ServiceAnswer list =
            cloud_.post("/qlix_api/imonitor/group/dataitems",
                        {{"group_id", group.at("group_id")}, {"token", token_}});
        QCOMPARE(list.errorCode(), 0);
        QVERIFY(list.json.at("Number") == list.json.at("dataitems").size());
        items += list.json.at("dataitems").size();
        has_name = has_name || list.text.find("Außentemperatur") != std::string::npos;
    }
    QVERIFY(items >= 40);
    QVERIFY(has_name);
}

void TestCloudProgramApi::everyTypeHasItsJsonKind()
{
    std::set<std::string> types;
    for (const char* group : {"boiler", "hall", "energy", "recipes"}) {
        const ServiceAnswer list = cloud_.post("/qlix_api/imonitor/group/dataitems",
                                               {{"group_id", group}, {"token", token_}});
        for (const json& item : list.json.at("dataitems")) {
            const auto type = item.at("type").get<std::string>();
            types.insert(type);
            const bool is_text =
                type.find("HEX") != std::string::npos || type.find("String") != std::string::npos;
            const json& value = item.at("value");
            QVERIFY(type == "Bit" ? value.is_boolean()
                                  : (is_text ? value.is_string() : value.is_number()));
        }
    }
    QCOMPARE(types.size(), std::size_t(12));
}

void TestCloudProgramApi::readsWhatWasWritten_data()
{
    QTest::addColumn<QByteArray>("item");
    QTest::addColumn<QByteArray>("value");
    QTest::newRow("bit") << QByteArray("hall-light") << QByteArray("true");
    QTest::newRow("integer") << QByteArray("hall-offset") << QByteArray("-300");
    QTest::newRow("unsigned") << QByteArray("recipe-flour") << QByteArray("4294967295");
    QTest::newRow("BCD") << QByteArray("recipe-number") << QByteArray("9876");
    QTest::newRow("float") << QByteArray("hall-setpoint") << QByteArray("19.25");
    QTest::newRow("hexadecimal") << QByteArray("recipe-options") << QByteArray("\"BEEF\"");
    QTest::newRow("ASCII text") << QByteArray("recipe-code") << QByteArray("\"A-1\"");
    QTest::newRow("text") << QByteArray("hall-display") << QByteArray("\"Grüße\"");
    QTest::newRow("moving item") << QByteArray("recipe-done") << QByteArray("7");
}

void TestCloudProgramApi::readsWhatWasWritten()
{
    QFETCH(QByteArray, item);
    QFETCH(QByteArray, value);
    const json wanted = json::parse(value.toStdString());
    QCOMPARE(cloud_.write(token_, item.toStdString(), wanted).errorCode(), 0);
    const ServiceAnswer answer = cloud_.value(token_, item.toStdString());
    QCOMPARE(answer.errorCode(), 0);
    QVERIFY(answer.json.at("value") == wanted);
}

void TestCloudProgramApi::refuses_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<int>("code");
    const auto row = [](const char* title, const char* path, const char* body, int code,
                        const char* type = "application/json") {
        QTest::newRow(title) << QByteArray(path) << QByteArray(body) << QByteArray(type) << code;
    };
    row("wrong account", "auth/login", R"({"email":"a","password":"b","project":"plant"})", 1);
    row("unknown project", "auth/login",
        R"({"email":"operator@example.com","password":"tovik","project":"x"})", 3);
    row("unknown token", "imonitor/group/list", R"({"token":"x"})", 4);
    row("unknown group", "imonitor/group/dataitems", R"({"token":"TOKEN","group_id":"x"})", 7);
    row("unknown item", "imonitor/dataitem/value", R"({"token":"TOKEN","dataitem_id":"x"})", 7);
    row("read-only", "imonitor/dataitem/setValue",
        R"({"token":"TOKEN","dataitem_id":"hall-co2","value":1})", 8);
    row("group without write permission", "imonitor/dataitem/setValue",
        R"({"token":"TOKEN","dataitem_id":"energy-power","value":1})", 8);
    row("wrong value", "imonitor/dataitem/setValue",
        R"({"token":"TOKEN","dataitem_id":"hall-fan","value":-1})", 9);
    row("additional member", "imonitor/group/list", R"({"token":"TOKEN","x":1})", 15);
    row("form instead of JSON", "imonitor/group/list", R"({"token":"TOKEN"})", 15,
        "application/x-www-form-urlencoded");
    row("empty body", "imonitor/group/list", "", 15);
}

void TestCloudProgramApi::refuses()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, body);
    QFETCH(QByteArray, type);
    QFETCH(int, code);
    body.replace("TOKEN", QByteArray::fromStdString(token_));
    const ServiceAnswer answer =
        cloud_.postRaw("/qlix_api/" + path.toStdString(), body.toStdString(), type.toStdString());
    QCOMPARE(answer.status, 200);
    QCOMPARE(answer.errorCode(), code);
}

void TestCloudProgramApi::answersForeignBytes()
{
    const ServiceAnswer answer =
        cloud_.postRaw("/qlix_api/imonitor/group/list", "{\"token\":\"\xfc\xff\"}");
    QCOMPARE(answer.errorCode(), 15);
    QVERIFY(cloud_.log().find("no valid JSON in UTF-8") != std::string::npos);
}

void TestCloudProgramApi::turnsAwayOtherRequests()
{
    const ServiceAnswer answer = cloud_.postRaw("/qlix_api/other", "{}");
    QCOMPARE(answer.status, 404);
    QCOMPARE(answer.errorCode(), 15);
    const ServiceAnswer large =
        cloud_.postRaw("/qlix_api/imonitor/group/list", std::string(2 * 1024 * 1024, ' '));
    QVERIFY(!large.arrived || large.status == 413);
}

void TestCloudProgramApi::tokensExpire()
{
    CloudProcess cloud;
    QVERIFY(cloud.start({QStringLiteral("--token-lifetime"), QStringLiteral("0.5")}));
    const std::string token = cloud.login();
    QTRY_COMPARE(cloud.value(token, "hall-light").errorCode(), 4);
    QVERIFY(cloud.login() != token);
}

void TestCloudProgramApi::speaksPlainHttp()
{
    CloudProcess cloud;
    QVERIFY(cloud.start({QStringLiteral("--http")}));
    QCOMPARE(cloud.value(cloud.login(), "hall-light").errorCode(), 0);
}

void TestCloudProgramApi::logHasNoSecrets()
{
    cloud_.login();
    const std::string log = cloud_.log();
    QVERIFY(log.find("operator@example.com") != std::string::npos);
    QVERIFY(log.find("\"tovik\"") == std::string::npos);
    QVERIFY(log.find(token_) == std::string::npos);
}

QTEST_GUILESS_MAIN(TestCloudProgramApi)
#include "tst_cloud_program_api.moc"
