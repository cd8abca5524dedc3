#include "cloud/conversation.h"
#include "cloud/drv_tovik_iot.h"
#include "cloud/post.h"
#include "interface/drv_ethernet.h"
#include "tests/support/log_recorder.h"
#include "tests/support/scripted_service.h"
#include "tests/support/traffic_log.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QTcpSocket>
#include <QTest>
#include <QThread>

#include <functional>
#include <memory>

namespace {

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

QList<int> kindsOf(const QList<Traffic>& heard)
{
    QList<int> kinds;
    for (const Traffic& traffic : heard)
        kinds << traffic.kind;
    return kinds;
}

Traffic firstOf(const QList<Traffic>& heard, Traffic::Kind kind)
{
    for (const Traffic& traffic : heard) {
        if (traffic.kind == kind)
            return traffic;
    }
    return Traffic(Traffic::ended, QByteArray(), -1);
}

TestCertificate certificateOfNow()
{
    return TestCertificate::make(QByteArray("127.0.0.1"), -60, 3600);
}

} // namespace

Q_DECLARE_METATYPE(TestCertificate)

/// What a listener hears of the client's requests.
class TestRequestTrace : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void moments_data();
    void moments();
    void whatIsSaidBothWays();
    void secretsAreBlottedOut();
    void nameIsLookedUp();
    void theUsualPorts_data();
    void theUsualPorts();
    void aBusyThreadHearsInOrder_data();
    void aBusyThreadHearsInOrder();
    void noAnswer();
    void whoIsInTheAddressIsNotShown();
    void requestsAreNumbered();
    void nobodyListens();
    void ofADriver();

private:
    service::Outcome login(Conversation& conversation);
    bool hasHeard(Traffic::Kind kind) const { return kindsOf(log_.all()).contains(kind); }

    std::unique_ptr<ScriptedService> service_;
    PropertyTovikIot property_;
    TrafficLog log_;
    LogRecorder lines_;
    QString token_;
};

void TestRequestTrace::init()
{
    log_.clear();
    service_.reset(new ScriptedService);
    property_.host = service_->url();
}

service::Outcome TestRequestTrace::login(Conversation& conversation)
{
    conversation.memory()->listener = &log_;
    return conversation.login(latin1("plant"), latin1("operator"), latin1("s3cret"), &token_);
}

void TestRequestTrace::moments_data()
{
    QTest::addColumn<bool>("is_encrypted");
    QTest::addColumn<QList<int>>("kinds");
    QTest::newRow("http") << false
                          << QList<int>({Traffic::asked, Traffic::answering, Traffic::answered});
    QTest::newRow("https") << true
                           << QList<int>({Traffic::asked, Traffic::connected, Traffic::encrypted,
                                          Traffic::answering, Traffic::answered});
}

void TestRequestTrace::moments()
{
    QFETCH(bool, is_encrypted);
    if (is_encrypted)
        service_.reset(new ScriptedService(certificateOfNow()));
    property_.host = service_->url();
    const qint64 before = QDateTime::currentMSecsSinceEpoch() * 1000;
    Conversation conversation(&property_);
    login(conversation);
    const QList<Traffic> heard = log_.all();
    QList<int> kinds = kindsOf(heard);
    if (!is_encrypted) // the connection may be over before it is looked for
        kinds.removeOne(Traffic::connected);
    QTEST(kinds, "kinds");
    qint64 latest = before;
    for (const Traffic& traffic : heard) {
        QVERIFY(traffic.time >= latest);
        latest = traffic.time;
    }
    QVERIFY(latest <= (QDateTime::currentMSecsSinceEpoch() + 1) * 1000);
    QCOMPARE(firstOf(heard, Traffic::answering).code, 0); // a first handshake resumes nothing
}

void TestRequestTrace::whatIsSaidBothWays()
{
    service_->queue(ScriptedReply::status(503, "{\"errorcode\":7}"));
    Conversation conversation(&property_);
    login(conversation);
    const Traffic asked = firstOf(log_.all(), Traffic::asked);
    QCOMPARE(asked.code, 0);
    QCOMPARE(asked.text, latin1("POST ") + service_->url() + latin1("/qlix_api/auth/login"));
    QVERIFY(asked.bytes.contains("\"project\":\"plant\""));
    const Traffic answered = firstOf(log_.all(), Traffic::answered);
    QCOMPARE(answered.code, 503);
    QCOMPARE(answered.bytes, QByteArray("{\"errorcode\":7}"));
    QVERIFY2(answered.text.contains(latin1("server replied")), qPrintable(answered.text));
}

void TestRequestTrace::secretsAreBlottedOut()
{
    // A service that repeats what it was told, and a token that nobody knows yet.
    service_->queue("{\"errorcode\":0,\"token\":\"t0ken\",\"message\":\"s3cret is right\"}");
    property_.host.replace(latin1("//"), latin1("//operator:s3cret@"));
    Conversation conversation(&property_);
    QCOMPARE(login(conversation).result, 0);
    QCOMPARE(token_, latin1("t0ken"));
    for (const Traffic& traffic : log_.all()) {
        QVERIFY2(!traffic.bytes.contains("s3cret") && !traffic.bytes.contains("t0ken"),
                 traffic.bytes.constData());
        QVERIFY2(!traffic.text.contains(latin1("s3cret")), qPrintable(traffic.text));
    }
    QCOMPARE(firstOf(log_.all(), Traffic::answered).bytes,
             QByteArray("{\"errorcode\":0,\"token\":\"***\",\"message\":\"*** is right\"}"));
}

void TestRequestTrace::nameIsLookedUp()
{
    property_.host.replace(latin1("127.0.0.1"), latin1("localhost"));
    // The request's own look-up may be the faster one, and the connection over before it is seen.
    service_->setHandler([this](const ScriptedRequest&) {
        const bool is_named = QTest::qWaitFor(
            [this] { return hasHeard(Traffic::named) && hasHeard(Traffic::connected); }, 30000);
        return is_named ? ScriptedReply::json("{\"errorcode\":0}") : ScriptedReply::close();
    });
    Conversation conversation(&property_);
    QCOMPARE(login(conversation).result, 256); // without a token in the reply
    const Traffic named = firstOf(log_.all(), Traffic::named);
    QVERIFY2(named.text.contains(latin1("127.0.0.1")), qPrintable(named.text));
    QCOMPARE(named.code, 0);
    QVERIFY(hasHeard(Traffic::connected));
}

void TestRequestTrace::theUsualPorts_data()
{
    QTest::addColumn<TestCertificate>("certificate");
    QTest::addColumn<QString>("scheme");
    QTest::addColumn<int>("port");
    QTest::newRow("http") << TestCertificate() << latin1("http") << 80;
    QTest::newRow("https") << certificateOfNow() << latin1("https") << 443;
}

/// At an address of the loopback network that no other test has.
void TestRequestTrace::theUsualPorts()
{
    QFETCH(TestCertificate, certificate);
    QFETCH(QString, scheme);
    QFETCH(int, port);
    const quint32 id = quint32(QCoreApplication::applicationPid());
    const QHostAddress address(0x7f000000U | (id & 0xffffffU));
    service_.reset(new ScriptedService(certificate));
    service_->close();
    if (!service_->listen(address, quint16(port)))
        QSKIP("a port below 1024 needs a permission here");
    property_.host = scheme + latin1("://") + address.toString();
    service_->setHandler([this](const ScriptedRequest&) {
        const bool is_seen =
            QTest::qWaitFor([this] { return hasHeard(Traffic::connected); }, 30000);
        return is_seen ? ScriptedReply::json("{\"errorcode\":0}") : ScriptedReply::close();
    });
    Conversation conversation(&property_);
    login(conversation);
    QCOMPARE(kindsOf(log_.all()).count(Traffic::connected), 1);
}

void TestRequestTrace::aBusyThreadHearsInOrder_data()
{
    QTest::addColumn<TestCertificate>("certificate");
    QTest::addColumn<QList<int>>("kinds");
    QTest::newRow("http") << TestCertificate()
                          << QList<int>({Traffic::asked, Traffic::connected, Traffic::answering});
    QTest::newRow("https") << certificateOfNow()
                           << QList<int>({Traffic::asked, Traffic::connected, Traffic::encrypted,
                                          Traffic::answering});
}

/// One in which no timer comes: it sees the connection when it is told of what comes after it.
void TestRequestTrace::aBusyThreadHearsInOrder()
{
    QFETCH(TestCertificate, certificate);
    service_.reset();
    QThread thread;
    QObject inside;
    inside.moveToThread(&thread);
    thread.start();
    const auto call = [&inside](const std::function<void()>& function) {
        QMetaObject::invokeMethod(&inside, function, Qt::BlockingQueuedConnection);
    };
    call([&] {
        service_.reset(new ScriptedService(certificate));
        // The header alone, so that the connection stays.
        service_->setHandler([this](const ScriptedRequest&) {
            service_->findChild<QTcpSocket*>(QString(), Qt::FindDirectChildrenOnly)
                ->write("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n");
            return ScriptedReply::hang();
        });
    });
    PostMemory memory;
    memory.listener = &log_;
    {
        const Post post(latin1("{}"), service_->url(), &memory);
        const QDeadlineTimer limit(30000);
        while (!hasHeard(Traffic::answering) && !limit.hasExpired())
            QCoreApplication::sendPostedEvents();
    }
    call([this] { service_.reset(); });
    thread.quit();
    thread.wait();
    QTEST(kindsOf(log_.all()), "kinds");
}

void TestRequestTrace::noAnswer()
{
    // Qt asks a second time when a connection was closed without an answer.
    service_->setHandler([](const ScriptedRequest&) { return ScriptedReply::close(); });
    Conversation conversation(&property_);
    QCOMPARE(login(conversation).result, 256);
    const QList<Traffic> heard = log_.all();
    QVERIFY(!hasHeard(Traffic::answering));
    QCOMPARE(heard.last().kind, Traffic::answered);
    QCOMPARE(heard.last().code, 0);
    QVERIFY2(heard.last().text.contains(latin1("closed")), qPrintable(heard.last().text));
}

void TestRequestTrace::whoIsInTheAddressIsNotShown()
{
    property_.host.replace(latin1("http://"), latin1("http://us%20er:h1dden%2F%40h1dden@"));
    service_->setHandler([](const ScriptedRequest&) { return ScriptedReply::status(404, "no"); });
    Conversation conversation(&property_);
    login(conversation);
    const QString problem = log_.all().last().text;
    QVERIFY2(problem.contains(service_->url()), qPrintable(problem));
    for (const Traffic& traffic : log_.all())
        QVERIFY2(!traffic.text.contains(latin1("h1dden")), qPrintable(traffic.text));
}

void TestRequestTrace::requestsAreNumbered()
{
    Conversation conversation(&property_);
    login(conversation);
    login(conversation);
    QCOMPARE(log_.all().first().number, 1);
    QCOMPARE(log_.all().last().number, 2);
}

void TestRequestTrace::nobodyListens()
{
    Conversation conversation(&property_);
    login(conversation);
    const int heard = log_.all().size();
    conversation.memory()->listener = nullptr;
    conversation.login(latin1("plant"), latin1("operator"), latin1("s3cret"), &token_);
    QCOMPARE(log_.all().size(), heard);
    QCOMPARE(service_->requests().size(), 2);
}

void TestRequestTrace::ofADriver()
{
    service_->queue("{\"errorcode\":0,\"token\":\"t0ken\"}");
    service_->queue("{\"errorcode\":0,\"Number\":0,\"groups\":[]}");
    DrvEthernet link;
    link.driver_specific_data[latin1("tovik_iot")] = QVariant::fromValue(property_);
    traffic::setListener(&link, &log_);
    DrvTovikIot driver(&link);
    QTRY_VERIFY(driver.isConnected());
    QTRY_COMPARE(kindsOf(log_.all()).count(Traffic::answered), 2);
    // From the very first request on.
    QVERIFY(log_.all().first().text.endsWith(latin1("/qlix_api/auth/login")));
    Q_EMIT link.EmitNotifyBeforeRelease();
}

QTEST_GUILESS_MAIN(TestRequestTrace)
#include "tst_request_trace.moc"
