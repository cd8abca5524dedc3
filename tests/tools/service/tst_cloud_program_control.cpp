#include "tests/support/cloud_process.h"
#include "tests/tools/service/raw_client.h"

#include <QTemporaryDir>
#include <QTest>

#include <csignal>

using nlohmann::json;

class TestCloudProgramControl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void tellsItsStatus();
    void managesFaults();
    void readsAndSetsItems();
    void recordsRequests();
    void cutsLongNames();
    void expiresTokens();
    void readsThePlantAgain_data();
    void readsThePlantAgain();
    void refusesFaultsOfUnknownItems();
    void takesPostsWithoutABody();
    void explainsErrors_data();
    void explainsErrors();

private:
    CloudProcess cloud_;
};

void TestCloudProgramControl::initTestCase()
{
    QVERIFY(cloud_.start({QStringLiteral("--http")}));
}

void TestCloudProgramControl::tellsItsStatus()
{
    cloud_.login();
    const json status = cloud_.control("GET", "/status").json;
    QVERIFY(status.at("url") == "http://127.0.0.1:" + std::to_string(cloud_.port()));
    QVERIFY(status.at("uptime") > 0);
    QVERIFY(status.at("requests").at("login") == 1);
    QVERIFY(status.at("tokens") == 1);
}

void TestCloudProgramControl::managesFaults()
{
    const int first = cloud_.addFault("empty:path=write");
    const int second = cloud_.addFault("delay:ms=1,path=groups");
    const json list = cloud_.control("GET", "/faults").json.at("faults");
    QVERIFY(list.size() == 2);
    QVERIFY(list.at(0) ==
            json({{"id", first}, {"fault", "empty:path=write"}, {"active", true}, {"applied", 0}}));
    const std::string path = "/faults/" + std::to_string(second);
    QCOMPARE(cloud_.control("DELETE", path).status, 200);
    QCOMPARE(cloud_.control("DELETE", path).status, 404);
    QCOMPARE(cloud_.control("DELETE", "/faults").status, 200);
    QVERIFY(cloud_.control("GET", "/faults").json.at("faults").empty());
}

void TestCloudProgramControl::readsAndSetsItems()
{
    QVERIFY(cloud_.control("GET", "/items").json.at("items").size() >= 40);
    const ServiceAnswer set = cloud_.control("PUT", "/items/hall-co2", R"({"value":901})");
    QCOMPARE(set.status, 200);
    QVERIFY(set.json == json({{"id", "hall-co2"},
                              {"group", "hall"},
                              {"name", "CO₂"},
                              {"type", "16Bit-UINT"},
                              {"value", 901}}));
    QVERIFY(cloud_.control("GET", "/items/hall-co2").json == set.json);
    QVERIFY(cloud_.value(cloud_.login(), "hall-co2").json.at("value") == 901);
}

void TestCloudProgramControl::recordsRequests()
{
    const std::string token = cloud_.login();
    const json before = cloud_.control("GET", "/requests").json.at("requests");
    const auto last = before.back().at("number").get<int>();
    QVERIFY(before.back().at("body").at("password") == "***");
    cloud_.addFault("errorcode:code=9,count=1");
    cloud_.value(token, "hall-fan");
    cloud_.write(token, "hall-co2", 1);
    const json list =
        cloud_.control("GET", "/requests?since=" + std::to_string(last)).json.at("requests");
    QVERIFY(list.size() == 2);
    const json& first = list.at(0);
    QVERIFY(first.at("number") == last + 1 && first.at("path") == "value");
    QVERIFY(first.at("item") == "hall-fan" && first.at("errorcode") == 9);
    QVERIFY(first.at("fault") == "errorcode:code=9,count=1" && first.at("status") == 200);
    QVERIFY(first.at("duration_ms") >= 0 && first.at("time") > 1e9);
    QVERIFY(first.at("body").at("token") == token.substr(0, 6) + "...");
    QVERIFY(list.at(1).at("errorcode") == 8 && list.at(1).at("fault").get<std::string>().empty());
}

void TestCloudProgramControl::cutsLongNames()
{
    const std::string token = cloud_.login();
    const std::string item(600000, 'x');
    const std::size_t logged = cloud_.log().size();
    QCOMPARE(cloud_.value(token, item).errorCode(), 7);
    const json last = cloud_.control("GET", "/requests").json.at("requests").back();
    const std::string shown = item.substr(0, 500) + "... (600000 bytes)";
    QVERIFY(last.at("item") == shown && last.at("body").at("dataitem_id") == shown);
    QTRY_VERIFY(cloud_.log().find("there is no item \"" + shown) != std::string::npos);
    QVERIFY(cloud_.log().size() - logged < 2000);
}

void TestCloudProgramControl::expiresTokens()
{
    const std::string token = cloud_.login();
    QVERIFY(cloud_.control("POST", "/tokens/expire").json.at("expired") >= 1);
    QCOMPARE(cloud_.value(token, "hall-fan").errorCode(), 4);
}

void TestCloudProgramControl::readsThePlantAgain_data()
{
    QTest::addColumn<bool>("by_signal");
    QTest::newRow("by a control call") << false;
    QTest::newRow("by SIGUSR1") << true;
}

void TestCloudProgramControl::readsThePlantAgain()
{
    QFETCH(bool, by_signal);
    const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("plant.json"));
    const auto store = [&name](const char* items) {
        QFile file(name);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(R"({"accounts": [{"email": "operator@example.com", "password": "tovik",
                       "project": "plant"}], "groups": [{"id": "g", "name": "G", "items": [)");
        file.write(items);
        file.write("]}]}");
    };
    store(R"({"id": "a", "name": "A", "type": "16Bit-INT", "value": 1})");
    CloudProcess cloud;
    QVERIFY(cloud.startProject(name, {QStringLiteral("--http")}));
    const auto reload = [&cloud, by_signal] {
        if (by_signal)
            ::kill(pid_t(cloud.process().processId()), SIGUSR1);
        else
            cloud.control("POST", "/plant/reload");
    };
    const std::string token = cloud.login();
    QVERIFY(cloud.value(token, "a").json.at("value") == 1);
    store(R"({"id": "a", "name": "A", "type": "16Bit-INT", "value": 2},
             {"id": "b", "name": "B", "type": "Bit", "value": true})");
    reload();
    QTRY_VERIFY(cloud.value(token, "a").json.at("value") == 2);
    QVERIFY(cloud.value(token, "b").json.at("value") == true);
    store("nonsense");
    reload();
    QTRY_VERIFY(cloud.log().find("the plant stays as it was: " + name.toStdString()) !=
                std::string::npos);
    QVERIFY(cloud.value(token, "a").json.at("value") == 2);
    const ServiceAnswer refused = cloud.control("POST", "/plant/reload");
    QCOMPARE(refused.status, 400);
    QVERIFY(refused.text.find("not valid JSON") != std::string::npos);
}

void TestCloudProgramControl::refusesFaultsOfUnknownItems()
{
    const ServiceAnswer answer =
        cloud_.control("POST", "/faults", R"({"fault":"hang:item=boiler-flwo"})");
    QCOMPARE(answer.status, 400);
    QVERIFY(answer.json.at("error") == "fault \"hang:item=boiler-flwo\": the plant has no item "
                                       "\"boiler-flwo\"; boiler-flow?");
}

void TestCloudProgramControl::takesPostsWithoutABody()
{
    const RawClient client(cloud_.controlPort());
    client.send("POST /tokens/expire HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n");
    QVERIFY(client.readToEnd().bytes.find("HTTP/1.1 200") == 0);
}

void TestCloudProgramControl::explainsErrors_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("text");
    const auto row = [](const char* title, const char* method, const char* path, const char* body,
                        int status, const char* text) {
        QTest::newRow(title) << QByteArray(method) << QByteArray(path) << QByteArray(body) << status
                             << QByteArray(text);
    };
    row("unknown path", "GET", "/x", "", 404, "there is no GET /x");
    row("unknown item", "GET", "/items/x", "", 404, "there is no item \"x\"");
    row("unknown item to set", "PUT", "/items/x", R"({"value":1})", 404, "there is no item \"x\"");
    row("value out of range", "PUT", "/items/hall-fan", R"({"value":-1})", 400, "from 0 to 65535");
    row("no value", "PUT", "/items/hall-fan", "{}", 400, "the body needs to be {\"value\": ...}");
    row("bad fault", "POST", "/faults", R"({"fault":"dely"})", 400, "unknown name \"dely\"");
    row("fault that is no text", "POST", "/faults", R"({"fault":1})", 400, "needs a string");
    row("body that is no JSON", "POST", "/faults", "hang", 400, "the body needs to be");
    row("certificates without TLS", "POST", "/faults", R"({"fault":"expired"})", 400,
        "without TLS");
    row("bad number", "GET", "/requests?since=x", "", 400, "since= needs the number");
    row("unknown fault", "DELETE", "/faults/4711", "", 404, "there is no fault 4711");
}

void TestCloudProgramControl::explainsErrors()
{
    QFETCH(QByteArray, method);
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, body);
    QFETCH(int, status);
    QFETCH(QByteArray, text);
    const ServiceAnswer answer =
        cloud_.control(method.toStdString(), path.toStdString(), body.toStdString());
    QCOMPARE(answer.status, status);
    QVERIFY(answer.json.is_object() && answer.json.contains("error"));
    const auto error = answer.json.at("error").get<std::string>();
    QVERIFY2(QByteArray::fromStdString(error).contains(text), error.c_str());
}

QTEST_GUILESS_MAIN(TestCloudProgramControl)
#include "tst_cloud_program_control.moc"
