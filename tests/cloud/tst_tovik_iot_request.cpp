#include "cloud/post.h"
#include "cloud/tovik_iot.h"
#include "tests/support/log_recorder.h"
#include "tests/support/scripted_service.h"

#include <QElapsedTimer>
#include <QNetworkProxy>
#include <QTcpSocket>
#include <QTest>
#include <QThread>
#include <QTimer>

namespace {

const long day = 24 * 60 * 60;

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

/// One post and what becomes of its reply.
class TestTovikIotRequest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void request();
    void headerAndBodyComeTogether_data();
    void headerAndBodyComeTogether();
    void leavesAtOnceAfterTheHandshake();
    void bodyIsInTheLocalEncoding();
    void replies_data();
    void replies();
    void transportErrors_data();
    void transportErrors();
    void lostConnectionIsTriedASecondTime();
    void refusedConnection();
    void proxyThatCannotCarryIt();
    void emptyReplyFailsTheCaller();
    void certificates_data();
    void certificates();
    void eachRequestHasItsOwnConnection();
    void slotsRunInsideARequest();
    void endingTheThreadEndsTheRequest();

private:
    PropertyTovikIot property_;
};

void TestTovikIotRequest::request()
{
    ScriptedService service;
    service.queue("{\"errorcode\":0}");
    TovikIot client(&property_);
    LogRecorder log;
    QCOMPARE(client.PostRequest(latin1("{\"a\":\"b\"}"), service.url() + latin1("/some/path")),
             latin1("{\"errorcode\":0}"));
    QCOMPARE(service.requests().size(), 1);
    const ScriptedRequest& sent = service.requests().first();
    QCOMPARE(sent.path, QByteArray("/some/path"));
    QCOMPARE(sent.body, QByteArray("{\"a\":\"b\"}"));
    QCOMPARE(sent.headers.value("content-type"), QByteArray("application/json"));
    QCOMPARE(sent.headers.value("content-length"), QByteArray("9"));
    QVERIFY(log.lines().isEmpty());
}

void TestTovikIotRequest::headerAndBodyComeTogether_data()
{
    QTest::addColumn<int>("size");
    QTest::newRow("a read with a short token") << 60;
    QTest::newRow("a read with a long token") << 2500;
}

/// A body that waits for the header's acknowledgement makes every request slow by a round trip. If
/// this fails with a new Qt, it asks for the body in another way than compat/whole_post expects.
void TestTovikIotRequest::headerAndBodyComeTogether()
{
    QFETCH(int, size);
    ScriptedService service(TestCertificate::make("127.0.0.1", -day, day));
    TovikIot client(&property_);
    const int posts = 20;
    for (int i = 0; i < posts; ++i)
        client.PostRequest(QString(size, QLatin1Char('x')), service.url());
    QCOMPARE(service.requests().size(), posts);
    int together = 0;
    for (const ScriptedRequest& request : service.requests()) {
        QCOMPARE(request.body.size(), size);
        together += request.came_at_once ? 1 : 0;
    }
    // A busy machine may look between two records of one write; without the hand-over it is none.
    QVERIFY2(together > posts / 2, qPrintable(QString::number(together)));
}

/// What is told to send at once is noted.
void TestTovikIotRequest::leavesAtOnceAfterTheHandshake()
{
    ScriptedService service(TestCertificate::make("127.0.0.1", -day, day));
    PostMemory memory;
    bool is_noted = false;
    service.setHandler([&](const ScriptedRequest&) {
        is_noted = QTest::qWaitFor([&] { return !memory.sockets.all().isEmpty(); }, 30000);
        return ScriptedReply::json("{}");
    });
    Post post(latin1("{}"), service.url(), &memory);
    post.wait();
    QVERIFY(is_noted);
}

void TestTovikIotRequest::bodyIsInTheLocalEncoding()
{
    ScriptedService service;
    TovikIot client(&property_);
    const QString body = latin1("{\"a\":\"\xE9\"}");
    client.PostRequest(body, service.url());
    QCOMPARE(service.bodies(), QList<QByteArray>{body.toLocal8Bit()});
}

void TestTovikIotRequest::replies_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("expected");
    QTest::newRow("empty") << QByteArray() << QString();
    QTest::newRow("text") << QByteArray("abc") << latin1("abc");
    QTest::newRow("bytes above 0x7F are Latin-1")
        << QByteArray("\xC3\xA9\xFF") << latin1("\xC3\xA9\xFF");
    QTest::newRow("the text ends at the first NUL") << QByteArray("ab\0cd", 5) << latin1("ab");
    QTest::newRow("NUL first") << QByteArray("\0{}", 3) << QString();
    QTest::newRow("a megabyte") << QByteArray(1 << 20, 'x') << QString(1 << 20, QLatin1Char('x'));
}

void TestTovikIotRequest::replies()
{
    QFETCH(QByteArray, bytes);
    ScriptedService service;
    service.queue(bytes);
    TovikIot client(&property_);
    QTEST(client.PostRequest(latin1("{}"), service.url()), "expected");
}

void TestTovikIotRequest::transportErrors_data()
{
    QTest::addColumn<int>("status"); // 0: the connection is closed without an answer
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("message");
    QTest::newRow("500 without a body") << 500 << QByteArray() << latin1("replied: Status");
    QTest::newRow("500 with a body: it is handed on all the same")
        << 500 << QByteArray("{\"errorcode\":9}") << latin1("replied: Status");
    QTest::newRow("404") << 404 << QByteArray("no") << latin1("replied: Status");
    QTest::newRow("closed without an answer")
        << 0 << QByteArray() << latin1("[TOVIK IoT] Post Request Error:  \"Connection closed\"");
}

void TestTovikIotRequest::transportErrors()
{
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    QFETCH(QString, message);
    ScriptedService service;
    service.setHandler([&](const ScriptedRequest&) {
        return status ? ScriptedReply::status(status, body) : ScriptedReply::close();
    });
    TovikIot client(&property_);
    LogRecorder log;
    QCOMPARE(client.PostRequest(latin1("{}"), service.url()), QString::fromLatin1(body));
    QCOMPARE(log.lines().size(), 1);
    QVERIFY2(log.lines().first().startsWith(latin1("[TOVIK IoT] Post Request Error:  \"")),
             qPrintable(log.lines().first()));
    QVERIFY2(log.lines().first().contains(message), qPrintable(log.lines().first()));
}

/// Qt's network layer does that by itself; docs/hazards.md tells integrators what it means for
/// writes.
void TestTovikIotRequest::lostConnectionIsTriedASecondTime()
{
    ScriptedService service;
    service.setHandler([](const ScriptedRequest&) { return ScriptedReply::close(); });
    TovikIot client(&property_);
    const LogRecorder log;
    client.PostRequest(latin1("{}"), service.url());
    QCOMPARE(service.requests().size(), 2);
    QCOMPARE(log.lines().size(), 1);
}

void TestTovikIotRequest::refusedConnection()
{
    QString url;
    {
        const ScriptedService service;
        url = service.url();
    }
    TovikIot client(&property_);
    LogRecorder log;
    QCOMPARE(client.PostRequest(latin1("{}"), url), QString());
    QCOMPARE(log.lines(),
             QStringList{latin1("[TOVIK IoT] Post Request Error:  \"Connection refused\"")});
}

/// Qt does not begin such a request: nobody is there to take its body.
void TestTovikIotRequest::proxyThatCannotCarryIt()
{
    const ScriptedService service(TestCertificate::make("127.0.0.1", -day, day));
    // Qt leaves proxies out on the way to 127.0.0.1; this is the same machine by another name.
    const QString url = latin1("https://0.0.0.0:%1").arg(service.serverPort());
    TovikIot client(&property_);
    LogRecorder log;
    QNetworkProxy::setApplicationProxy(
        QNetworkProxy(QNetworkProxy::FtpCachingProxy, latin1("127.0.0.1"), service.serverPort()));
    const QString reply = client.PostRequest(latin1("{}"), url);
    QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::NoProxy));
    QCOMPARE(reply, QString());
    QCOMPARE(log.lines(), QStringList{latin1("[TOVIK IoT] Post Request Error:  "
                                             "\"No suitable proxy found\"")});
    QCOMPARE(service.requests().size(), 0);
}

void TestTovikIotRequest::emptyReplyFailsTheCaller()
{
    property_.host = ScriptedService().url();
    TovikIot client(&property_);
    const LogRecorder log;
    QCOMPARE(client.Login(QString(), QString(), QString()), 256);
    QCOMPARE(log.lines(),
             (QStringList{latin1("[TOVIK IoT] Post Request Error:  \"Connection refused\""),
                          latin1("[TOVIK IoT] Login Error: parsing JSON failed!")}));
}

void TestTovikIotRequest::certificates_data()
{
    QTest::addColumn<QByteArray>("host");
    QTest::addColumn<int>("valid_from");
    QTest::addColumn<int>("valid_until");
    QTest::newRow("self-signed") << QByteArray("127.0.0.1") << int(-day) << int(day);
    QTest::newRow("expired") << QByteArray("127.0.0.1") << int(-2 * day) << int(-day);
    QTest::newRow("not valid yet") << QByteArray("127.0.0.1") << int(day) << int(2 * day);
    QTest::newRow("of another host") << QByteArray("other.example") << int(-day) << int(day);
}

void TestTovikIotRequest::certificates()
{
    QFETCH(QByteArray, host);
    QFETCH(int, valid_from);
    QFETCH(int, valid_until);
    ScriptedService service(TestCertificate::make(host, valid_from, valid_until));
    service.queue("{\"errorcode\":0}");
    TovikIot client(&property_);
    LogRecorder log;
    QCOMPARE(client.PostRequest(latin1("{}"), service.url() + latin1("/x")),
             latin1("{\"errorcode\":0}"));
    QVERIFY(service.url().startsWith(latin1("https://")));
    QCOMPARE(service.paths(), QList<QByteArray>{"/x"});
    QVERIFY2(log.lines().isEmpty(), qPrintable(log.lines().join(QLatin1Char('\n'))));
}

void TestTovikIotRequest::eachRequestHasItsOwnConnection()
{
    ScriptedService service;
    service.setHandler([](const ScriptedRequest&) {
        // Nothing here closes the connection but the client itself.
        return ScriptedReply::raw("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}");
    });
    int connections = 0;
    connect(&service, &QTcpServer::newConnection, this, [&] { ++connections; });
    TovikIot client(&property_);
    for (int i = 0; i < 3; ++i)
        client.PostRequest(latin1("{}"), service.url());
    QCOMPARE(service.requests().size(), 3);
    QCOMPARE(connections, 3);
}

void TestTovikIotRequest::slotsRunInsideARequest()
{
    ScriptedService service;
    TovikIot client(&property_);
    QString inner;
    auto run_inner = [&] {
        inner = client.PostRequest(latin1("inner"), service.url());
        for (QTcpSocket* socket : service.findChildren<QTcpSocket*>())
            socket->abort();
    };
    service.setHandler([&](const ScriptedRequest& request) {
        if (request.body == "inner")
            return ScriptedReply::json("inner");
        if (!inner.isEmpty())
            return ScriptedReply::json("outer");
        QTimer::singleShot(0, this, run_inner);
        return ScriptedReply::hang();
    });
    // The network layer repeats a request whose connection was lost without an answer.
    QCOMPARE(client.PostRequest(latin1("outer"), service.url()), latin1("outer"));
    QCOMPARE(inner, latin1("inner"));
    QCOMPARE(service.bodies(), (QList<QByteArray>{"outer", "inner", "outer"}));
}

/// What closing a driver does: the request ends without an answer and without an error.
void TestTovikIotRequest::endingTheThreadEndsTheRequest()
{
    ScriptedService service;
    service.setHandler([](const ScriptedRequest&) { return ScriptedReply::hang(); });
    property_.host = service.url();
    LogRecorder log;
    TovikIot* client = new TovikIot(&property_);
    QThread thread;
    client->moveToThread(&thread);
    connect(&thread, &QThread::started, client, &TovikIot::SlotInitialLater);
    connect(&thread, &QThread::finished, client, &QObject::deleteLater);
    log.take();
    thread.start();
    QTRY_COMPARE(service.requests().size(), 1);
    QElapsedTimer timer;
    timer.start();
    thread.quit();
    QVERIFY(thread.wait(5000));
    QVERIFY(timer.elapsed() < 5000);
    QCOMPARE(log.take(), (QStringList{latin1("[TOVIK IoT] Initializing ... "),
                                      latin1("[TOVIK IoT] Connecting to Cloud ... "),
                                      latin1("[TOVIK IoT] Login Error: parsing JSON failed!"),
                                      latin1("[TOVIK IoT] Connected to Cloud Fail!"),
                                      latin1("[TOVIK IoT] Error handle type:  1"),
                                      latin1("[TOVIK IoT] Reconnect by timer: 1000 ms")}));
    QCOMPARE(service.requests().size(), 1);
}

QTEST_GUILESS_MAIN(TestTovikIotRequest)
#include "tst_tovik_iot_request.moc"
