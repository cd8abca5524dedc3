#include "tests/support/cloud_process.h"
#include "tests/tools/service/raw_client.h"

#include <QRegularExpression>
#include <QTest>

using nlohmann::json;

/// The page and the routes behind it; what they look like in a browser is tested elsewhere.
class TestCloudProgramDashboard : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void tellsItsAddress();
    void confinesThePage_data();
    void confinesThePage();
    void bringsAllThatThePageNeeds();
    void tellsThePlant();
    void tellsAllThatMovesAtOnce();
    void tellsItsClients();
    void tellsTheKindsOfFaults();

private:
    QByteArray page(const QByteArray& path);

    CloudProcess cloud_;
};

void TestCloudProgramDashboard::initTestCase()
{
    QVERIFY(cloud_.start({QStringLiteral("--http")}));
}

QByteArray TestCloudProgramDashboard::page(const QByteArray& path)
{
    const RawClient client(cloud_.controlPort());
    client.send("GET " + path.toStdString() +
                " HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n");
    return QByteArray::fromStdString(client.readToEnd().bytes);
}

void TestCloudProgramDashboard::tellsItsAddress()
{
    const QString line = QStringLiteral("\nDashboard: http://127.0.0.1:%1/\n");
    QVERIFY2(cloud_.output().endsWith(line.arg(cloud_.controlPort())), qPrintable(cloud_.output()));
}

void TestCloudProgramDashboard::confinesThePage_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<QByteArray>("type");
    const auto row = [](const char* title, const char* path, const char* status, const char* type) {
        QTest::newRow(title) << QByteArray(path) << QByteArray(status) << QByteArray(type);
    };
    row("the page", "/", "200", "text/html; charset=utf-8");
    row("a style", "/dashboard/layout.css", "200", "text/css; charset=utf-8");
    row("a script", "/dashboard/main.js", "200", "text/javascript; charset=utf-8");
    row("the picture", "/dashboard/icon.svg", "200", "image/svg+xml");
    row("a reply of the API", "/status", "200", "application/json");
    row("a file that is not there", "/dashboard/x.js", "404", "application/json");
    row("a name with another letter for the dot", "/dashboard/mainxjs", "404", "application/json");
}

void TestCloudProgramDashboard::confinesThePage()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, status);
    QFETCH(QByteArray, type);
    const QByteArray reply = page(path);
    QVERIFY2(reply.startsWith("HTTP/1.1 " + status), reply.constData());
    for (const QByteArray& header :
         {"Content-Type: " + type, QByteArray("Content-Security-Policy: default-src 'none'; "),
          QByteArray("X-Content-Type-Options: nosniff\r\n"),
          QByteArray("X-Frame-Options: DENY\r\n"), QByteArray("Referrer-Policy: no-referrer\r\n"),
          QByteArray("Cache-Control: no-store\r\n")}) {
        QVERIFY2(reply.contains("\r\n" + header), header.constData());
    }
    const QByteArray policy = reply.mid(reply.indexOf("Content-Security-Policy"));
    QVERIFY(!policy.left(policy.indexOf("\r\n")).contains("unsafe"));
}

void TestCloudProgramDashboard::bringsAllThatThePageNeeds()
{
    QSet<QString> seen{QStringLiteral("/")};
    QStringList waiting{QStringLiteral("/")};
    const QRegularExpression link(
        QStringLiteral("(?:href=\"|src=\"|from ')(/dashboard/|\\./)([a-z_.]+)"));
    while (!waiting.isEmpty()) {
        const QByteArray reply = page(waiting.takeFirst().toLatin1());
        QVERIFY2(reply.startsWith("HTTP/1.1 200"), reply.left(200).constData());
        auto matches = link.globalMatch(QString::fromUtf8(reply));
        while (matches.hasNext()) {
            const QString path = QStringLiteral("/dashboard/") + matches.next().captured(2);
            if (!seen.contains(path)) {
                seen.insert(path);
                waiting.append(path);
            }
        }
    }
    QVERIFY(seen.contains(QStringLiteral("/dashboard/chart.min.js")));
    QVERIFY(seen.size() > 10);
}

void TestCloudProgramDashboard::tellsThePlant()
{
    const json plant = cloud_.control("GET", "/groups").json;
    QVERIFY(plant.at("write_hold").is_null());
    const json& groups = plant.at("groups");
    QCOMPARE(groups.size(), std::size_t(4));
    const json& hall = groups.at(1);
    QVERIFY(hall.at("id") == "hall" && hall.at("name") == "Hall");
    QVERIFY(hall.at("location") == "Building 2" && hall.at("permission") == "RW");
    QVERIFY(hall.at("items").at(4) == json({{"id", "hall-co2"},
                                            {"name", "CO₂"},
                                            {"type", "16Bit-UINT"},
                                            {"readonly", true},
                                            {"moving", true}}));
    QVERIFY(hall.at("items").at(9).at("moving") == false);
    CloudProcess holding;
    QVERIFY(holding.start({QStringLiteral("--write-hold"), QStringLiteral("30")}));
    QVERIFY(holding.control("GET", "/groups").json.at("write_hold") == 30);
}

void TestCloudProgramDashboard::tellsAllThatMovesAtOnce()
{
    cloud_.login();
    const int fault = cloud_.addFault("empty:path=write");
    cloud_.control("PUT", "/items/hall-fan", R"({"value":7})");
    const json live = cloud_.control("GET", "/live").json;
    QVERIFY(live.at("started") > 1e9);
    QVERIFY(live.at("values").size() >= 40 && live.at("values").at("hall-fan") == 7);
    QVERIFY(live.at("faults").at(0).at("id") == fault);
    QVERIFY(live.at("clients").size() == live.at("status").at("tokens"));
    const json& last = live.at("requests").back();
    QVERIFY(last.at("path") == "login" && last.at("body").at("password") == "***");
    const std::string next = "/live?since=" + last.at("number").dump();
    QVERIFY(cloud_.control("GET", next).json.at("requests").empty());
    QCOMPARE(cloud_.control("GET", "/live?since=x").status, 400);
}

void TestCloudProgramDashboard::tellsItsClients()
{
    cloud_.control("POST", "/tokens/expire");
    const std::string token = cloud_.login();
    cloud_.value(token, "hall-fan");
    cloud_.value(token, "hall-fan");
    const ServiceAnswer answer = cloud_.control("GET", "/clients");
    const json& client = answer.json.at("clients").at(0);
    QVERIFY(client.at("account") == "operator@example.com" && client.at("uses") == 2);
    QVERIFY(client.at("token") == token.substr(0, 6) + "...");
    QVERIFY(client.at("address").get<std::string>().find("127.0.0.1:") == 0);
    QVERIFY(client.at("age") >= client.at("idle") && client.at("idle") >= 0);
    for (const char* path : {"/clients", "/live", "/requests", "/status"})
        QVERIFY(cloud_.control("GET", path).text.find(token) == std::string::npos);
}

void TestCloudProgramDashboard::tellsTheKindsOfFaults()
{
    const json kinds = cloud_.control("GET", "/faults/kinds").json.at("kinds");
    QCOMPARE(kinds.size(), std::size_t(23));
    QVERIFY(kinds.back().at("name") == "tls-version" && kinds.back().at("usable") == false);
}

QTEST_GUILESS_MAIN(TestCloudProgramDashboard)
#include "tst_cloud_program_dashboard.moc"
