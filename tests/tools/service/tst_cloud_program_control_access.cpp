#include "tests/support/cloud_process.h"
#include "tests/tools/service/raw_client.h"

#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

/// The guard of the control port, in the program.
class TestCloudProgramControlAccess : public QObject
{
    Q_OBJECT

private slots:
    void turnsOtherSitesAway_data();
    void turnsOtherSitesAway();
    void aBodyThatIsTurnedAwayIsNoRequest();
    void beyondThisComputerATokenIsNeeded();
    void theTokenCanComeFromAFile();
    void tellsAnAddressThatCanBeOpened_data();
    void tellsAnAddressThatCanBeOpened();

private:
    static QByteArray ask(const CloudProcess& cloud, const QByteArray& request,
                          const QByteArray& headers, const QByteArray& body = {});
};

QByteArray TestCloudProgramControlAccess::ask(const CloudProcess& cloud, const QByteArray& request,
                                              const QByteArray& headers, const QByteArray& body)
{
    const RawClient client(cloud.controlPort());
    const QByteArray bytes = request + " HTTP/1.1\r\nConnection: close\r\n" + headers +
                             "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" +
                             body;
    client.send(bytes.toStdString());
    return QByteArray::fromStdString(client.readToEnd().bytes);
}

void TestCloudProgramControlAccess::turnsOtherSitesAway_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QByteArray>("headers");
    QTest::addColumn<QByteArray>("status");
    const QByteArray add("POST /faults");
    QTest::newRow("curl") << add << QByteArray("Host: localhost\r\n") << QByteArray("200");
    QTest::newRow("a page of another site")
        << add << QByteArray("Host: localhost\r\nOrigin: http://evil.example\r\n")
        << QByteArray("403");
    QTest::newRow("a name that leads here")
        << QByteArray("GET /items") << QByteArray("Host: evil.example\r\n") << QByteArray("403");
    QTest::newRow("the page under a name that leads here")
        << QByteArray("GET /") << QByteArray("Host: evil.example\r\n") << QByteArray("403");
}

void TestCloudProgramControlAccess::turnsOtherSitesAway()
{
    QFETCH(QByteArray, request);
    QFETCH(QByteArray, headers);
    QFETCH(QByteArray, status);
    CloudProcess cloud;
    QVERIFY(cloud.start({QStringLiteral("--http")}));
    const QByteArray reply = ask(cloud, request, headers, R"({"fault":"empty"})");
    QVERIFY2(reply.startsWith("HTTP/1.1 " + status), reply.constData());
    const bool added = !cloud.control("GET", "/faults").json.at("faults").empty();
    QCOMPARE(added, status == "200" && request.startsWith("POST"));
}

// What follows the headers of a refused request must not be read as a request of its own.
void TestCloudProgramControlAccess::aBodyThatIsTurnedAwayIsNoRequest()
{
    CloudProcess cloud;
    QVERIFY(cloud.start({QStringLiteral("--http")}));
    const QByteArray body("DELETE /faults HTTP/1.1\r\nHost: localhost\r\n\r\n");
    cloud.addFault("empty");
    const RawClient client(cloud.controlPort());
    client.send("POST /faults HTTP/1.1\r\nHost: localhost\r\nOrigin: http://evil.example\r\n"
                "Content-Length: " +
                std::to_string(body.size()) + "\r\n\r\n" + body.toStdString());
    const QByteArray reply = QByteArray::fromStdString(client.readToEnd().bytes);
    QCOMPARE(reply.count("HTTP/1.1 "), 1);
    QVERIFY(reply.contains("\r\nConnection: close\r\n"));
    QCOMPARE(cloud.control("GET", "/faults").json.at("faults").size(), std::size_t(1));
}

void TestCloudProgramControlAccess::beyondThisComputerATokenIsNeeded()
{
    CloudProcess cloud;
    QVERIFY(cloud.start({QStringLiteral("--control-host"), QStringLiteral("0.0.0.0")}));
    QVERIFY2(cloud.output().contains(QStringLiteral("\nControl: http://127.0.0.1:")),
             qPrintable(cloud.output()));
    const auto match = QRegularExpression(QStringLiteral("\nControl token: ([0-9a-f]{32})\n"))
                           .match(cloud.output());
    QVERIFY2(match.hasMatch(), qPrintable(cloud.output()));
    const QByteArray token = match.captured(1).toLatin1();
    const ServiceAnswer refused = cloud.control("GET", "/status");
    QCOMPARE(refused.status, 401);
    QVERIFY(refused.json.at("error").get<std::string>().find("Authorization: Bearer") !=
            std::string::npos);
    const QByteArray bare = ask(cloud, "GET /status", "Host: panel.example\r\n");
    QVERIFY2(bare.contains("\r\nWWW-Authenticate: Bearer\r\n"), bare.constData());
    QVERIFY(ask(cloud, "GET /", "Host: panel.example\r\n").startsWith("HTTP/1.1 200"));
    const QByteArray headers = "Host: panel.example\r\nAuthorization: Bearer " + token + "\r\n";
    QVERIFY(ask(cloud, "GET /status", headers).startsWith("HTTP/1.1 200"));
    QVERIFY(cloud.log().find(token.toStdString()) == std::string::npos);
}

void TestCloudProgramControlAccess::theTokenCanComeFromAFile()
{
    QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("token")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("a-token-of-my-own\n");
    file.close();
    CloudProcess cloud;
    QVERIFY(cloud.start({QStringLiteral("--control-token-file"), file.fileName()}));
    QVERIFY(!cloud.output().contains(QStringLiteral("a-token-of-my-own")));
    QCOMPARE(cloud.control("GET", "/items").status, 401);
    const QByteArray reply =
        ask(cloud, "GET /items", "Host: localhost\r\nAuthorization: Bearer a-token-of-my-own\r\n");
    QVERIFY(reply.startsWith("HTTP/1.1 200"));
    QVERIFY(cloud.log().find("a-token-of-my-own") == std::string::npos);
}

void TestCloudProgramControlAccess::tellsAnAddressThatCanBeOpened_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("host");
    const auto row = [](const char* title, const char* option, const char* host) {
        QTest::newRow(title) << QString::fromLatin1(option) << QString::fromLatin1(host);
    };
    row("one", "127.0.0.1", "127.0.0.1");
    row("one in short", "127.2", "127.0.0.2");
    row("all", "0.0.0.0", "127.0.0.1");
    row("all in short", "0", "127.0.0.1");
    row("all of the newer kind", "::", "::1");
    row("all of the newer kind at length", "0:0:0:0:0:0:0:0", "::1");
}

void TestCloudProgramControlAccess::tellsAnAddressThatCanBeOpened()
{
    QFETCH(QString, option);
    QFETCH(QString, host);
    if (host == QStringLiteral("::1") && !QTcpServer().listen(QHostAddress::LocalHostIPv6))
        QSKIP("this computer has no IPv6");
    CloudProcess cloud;
    QVERIFY(cloud.start({QStringLiteral("--control-host"), option}));
    const auto match =
        QRegularExpression(QStringLiteral("\nControl: (\\S+)\n")).match(cloud.output());
    const QUrl url(match.captured(1));
    QCOMPARE(url.host(), host);
    QTcpSocket socket;
    socket.connectToHost(url.host(), static_cast<quint16>(url.port()));
    QVERIFY(socket.waitForConnected());
    socket.write("GET / HTTP/1.1\r\nConnection: close\r\nHost: " + url.authority().toUtf8() +
                 "\r\n\r\n");
    QVERIFY(socket.waitForReadyRead());
    const QByteArray reply = socket.readLine();
    QVERIFY2(reply.startsWith("HTTP/1.1 200"), reply.constData());
}

QTEST_GUILESS_MAIN(TestCloudProgramControlAccess)
#include "tst_cloud_program_control_access.moc"
