#include "tools/service/control/control_guard.h"

#include <QTemporaryDir>
#include <QTest>

#include <stdexcept>

using namespace tovik_service::control;

class TestCloudControlGuard : public QObject
{
    Q_OBJECT

private slots:
    void onThisComputer_data();
    void onThisComputer();
    void wantsTheToken_data();
    void wantsTheToken();
    void anyHostNameWillDoWithAToken();
    void readsTokens_data();
    void readsTokens();

private:
    static int status(const ControlGuard& guard, const ControlRequest& request);
};

int TestCloudControlGuard::status(const ControlGuard& guard, const ControlRequest& request)
{
    const auto refusal = guard.refusal(request);
    return refusal ? refusal->status : 200;
}

void TestCloudControlGuard::onThisComputer_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QByteArray>("host");
    QTest::addColumn<QByteArray>("origin");
    QTest::addColumn<int>("status");
    const auto row = [](const char* title, const char* method, const char* host, const char* origin,
                        int status) {
        QTest::newRow(title) << QByteArray(method) << QByteArray(host) << QByteArray(origin)
                             << status;
    };
    row("curl", "POST", "127.0.0.1:4711", "", 200);
    row("by name", "GET", "localhost:4711", "", 200);
    row("by name in capitals", "GET", "LocalHost", "", 200);
    row("the other loopback address", "GET", "[::1]:4711", "", 200);
    row("the address that it listens on", "GET", "127.66051:4711", "", 200);
    row("the same as a browser writes it", "GET", "127.1.2.3:4711", "", 200);
    row("through a tunnel with another port", "GET", "localhost:8080", "", 200);
    row("another name that leads here", "GET", "evil.example:4711", "", 403);
    row("a name that begins like ours", "GET", "localhost.evil.example", "", 403);
    row("a name that begins like our address", "GET", "127.0.0.1.evil.example", "", 403);
    row("a part of our address", "GET", "127.1.2", "", 403);
    row("no host", "GET", "", "", 403);
    row("half an address", "GET", "[::1", "", 403);
    row("our own page", "PUT", "127.0.0.1:4711", "http://127.0.0.1:4711", 200);
    row("our own page by name", "POST", "localhost:4711", "http://localhost:4711", 200);
    row("a page of another site", "POST", "127.0.0.1:4711", "http://evil.example", 403);
    row("a page of another port", "DELETE", "localhost:4711", "http://localhost:3000", 403);
    row("a page over TLS", "PUT", "localhost:4711", "https://localhost:4711", 403);
    row("a page without a name", "POST", "localhost:4711", "null", 403);
    row("the question before a change", "OPTIONS", "localhost:4711", "http://evil.example", 403);
    row("a look from another site", "GET", "localhost:4711", "http://evil.example", 200);
}

void TestCloudControlGuard::onThisComputer()
{
    QFETCH(QByteArray, method);
    QFETCH(QByteArray, host);
    QFETCH(QByteArray, origin);
    const ControlGuard guard({"127.66051", true, "", "127.1.2.3"});
    const ControlRequest request{method.toStdString(), "/faults", host.toStdString(),
                                 origin.toStdString(), ""};
    QTEST(status(guard, request), "status");
}

void TestCloudControlGuard::wantsTheToken_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("authorization");
    QTest::addColumn<int>("status");
    const auto row = [](const char* title, const char* method, const char* path,
                        const char* authorization, int status) {
        QTest::newRow(title) << QByteArray(method) << QByteArray(path) << QByteArray(authorization)
                             << status;
    };
    row("right", "GET", "/status", "Bearer 0123456789abcdef", 200);
    row("right, scheme in small letters", "PUT", "/items/x", "bearer 0123456789abcdef", 200);
    row("missing", "GET", "/status", "", 401);
    row("wrong at the end", "GET", "/status", "Bearer 0123456789abcdeF", 401);
    row("wrong at the start", "GET", "/status", "Bearer x123456789abcdef", 401);
    row("too short", "GET", "/status", "Bearer 0123456789abcde", 401);
    row("too long", "GET", "/status", "Bearer 0123456789abcdef0", 401);
    row("empty", "GET", "/status", "Bearer ", 401);
    row("without a scheme", "GET", "/status", "0123456789abcdef", 401);
    row("of another scheme", "GET", "/status", "Basic 0123456789abcdef", 401);
    row("the page that asks for it", "GET", "/", "", 200);
    row("the page's parts", "GET", "/dashboard/main.js", "", 200);
    row("a change in the page's folder", "POST", "/dashboard/main.js", "", 401);
    row("a path that begins like the page's", "GET", "/dashboards", "", 401);
}

void TestCloudControlGuard::wantsTheToken()
{
    QFETCH(QByteArray, method);
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, authorization);
    for (const bool loopback : {false, true}) {
        const ControlGuard guard({"192.168.1.5", loopback, "0123456789abcdef", "192.168.1.5"});
        const ControlRequest request{method.toStdString(), path.toStdString(), "192.168.1.5:80", "",
                                     authorization.toStdString()};
        QTEST(status(guard, request), "status");
    }
}

void TestCloudControlGuard::anyHostNameWillDoWithAToken()
{
    const ControlGuard guard({"0.0.0.0", false, "0123456789abcdef", "0.0.0.0"});
    const std::string bearer = "Bearer 0123456789abcdef";
    QCOMPARE(status(guard, {"GET", "/status", "panel.example:80", "", bearer}), 200);
    QCOMPARE(status(guard, {"PUT", "/items/x", "panel.example", "http://panel.example", bearer}),
             200);
    QCOMPARE(status(guard, {"PUT", "/items/x", "panel.example", "http://evil.example", bearer}),
             403);
}

void TestCloudControlGuard::readsTokens_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("good");
    QTest::newRow("one line") << QByteArray("0123456789abcdef\n") << true;
    QTest::newRow("without an end of line") << QByteArray("0123456789abcdef") << true;
    QTest::newRow("with the other end of line") << QByteArray("0123456789abcdef\r\n") << true;
    QTest::newRow("empty") << QByteArray() << false;
    QTest::newRow("easily guessed") << QByteArray("0123456789abcde\n") << false;
    QTest::newRow("endless") << QByteArray(201, 'x') << false;
    QTest::newRow("with a blank") << QByteArray("0123456789 abcdef\n") << false;
    QTest::newRow("two lines") << QByteArray("0123456789abcdef\n0123456789abcdef\n") << false;
    QTest::newRow("beyond ASCII") << QByteArray("0123456789abcdefü\n") << false;
}

void TestCloudControlGuard::readsTokens()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, good);
    QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("token")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    const std::string name = file.fileName().toStdString();
    if (good)
        QCOMPARE(readControlToken(name), std::string("0123456789abcdef"));
    else
        QVERIFY_EXCEPTION_THROWN(readControlToken(name), std::invalid_argument);
    QVERIFY_EXCEPTION_THROWN(readControlToken(name + "x"), std::invalid_argument);
    QVERIFY_EXCEPTION_THROWN(readControlToken(folder.path().toStdString()), std::invalid_argument);
}

QTEST_APPLESS_MAIN(TestCloudControlGuard)
#include "tst_cloud_control_guard.moc"
