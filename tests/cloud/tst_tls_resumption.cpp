#include "cloud/post.h"
#include "cloud/tovik_iot.h"
#include "tests/support/local_cloud.h"
#include "tests/support/log_recorder.h"
#include "tests/support/traffic_log.h"

#include <QElapsedTimer>
#include <QTest>

namespace {

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

QString urlOf(const LocalCloud& cloud)
{
    return QString::fromStdString(cloud.url());
}

/// A letter for each request that the service got: "f" with a full handshake, "r" resumed.
QByteArray handshakes(const LocalCloud& cloud)
{
    QByteArray letters;
    for (const bool is_resumed : cloud.resumptions())
        letters += is_resumed ? 'r' : 'f';
    return letters;
}

/// A letter for each log-in: "+" for success, "-" for a failure that the client has detected.
QByteArray logIn(TovikIot* client, int times)
{
    QByteArray letters;
    for (int i = 0; i < times; ++i) {
        const int result =
            client->Login(latin1("plant"), latin1("operator@example.com"), latin1("tovik"));
        letters += result == 0 ? '+' : result == 256 ? '-' : '?';
    }
    return letters;
}

/// The same for bare posts of a client with \a memory.
QByteArray post(const LocalCloud& cloud, PostMemory* memory, int times)
{
    QByteArray letters;
    for (int i = 0; i < times; ++i) {
        Post post(latin1("{}"), urlOf(cloud), memory);
        post.wait();
        letters += post.takeBytes().empty() ? '-' : '+';
    }
    return letters;
}

/// Long enough for some posts on this machine, in milliseconds.
int longPause(const LocalCloud& cloud)
{
    PostMemory memory;
    QElapsedTimer time;
    time.start();
    post(cloud, &memory, 4);
    return qMax(1000, 4 * int(time.elapsed()));
}

} // namespace

/// What a client's requests hand on to each other, in front of the simulated service.
class TestTlsResumption : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyLaterRequestResumes_data();
    void everyLaterRequestResumes();
    void aListenerHearsOfIt();
    void eachClientHasItsOwn();
    void faults_data();
    void faults();
    void aFailureIsAFailureLikeAnyOther();
    void aServiceThatRefusesIsTriedAfterAPause();
    void aSuccessEndsThePauses();
    void anotherServiceIsNotOfferedTheSession();
    void outagesAndErrorsKeepTheSession_data();
    void outagesAndErrorsKeepTheSession();

private:
    PropertyTovikIot property_;
};

void TestTlsResumption::everyLaterRequestResumes_data()
{
    QTest::addColumn<QByteArray>("tls");
    QTest::newRow("TLS 1.2") << QByteArray("1.2");
    QTest::newRow("TLS 1.3") << QByteArray("1.3");
}

void TestTlsResumption::everyLaterRequestResumes()
{
    QFETCH(QByteArray, tls);
    LocalCloud cloud(tls.toStdString());
    property_.host = urlOf(cloud);
    TovikIot client(&property_);
    const LogRecorder log;
    QCOMPARE(logIn(&client, 3), QByteArray("+++"));
    QVERIFY(!client.PostRequest(latin1("{}"), urlOf(cloud)).isEmpty());
    QCOMPARE(handshakes(cloud), QByteArray("frrr"));
}

void TestTlsResumption::aListenerHearsOfIt()
{
    LocalCloud cloud;
    TrafficLog log;
    PostMemory memory;
    memory.listener = &log;
    post(cloud, &memory, 2);
    QList<int> codes;
    for (const Traffic& traffic : log.all()) {
        if (traffic.kind == Traffic::answering)
            codes << traffic.code;
    }
    QCOMPARE(codes, (QList<int>{0, 1}));
}

void TestTlsResumption::eachClientHasItsOwn()
{
    LocalCloud cloud;
    property_.host = urlOf(cloud);
    for (int i = 0; i < 2; ++i) {
        TovikIot client(&property_);
        const LogRecorder log;
        QCOMPARE(logIn(&client, 2), QByteArray("++"));
    }
    QCOMPARE(handshakes(cloud), QByteArray("frfr"));
}

void TestTlsResumption::faults_data()
{
    QTest::addColumn<QByteArray>("tls");
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<QByteArray>("results");
    QTest::addColumn<QByteArray>("handshakes");
    const auto rows = [](const char* title, const char* fault, const char* results,
                         const char* handshakes) {
        for (const char* tls : {"1.2", "1.3"}) {
            QTest::newRow((QByteArray(title) + ", TLS " + tls).constData())
                << QByteArray(tls) << QByteArray(fault) << QByteArray(results)
                << QByteArray(handshakes);
        }
    };
    rows("forgets its tickets", "tickets-lost:after=3", "++++++", "frrfrr");
    rows("offers no sessions", "no-tickets", "++++++", "ffffff");
    rows("offers no sessions any more", "no-tickets:after=3", "++++++", "frrfff");
    rows("closes every resumption", "resume-close", "+-++++", "fffff");
    rows("closes them from now on", "resume-close:after=2", "+++-++", "frrff");
    rows("shows another certificate", "wrong-host:after=3,count=1", "++++++", "frrfrr");
    rows("shows an expired certificate", "expired:after=3", "++++++", "frrfff");
    QTest::newRow("resets every resumption, TLS 1.2")
        << QByteArray("1.2") << QByteArray("resume-reset") << QByteArray("+-++++")
        << QByteArray("fffff");
    // Qt has no session any more when it tries the lost connection again.
    QTest::newRow("resets every resumption, TLS 1.3")
        << QByteArray("1.3") << QByteArray("resume-reset") << QByteArray("++++++")
        << QByteArray("ffffff");
    QTest::newRow("from TLS 1.3 to 1.2 and back")
        << QByteArray() << QByteArray("tls-version:version=1.2,after=2,count=2")
        << QByteArray("++++++") << QByteArray("frfrfr");
    QTest::newRow("from TLS 1.2 to 1.3 and back")
        << QByteArray("1.2") << QByteArray("tls-version:version=1.3,after=2,count=2")
        << QByteArray("++++++") << QByteArray("frfrfr");
}

void TestTlsResumption::faults()
{
    QFETCH(QByteArray, tls);
    QFETCH(QByteArray, fault);
    LocalCloud cloud(tls.toStdString());
    cloud.addFault(fault.toStdString());
    property_.host = urlOf(cloud);
    TovikIot client(&property_);
    const LogRecorder log;
    QTEST(logIn(&client, 6), "results");
    QTEST(handshakes(cloud), "handshakes");
}

void TestTlsResumption::aFailureIsAFailureLikeAnyOther()
{
    LocalCloud cloud;
    cloud.addFault("resume-close");
    property_.host = urlOf(cloud);
    TovikIot client(&property_);
    LogRecorder log;
    QCOMPARE(logIn(&client, 2), QByteArray("+-"));
    QCOMPARE(log.lines(),
             (QStringList{latin1("[TOVIK IoT] Post Request Error:  \"Connection closed\""),
                          latin1("[TOVIK IoT] Login Error: parsing JSON failed!")}));
}

void TestTlsResumption::aServiceThatRefusesIsTriedAfterAPause()
{
    const LogRecorder log;
    LocalCloud cloud;
    const int pause = longPause(cloud);
    cloud.addFault("resume-close");
    PostMemory memory;
    memory.session = TlsSession(pause);
    QCOMPARE(post(cloud, &memory, 4), QByteArray("+-++"));
    QTest::qWait(pause);
    QCOMPARE(post(cloud, &memory, 4), QByteArray("+-++"));
    QTest::qWait(pause); // twice as long by now
    QCOMPARE(post(cloud, &memory, 2), QByteArray("++"));
    QTest::qWait(pause);
    QCOMPARE(post(cloud, &memory, 3), QByteArray("+-+"));
}

void TestTlsResumption::aSuccessEndsThePauses()
{
    const LogRecorder log;
    LocalCloud cloud;
    const int pause = longPause(cloud);
    const int fault = cloud.addFault("resume-close");
    PostMemory memory;
    memory.session = TlsSession(pause);
    QCOMPARE(post(cloud, &memory, 2), QByteArray("+-"));
    QVERIFY(cloud.applied(fault) > 0);
    cloud.clearFaults();
    QTest::qWait(pause);
    QCOMPARE(post(cloud, &memory, 3), QByteArray("+++"));
    QCOMPARE(handshakes(cloud).right(2), QByteArray("rr"));
}

void TestTlsResumption::anotherServiceIsNotOfferedTheSession()
{
    LocalCloud one;
    LocalCloud other;
    const int fault = other.addFault("resume-close");
    PostMemory memory;
    const LogRecorder log;
    QCOMPARE(post(one, &memory, 2), QByteArray("++"));
    QCOMPARE(post(other, &memory, 1), QByteArray("+"));
    QCOMPARE(post(one, &memory, 1), QByteArray("+"));
    QCOMPARE(other.applied(fault), 0);
    QCOMPARE(handshakes(one), QByteArray("frf"));
}

void TestTlsResumption::outagesAndErrorsKeepTheSession_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::newRow("the port is closed") << QByteArray("refuse");
    QTest::newRow("an HTTP error") << QByteArray("http500-empty:path=login,count=1");
    QTest::newRow("half an answer") << QByteArray("truncated:count=1");
}

void TestTlsResumption::outagesAndErrorsKeepTheSession()
{
    QFETCH(QByteArray, fault);
    LocalCloud cloud;
    property_.host = urlOf(cloud);
    TovikIot client(&property_);
    const LogRecorder log;
    QCOMPARE(logIn(&client, 2), QByteArray("++"));
    cloud.addFault(fault.toStdString());
    QCOMPARE(logIn(&client, 1), QByteArray("-"));
    cloud.clearFaults();
    QCOMPARE(logIn(&client, 1), QByteArray("+"));
    QCOMPARE(handshakes(cloud).right(1), QByteArray("r"));
}

QTEST_GUILESS_MAIN(TestTlsResumption)
#include "tst_tls_resumption.moc"
