#include "cloud/tovik_iot.h"
#include "tests/support/log_recorder.h"
#include "tests/support/scripted_service.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <memory>

namespace {

const char success[] = "{\"errorcode\":0}";
const char done_line[] = "[TOVIK IoT] Write value done!";

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

QList<QByteArray> bodiesOf(int count)
{
    QList<QByteArray> bodies;
    for (int i = 0; i < count; ++i)
        bodies.append("{\"dataitem_id\":\"A\",\"token\":\"T\",\"value\":" + QByteArray::number(i) +
                      "}");
    return bodies;
}

bool isWrite(const ScriptedRequest& request)
{
    return request.path.endsWith("setValue");
}

} // namespace

/// Many writes at once: what the service gets, in which order, and what happens meanwhile. The
/// client is in a thread of its own, as with a driver; its timers stand still.
class TestTovikIotWrites : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void burst_data();
    void burst();
    void nextGoesWhenTheOneBeforeIsAnswered();
    void failuresKeepNothingBack();
    void failingWritesDoNotPutReconnectingOff();
    void failingWritesMakeNoSecondAttempt();
    void burstInsideACycle();
    void cycleInsideAWriteHoldsUpNoWrite();
    void silenceHoldsUpTheNextForASecondOnly();
    void writesThatWaitedCarryTheTokenOfNow();
    void closingDropsWhatWaits();

private:
    void makeClient(int patience);
    void endClient();
    void call(const char* slot);
    void write(int value);
    void loseConnections();
    QList<QByteArray> writes() const;

    std::unique_ptr<ScriptedService> service_;
    PropertyTovikIot property_;
    std::unique_ptr<QThread> thread_;
    std::unique_ptr<TovikIot> client_;
    std::unique_ptr<LogRecorder> log_;
};

void TestTovikIotWrites::init()
{
    service_.reset(new ScriptedService);
    property_ = PropertyTovikIot();
    property_.host = service_->url();
    log_.reset(new LogRecorder);
    // A service in this thread, on a loaded machine, may be silent for longer than a second.
    makeClient(3600 * 1000);
}

/// A client that has connected, in a thread of its own.
void TestTovikIotWrites::makeClient(int patience)
{
    property_.dataitems.clear();
    client_.reset(new TovikIot(&property_, nullptr, patience));
    thread_.reset(new QThread);
    client_->moveToThread(thread_.get());
    thread_->start();
    service_->queue("{\"errorcode\":0,\"token\":\"T\"}");
    service_->queue("{\"errorcode\":0,\"Number\":0,\"groups\":[]}");
    call("SlotInitialLater");
    QTRY_VERIFY(log_->contains("[TOVIK IoT] Start Monitor ..."));
    // That line comes before the number of items is asked: runs only when the slot has ended.
    QMetaObject::invokeMethod(client_.get(), "SlotReconnect", Qt::BlockingQueuedConnection);
    // Without an item there has been nothing to start a timer for.
    PropertyTovikIotDataItem item;
    item.name = latin1("a");
    item.dataitem_id = latin1("A");
    item.type = latin1("32Bit-INT");
    property_.dataitems.append(item);
    service_->reset();
    log_->take();
}

void TestTovikIotWrites::endClient()
{
    thread_->quit();
    QVERIFY(thread_->wait(10000));
    client_.reset();
    thread_.reset();
}

void TestTovikIotWrites::cleanup()
{
    endClient();
    log_.reset();
    service_.reset();
}

void TestTovikIotWrites::call(const char* slot)
{
    QMetaObject::invokeMethod(client_.get(), slot, Qt::QueuedConnection);
}

/// As the driver emits it.
void TestTovikIotWrites::write(int value)
{
    QMetaObject::invokeMethod(client_.get(), "SlotWriteValue", Qt::QueuedConnection, Q_ARG(int, 0),
                              Q_ARG(QVariant, QVariant(value)));
}

void TestTovikIotWrites::loseConnections()
{
    for (QTcpSocket* socket : service_->findChildren<QTcpSocket*>())
        socket->abort();
}

QList<QByteArray> TestTovikIotWrites::writes() const
{
    QList<QByteArray> bodies;
    for (const ScriptedRequest& request : service_->requests()) {
        if (isWrite(request))
            bodies.append(request.body);
    }
    return bodies;
}

void TestTovikIotWrites::burst_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("1") << 1;
    QTest::newRow("2") << 2;
    QTest::newRow("10") << 10;
    QTest::newRow("100") << 100;
}

/// Were they all on their way at once, they would arrive in any order, and the value that was
/// written last need not be the one that stays.
void TestTovikIotWrites::burst()
{
    QFETCH(int, count);
    int most_connections = 0;
    service_->setHandler([&](const ScriptedRequest&) {
        const int now = service_->findChildren<QTcpSocket*>().size();
        most_connections = qMax(most_connections, now);
        return ScriptedReply::json(success);
    });
    for (int i = 0; i < count; ++i)
        write(i);
    QTRY_COMPARE_WITH_TIMEOUT(log_->count(done_line), count, 50000);
    QCOMPARE(writes(), bodiesOf(count));
    QCOMPARE(log_->take().size(), count);
    // One that is there, and some that go.
    QVERIFY2(most_connections <= 5, qPrintable(QString::number(most_connections)));
}

void TestTovikIotWrites::nextGoesWhenTheOneBeforeIsAnswered()
{
    QByteArray held;
    service_->setHandler([&](const ScriptedRequest& request) {
        held = request.body;
        return ScriptedReply::hang();
    });
    write(0);
    write(1);
    QTRY_COMPARE(writes().size(), 1);
    // The connection of a read is made after that of a second write, if there were one.
    call("SlotMonitorTimeOut");
    QTRY_COMPARE(service_->requests().size(), 2);
    QCOMPARE(writes(), bodiesOf(1));
    service_->setHandler([](const ScriptedRequest&) { return ScriptedReply::json(success); });
    // What was lost without an answer, Qt's network layer posts again.
    loseConnections();
    QTRY_COMPARE(log_->count(done_line), 2);
    QCOMPARE(writes(), bodiesOf(1) + bodiesOf(2));
}

/// Every write is treated as if it had come alone, and nothing looks whether there is a connection.
void TestTovikIotWrites::failuresKeepNothingBack()
{
    // No attempt is to come in between.
    client_->SetDrvErrHandle(1, 3600, 0, true, false);
    QSignalSpy results(client_.get(), SIGNAL(EmitUpdateErrCode(int)));
    for (const char* reply : {"{\"errorcode\":9}", success, "no JSON"})
        service_->queue(reply);
    for (int i = 0; i < 3; ++i)
        write(i);
    QTRY_COMPARE(log_->count("[TOVIK IoT] Reconnect by timer: 3600000 ms"), 2);
    QCOMPARE(results.size(), 2);
    QCOMPARE(results.at(0).first().toInt(), 9);
    QCOMPARE(results.at(1).first().toInt(), 256);
    QCOMPARE(writes(), bodiesOf(3));
    const QStringList failure{latin1("[TOVIK IoT] Write value fail!"),
                              latin1("[TOVIK IoT] Disconnecting to Cloud ..."),
                              latin1("[TOVIK IoT] Error handle type:  1"),
                              latin1("[TOVIK IoT] Reconnect by timer: 3600000 ms")};
    QStringList lines{latin1("[TOVIK IoT] SetDataitemValue Error:  9")};
    lines << failure << latin1(done_line)
          << latin1("[TOVIK IoT] WriteDataitemValue Error: parsing JSON failed!") << failure;
    QCOMPARE(log_->take(), lines);
}

/// A host that writes twice a second, and a service that has forgotten the token.
void TestTovikIotWrites::failingWritesDoNotPutReconnectingOff()
{
    service_->setHandler(
        [](const ScriptedRequest&) { return ScriptedReply::json("{\"errorcode\":4}"); });
    QTimer host;
    connect(&host, &QTimer::timeout, this, [this] { write(0); });
    host.start(500);
    // Were the wait to begin anew with each write, none would ever come.
    QTRY_VERIFY_WITH_TIMEOUT(log_->count("[TOVIK IoT] Try Reconnect ... ") >= 4, 50000);
}

/// While the service takes its time with an attempt, the writes of the host fail.
void TestTovikIotWrites::failingWritesMakeNoSecondAttempt()
{
    service_->setHandler([](const ScriptedRequest& request) {
        return isWrite(request) ? ScriptedReply::json("{\"errorcode\":4}") : ScriptedReply::hang();
    });
    write(0);
    QTRY_VERIFY(service_->paths().contains("/qlix_api/auth/login"));
    write(1);
    QTRY_COMPARE(log_->count("[TOVIK IoT] Write value fail!"), 2);
    QTest::qWait(1500); // longer than the reconnect interval: nothing is to come
    QCOMPARE(log_->count("[TOVIK IoT] Try Reconnect ... "), 1);
}

/// Each write of a burst would hold up the cycle by its whole time, if the cycle had to wait for
/// it.
void TestTovikIotWrites::burstInsideACycle()
{
    QSignalSpy cycles(client_.get(), SIGNAL(EmitGetMonitor(QList<MonitorDataItem>)));
    service_->setHandler([&](const ScriptedRequest& request) {
        if (!isWrite(request))
            return ScriptedReply::hang();
        // The second write hangs; by then the first has been answered.
        return writes().size() == 1 ? ScriptedReply::json(success) : ScriptedReply::hang();
    });
    call("SlotMonitorTimeOut");
    QTRY_COMPARE(service_->requests().size(), 1);
    QTcpSocket* const reading = service_->findChildren<QTcpSocket*>().first();
    write(0);
    write(1);
    QTRY_COMPARE(writes().size(), 2);
    reading->write(ScriptedReply::json("{\"errorcode\":0,\"value\":7}").bytes);
    reading->disconnectFromHost();
    QTRY_COMPARE(cycles.size(), 1);
    QCOMPARE(writes(), bodiesOf(2));
}

/// A cycle that has begun while a write was waited for keeps that write's slot from returning, for
/// as long as it takes; its result is processed and the other writes go on.
void TestTovikIotWrites::cycleInsideAWriteHoldsUpNoWrite()
{
    QTcpSocket* writing = nullptr;
    service_->setHandler([&](const ScriptedRequest& request) {
        if (!writing)
            writing = service_->findChildren<QTcpSocket*>().first();
        return writes().size() == 1 || !isWrite(request) ? ScriptedReply::hang()
                                                         : ScriptedReply::json(success);
    });
    write(0);
    QTRY_COMPARE(writes().size(), 1);
    call("SlotMonitorTimeOut");
    QTRY_COMPARE(service_->requests().size(), 2);
    write(1);
    write(2);
    writing->write(ScriptedReply::json(success).bytes);
    writing->disconnectFromHost();
    QTRY_COMPARE(log_->count(done_line), 3);
    QCOMPARE(writes(), bodiesOf(3));
}

void TestTovikIotWrites::silenceHoldsUpTheNextForASecondOnly()
{
    endClient();
    makeClient(WriteQueue::usual_patience);
    service_->queue(ScriptedReply::hang());
    QElapsedTimer timer;
    timer.start();
    write(0);
    write(1);
    write(2);
    QTRY_COMPARE_WITH_TIMEOUT(log_->count(done_line), 2, 50000);
    QVERIFY2(timer.elapsed() >= 900, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(writes(), bodiesOf(3));
}

void TestTovikIotWrites::writesThatWaitedCarryTheTokenOfNow()
{
    QTcpSocket* writing = nullptr;
    service_->setHandler([&](const ScriptedRequest& request) {
        if (request.path.endsWith("login"))
            return ScriptedReply::json("{\"errorcode\":0,\"token\":\"new\"}");
        if (request.path.endsWith("list"))
            return ScriptedReply::json("{\"errorcode\":0,\"Number\":0,\"groups\":[]}");
        if (writing)
            return ScriptedReply::json(success);
        writing = service_->findChildren<QTcpSocket*>().first();
        return ScriptedReply::hang();
    });
    client_->Disconnect2Cloud();
    write(0);
    write(1);
    QTRY_VERIFY(writing);
    call("SlotReconnect");
    QTRY_VERIFY(log_->contains("[TOVIK IoT] Start Monitor ..."));
    writing->write(ScriptedReply::json(success).bytes);
    writing->disconnectFromHost();
    QTRY_COMPARE(writes().size(), 2);
    QVERIFY(writes().last().contains("\"token\":\"new\""));
}

/// A client that is told to end asks the service for nothing more, however much waits.
void TestTovikIotWrites::closingDropsWhatWaits()
{
    service_->setHandler([](const ScriptedRequest&) { return ScriptedReply::hang(); });
    for (int i = 0; i < 5000; ++i)
        write(i);
    QTRY_COMPARE(writes().size(), 1);
    thread_->quit();
    QVERIFY(thread_->wait(10000));
    // A write to a client that has ended.
    write(5000);
    // A post would have told of its failure; the only one is the one that was on its way.
    QTest::qWait(50);
    QCOMPARE(writes(), bodiesOf(1));
    QCOMPARE(log_->count("[TOVIK IoT] Write value fail!"), 1);
}

QTEST_GUILESS_MAIN(TestTovikIotWrites)
#include "tst_tovik_iot_writes.moc"
