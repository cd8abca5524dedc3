#include "cloud/tovik_iot.h"
#include "tests/support/log_recorder.h"
#include "tests/support/scripted_service.h"

#include <QPointer>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <stdexcept>

namespace {

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

QStringList lines(std::initializer_list<const char*> texts)
{
    QStringList list;
    for (const char* text : texts)
        list.append(latin1(text));
    return list;
}

const char no_groups[] = "{\"errorcode\":0,\"Number\":0,\"groups\":[]}";
const char token_reply[] = "{\"errorcode\":0,\"token\":\"T1\"}";

} // namespace

/// Login, the first connect, reconnecting by the error-handling settings, and disconnecting.
class TestTovikIotConnection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void loginRequest();
    void loginReplies_data();
    void loginReplies();
    void failedLoginKeepsTheToken();
    void emptyTokenReplacesTheToken();
    void failureOfAClientThatWasNeverStarted();
    void connectsByLoginAndCatalogue();
    void connectFailsWithTheLogin();
    void firstConnectSucceeds();
    void firstConnectFails();
    void reconnectPolicy_data();
    void reconnectPolicy();
    void negativeReturnTimeNeverReconnects();
    void runningReconnectTimerIsNotRestarted();
    void reconnectWithoutTimer();
    void reconnectWhileConnected();
    void reconnectSucceeds();
    void reconnectFails();
    void disconnect();
    void disconnectFromAnotherThread();
    void everyMonitorStartMakesAFreshTimer();
    void theLatestHundredMonitorTimersStay();
    void aFailedWriteDisconnectsInFull_data();
    void aFailedWriteDisconnectsInFull();
    void aFailureTakesTheSettingsOfNow();
    void onlyTimersAreBelowTheClient();
    void noMoreThanTwoAttemptsOverlap();
    void attemptsThatRaiseDoNotCount();
    void anOverlapLeavesOneMonitor();

private:
    QTimer* timerCalling(const char* slot) const;
    void serveOneItem();
    void answerConnect();
    void answerLoginsThatOverlap(QTimer* look, const char* reply);

    QScopedPointer<ScriptedService> service_;
    PropertyTovikIot property_;
    QScopedPointer<TovikIot> client_;
    QScopedPointer<LogRecorder> log_;
};

void TestTovikIotConnection::init()
{
    service_.reset(new ScriptedService);
    property_ = PropertyTovikIot();
    property_.host = service_->url();
    property_.project = latin1("Plant");
    property_.email = latin1("op@example.org");
    property_.password = latin1("s3cret/\"x");
    log_.reset(new LogRecorder);
    client_.reset(new TovikIot(&property_));
    log_->take();
}

void TestTovikIotConnection::cleanup()
{
    client_.reset();
    log_.reset();
    service_.reset();
}

/// The client's timers in order of their making: the reconnect timer first, once it has started up.
QTimer* TestTovikIotConnection::timerCalling(const char* slot) const
{
    const QList<QTimer*> timers = client_->findChildren<QTimer*>();
    if (timers.isEmpty())
        return nullptr;
    return QByteArray(slot) == "SlotReconnect" ? timers.first() : timers.last();
}

void TestTovikIotConnection::serveOneItem()
{
    PropertyTovikIotDataItem item;
    item.name = latin1("Temp");
    item.dataitem_id = latin1("X");
    property_.dataitems.append(item);
}

void TestTovikIotConnection::answerConnect()
{
    service_->queue(token_reply);
    service_->queue(no_groups);
}

void TestTovikIotConnection::loginRequest()
{
    service_->queue(token_reply);
    QCOMPARE(client_->Login(latin1("P\xE9"), QString(QChar(0x20AC)), property_.password), 0);
    QCOMPARE(service_->paths(), QList<QByteArray>{"/qlix_api/auth/login"});
    const QByteArray expected =
        latin1("{\"email\":\"?\",\"password\":\"s3cret\\/\\\"x\",\"project\":\"P\xE9\"}")
            .toLocal8Bit();
    QCOMPARE(service_->bodies(), QList<QByteArray>{expected});
}

void TestTovikIotConnection::loginReplies_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<int>("result");
    QTest::addColumn<QStringList>("log");
    auto row = [](const char* name, const char* reply, int result, const QStringList& log) {
        QTest::newRow(name) << QByteArray(reply) << result << log;
    };
    row("success", token_reply, 0, {});
    row("not JSON", "<html>", 256, lines({"[TOVIK IoT] Login Error: parsing JSON failed!"}));
    row("no errorcode", "{}", 256, lines({"[TOVIK IoT] Login Error: no errorcode!"}));
    row("text errorcode", "{\"errorcode\":\"0\"}", 256,
        lines({"[TOVIK IoT] Login Error: errorcode invalid!"}));
    row("refused by the service", "{\"errorcode\":15,\"token\":\"T\"}", 15,
        lines({"[TOVIK IoT] Login Error:  15"}));
    row("no token", "{\"errorcode\":0}", 256, lines({"[TOVIK IoT] Login Error: no token!"}));
    row("null token", "{\"errorcode\":0,\"token\":null}", 256,
        lines({"[TOVIK IoT] Login Error: no token!"}));
    row("number for a token", "{\"errorcode\":0,\"token\":5}", 256,
        lines({"[TOVIK IoT] Login Error: token invalid!"}));
    row("empty token fails silently", "{\"errorcode\":0,\"token\":\"\"}", 256, {});
}

void TestTovikIotConnection::loginReplies()
{
    QFETCH(QByteArray, reply);
    QFETCH(int, result);
    QFETCH(QStringList, log);
    service_->queue(reply);
    QCOMPARE(client_->Login(property_.project, property_.email, property_.password), result);
    QCOMPARE(log_->take(), log);
}

void TestTovikIotConnection::failedLoginKeepsTheToken()
{
    serveOneItem();
    service_->queue(token_reply);
    client_->Login(QString(), QString(), QString());
    service_->queue("{\"errorcode\":0,\"token\":5}");
    client_->Login(QString(), QString(), QString());
    service_->reset();
    client_->SlotWriteValue(0, 1);
    QVERIFY(service_->bodies().first().contains("\"token\":\"T1\""));
}

void TestTovikIotConnection::emptyTokenReplacesTheToken()
{
    serveOneItem();
    service_->queue(token_reply);
    client_->Login(QString(), QString(), QString());
    service_->queue("{\"errorcode\":0,\"token\":\"\"}");
    client_->Login(QString(), QString(), QString());
    service_->reset();
    client_->SlotWriteValue(0, 1);
    QVERIFY(service_->bodies().first().contains("\"token\":\"\""));
}

/// Its reconnect timer is made by its start, so there is none to wait for.
void TestTovikIotConnection::failureOfAClientThatWasNeverStarted()
{
    serveOneItem();
    service_->queue("{\"errorcode\":8}");
    QSignalSpy results(client_.get(), SIGNAL(EmitUpdateErrCode(int)));
    client_->SlotWriteValue(0, 1);
    QCOMPARE(results, (QList<QList<QVariant>>{{8}}));
    QVERIFY(client_->findChildren<QTimer*>().isEmpty());
}

void TestTovikIotConnection::connectsByLoginAndCatalogue()
{
    answerConnect();
    QCOMPARE(client_->Connect2Cloud(), 0);
    QCOMPARE(service_->paths(),
             (QList<QByteArray>{"/qlix_api/auth/login", "/qlix_api/imonitor/group/list"}));
    QCOMPARE(service_->bodies().last(), QByteArray("{\"token\":\"T1\"}"));
    QCOMPARE(log_->take(),
             lines({"[TOVIK IoT] Connecting to Cloud ... ", "[TOVIK IoT] Warning: no group!"}));
}

void TestTovikIotConnection::connectFailsWithTheLogin()
{
    service_->queue("{\"errorcode\":8}");
    QCOMPARE(client_->Connect2Cloud(), 8);
    QCOMPARE(service_->requests().size(), 1);
}

void TestTovikIotConnection::firstConnectSucceeds()
{
    serveOneItem();
    answerConnect();
    QSignalSpy results(client_.data(), SIGNAL(EmitUpdateErrCode(int)));
    client_->SlotInitialLater();
    QCOMPARE(log_->take(),
             lines({"[TOVIK IoT] Initializing ... ", "[TOVIK IoT] Connecting to Cloud ... ",
                    "[TOVIK IoT] Warning: no group!", "[TOVIK IoT] Connected to Cloud Success!",
                    "[TOVIK IoT] Start Monitor ..."}));
    QCOMPARE(results.size(), 0);
    const QList<QTimer*> timers = client_->findChildren<QTimer*>();
    QCOMPARE(timers.size(), 2);
    QVERIFY(!timers.first()->isActive());
    QVERIFY(timers.last()->isActive());
    QCOMPARE(timers.last()->interval(), 1000);
    QVERIFY(!timers.last()->isSingleShot());
}

void TestTovikIotConnection::firstConnectFails()
{
    service_->queue("{\"errorcode\":7}");
    QSignalSpy results(client_.data(), SIGNAL(EmitUpdateErrCode(int)));
    client_->SlotInitialLater();
    QCOMPARE(
        log_->take(),
        lines({"[TOVIK IoT] Initializing ... ", "[TOVIK IoT] Connecting to Cloud ... ",
               "[TOVIK IoT] Login Error:  7", "[TOVIK IoT] Connected to Cloud Fail!",
               "[TOVIK IoT] Error handle type:  1", "[TOVIK IoT] Reconnect by timer: 1000 ms"}));
    QCOMPARE(results.size(), 1);
    QCOMPARE(results.first().first().toInt(), 7);
    QVERIFY(timerCalling("SlotReconnect")->isActive());
}

void TestTovikIotConnection::reconnectPolicy_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("return_time");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<int>("interval"); // -1: never
    QTest::newRow("type 0 every second") << 0 << 5 << true << 1000;
    QTest::newRow("type 0 whatever is enabled") << 0 << 5 << false << 1000;
    QTest::newRow("type 1 by its return time") << 1 << 5 << true << 5000;
    QTest::newRow("type 1 at once for a return time of 0") << 1 << 0 << true << 0;
    QTest::newRow("type 1 not without return time") << 1 << 5 << false << -1;
    QTest::newRow("type 1 with a return time beyond the timer")
        << 1 << 2147484 << true << 2147483647;
    QTest::newRow("type 2 every second") << 2 << 5 << true << 1000;
    QTest::newRow("type 3 never") << 3 << 5 << true << -1;
    QTest::newRow("type -1 never") << -1 << 5 << true << -1;
    QTest::newRow("type 4 never") << 4 << 5 << true << -1;
}

void TestTovikIotConnection::reconnectPolicy()
{
    QFETCH(int, type);
    QFETCH(int, return_time);
    QFETCH(bool, enabled);
    QFETCH(int, interval);
    client_->SetDrvErrHandle(type, return_time, 2, enabled, true);
    QVERIFY(log_->take().isEmpty());
    service_->queue("{\"errorcode\":7}");
    client_->SlotInitialLater();
    QStringList log = log_->take();
    const QString kind = latin1("[TOVIK IoT] Error handle type:  %1").arg(type);
    QTimer* timer = timerCalling("SlotReconnect");
    QCOMPARE(timer->isActive(), interval >= 0);
    if (interval < 0) {
        QCOMPARE(log.last(), kind);
        return;
    }
    QCOMPARE(timer->interval(), interval);
    QVERIFY(!timer->isSingleShot());
    QCOMPARE(log.takeLast(), latin1("[TOVIK IoT] Reconnect by timer: %1 ms").arg(interval));
    QCOMPARE(log.last(), kind);
}

void TestTovikIotConnection::negativeReturnTimeNeverReconnects()
{
    client_->SetDrvErrHandle(1, -5, 2, true, true);
    service_->queue("{\"errorcode\":7}");
    client_->SlotInitialLater();
    QVERIFY(log_->contains("[TOVIK IoT] Reconnect by timer: -5000 ms"));
    QVERIFY(log_->contains("QObject::startTimer: Timers cannot have negative intervals"));
    QCOMPARE(timerCalling("SlotReconnect")->timerId(), 0);
}

void TestTovikIotConnection::runningReconnectTimerIsNotRestarted()
{
    service_->queue("{\"errorcode\":7}");
    client_->SlotInitialLater();
    QTimer* timer = timerCalling("SlotReconnect");
    const int id = timer->timerId();
    client_->StartReconnect();
    QCOMPARE(timer->timerId(), id);
}

void TestTovikIotConnection::reconnectWithoutTimer()
{
    client_->StartReconnect();
    QCOMPARE(log_->take(), lines({"[TOVIK IoT] Error handle type:  1",
                                  "[TOVIK IoT] Reconnect by timer: 1000 ms"}));
    QVERIFY(client_->findChildren<QTimer*>().isEmpty());
}

void TestTovikIotConnection::reconnectWhileConnected()
{
    answerConnect();
    client_->SlotInitialLater();
    client_->StartReconnect();
    QVERIFY(timerCalling("SlotReconnect")->isActive());
    const int before = service_->requests().size();
    log_->take();
    client_->SlotReconnect();
    QVERIFY(!timerCalling("SlotReconnect")->isActive());
    QCOMPARE(service_->requests().size(), before);
    QCOMPARE(log_->take(), lines({"[TOVIK IoT] Already connected. Stop reconnect!"}));
}

void TestTovikIotConnection::reconnectSucceeds()
{
    serveOneItem();
    service_->queue("{\"errorcode\":7}");
    client_->SlotInitialLater();
    log_->take();
    QSignalSpy results(client_.data(), SIGNAL(EmitUpdateErrCode(int)));
    answerConnect();
    client_->SlotReconnect();
    QCOMPARE(log_->take(),
             lines({"[TOVIK IoT] Try Reconnect ... ", "[TOVIK IoT] Connecting to Cloud ... ",
                    "[TOVIK IoT] Warning: no group!", "[TOVIK IoT] Start Monitor ..."}));
    QCOMPARE(results.size(), 1);
    QCOMPARE(results.first().first().toInt(), 0);
    QVERIFY(!timerCalling("SlotReconnect")->isActive());
    QVERIFY(timerCalling("SlotMonitorTimeOut")->isActive());
}

void TestTovikIotConnection::reconnectFails()
{
    service_->queue("{\"errorcode\":7}");
    client_->SlotInitialLater();
    log_->take();
    QSignalSpy results(client_.data(), SIGNAL(EmitUpdateErrCode(int)));
    service_->queue("nonsense");
    client_->SlotReconnect();
    QCOMPARE(log_->take(),
             lines({"[TOVIK IoT] Try Reconnect ... ", "[TOVIK IoT] Connecting to Cloud ... ",
                    "[TOVIK IoT] Login Error: parsing JSON failed!"}));
    QCOMPARE(results.size(), 1);
    QCOMPARE(results.first().first().toInt(), 256);
    QVERIFY(timerCalling("SlotReconnect")->isActive());
}

void TestTovikIotConnection::disconnect()
{
    serveOneItem();
    answerConnect();
    client_->SlotInitialLater();
    client_->StartReconnect();
    const int before = service_->requests().size();
    log_->take();
    client_->Disconnect2Cloud();
    QCOMPARE(log_->take(), lines({"[TOVIK IoT] Disconnecting to Cloud ..."}));
    for (const QTimer* timer : client_->findChildren<QTimer*>())
        QVERIFY(!timer->isActive());
    QCOMPARE(service_->requests().size(), before);
    // The token is kept: a write still carries it.
    client_->SlotWriteValue(0, 1);
    QVERIFY(service_->bodies().last().contains("\"token\":\"T1\""));
}

void TestTovikIotConnection::disconnectFromAnotherThread()
{
    serveOneItem();
    answerConnect();
    client_->SlotInitialLater();
    log_->take();
    QThread thread;
    connect(
        &thread, &QThread::started, &thread,
        [&] {
            client_->Disconnect2Cloud();
            thread.quit();
        },
        Qt::DirectConnection);
    thread.start();
    QVERIFY(thread.wait(5000));
    QTRY_VERIFY(!timerCalling("SlotMonitorTimeOut")->isActive());
    // In particular no complaint of Qt's about timers of another thread.
    QCOMPARE(log_->take(), lines({"[TOVIK IoT] Disconnecting to Cloud ..."}));
}

void TestTovikIotConnection::everyMonitorStartMakesAFreshTimer()
{
    serveOneItem();
    client_->StartMonitor();
    QTimer* first = timerCalling("SlotMonitorTimeOut");
    client_->Disconnect2Cloud();
    client_->StartMonitor();
    QTimer* second = timerCalling("SlotMonitorTimeOut");
    QVERIFY(first != second);
    QVERIFY(!first->isActive());
    QVERIFY(second->isActive());
    QCOMPARE(client_->findChildren<QTimer*>().size(), 2);
}

/// A client whose connection fails in every cycle makes one a second, for years.
void TestTovikIotConnection::theLatestHundredMonitorTimersStay()
{
    serveOneItem();
    client_->SlotInitialLater();
    client_->SetDrvErrHandle(4, 0, 0, false, false);
    QList<QTimer*> monitors;
    for (int i = 0; i < 1000; ++i) {
        client_->StartMonitor();
        monitors = client_->findChildren<QTimer*>().mid(1);
        QCOMPARE(monitors.size(), qMin(i + 1, 101));
        QVERIFY(monitors.last()->isActive());
    }
    for (int i = 0; i < 100; ++i)
        QVERIFY(!monitors.at(i)->isActive());
    QPointer<QTimer> oldest(monitors.first());
    client_->StartMonitor();
    QTRY_VERIFY(!oldest);
}

void TestTovikIotConnection::aFailedWriteDisconnectsInFull_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("is_wanted");
    QTest::newRow("reconnecting by timer") << 0 << true;
    QTest::newRow("reconnecting by the host's reads") << 3 << false;
    QTest::newRow("no reconnecting") << 4 << false;
}

/// The timer runs when the write fails, as after a failed connect.
void TestTovikIotConnection::aFailedWriteDisconnectsInFull()
{
    QFETCH(int, type);
    QFETCH(bool, is_wanted);
    serveOneItem();
    service_->queue("{\"errorcode\":7}");
    client_->SlotInitialLater();
    QTimer* const timer = timerCalling("SlotReconnect");
    QVERIFY(timer->isActive());
    client_->SetDrvErrHandle(type, 5, 0, false, false);
    bool was_active = true;
    connect(client_.data(), &TovikIot::EmitUpdateErrCode, this,
            [&] { was_active = timer->isActive(); });
    service_->queue("{\"errorcode\":7}");
    client_->SlotWriteValue(0, 1);
    QVERIFY(!was_active);
    QCOMPARE(timer->isActive(), is_wanted);
}

/// Settings that came while the timer ran: what the log says is what runs.
void TestTovikIotConnection::aFailureTakesTheSettingsOfNow()
{
    serveOneItem();
    service_->queue("{\"errorcode\":7}");
    client_->SlotInitialLater();
    client_->SetDrvErrHandle(1, 50, 0, true, false);
    log_->take();
    service_->queue("{\"errorcode\":7}");
    client_->SlotWriteValue(0, 1);
    QCOMPARE(log_->lines().last(), latin1("[TOVIK IoT] Reconnect by timer: 50000 ms"));
    QCOMPARE(timerCalling("SlotReconnect")->interval(), 50000);
    // What was waited for a second is not to be waited for again.
    QTRY_VERIFY_WITH_TIMEOUT(log_->contains("[TOVIK IoT] Try Reconnect ... "), 20000);
    QCOMPARE(timerCalling("SlotReconnect")->interval(), 50000);
}

/// After requests and writes, too.
void TestTovikIotConnection::onlyTimersAreBelowTheClient()
{
    serveOneItem();
    answerConnect();
    client_->SlotInitialLater();
    client_->SlotMonitorTimeOut();
    client_->SlotWriteValue(0, 1);
    for (const QObject* child : client_->findChildren<QObject*>())
        QVERIFY2(qobject_cast<const QTimer*>(child), child->metaObject()->className());
}

/// Lets logins hang until two have come, and answers them with \a reply then.
void TestTovikIotConnection::answerLoginsThatOverlap(QTimer* look, const char* reply)
{
    service_->setHandler([](const ScriptedRequest&) { return ScriptedReply::hang(); });
    connect(look, &QTimer::timeout, this, [this, look, reply] {
        if (service_->requests().size() < 2)
            return;
        look->stop();
        service_->setHandler([reply](const ScriptedRequest& request) {
            return ScriptedReply::json(request.path.endsWith("login") ? reply : no_groups);
        });
        for (QTcpSocket* socket : service_->findChildren<QTcpSocket*>()) {
            socket->write(ScriptedReply::json(reply).bytes);
            socket->disconnectFromHost();
        }
    });
    look->start(10);
}

/// A host whose reads ask for an attempt again and again, while the service hangs.
void TestTovikIotConnection::noMoreThanTwoAttemptsOverlap()
{
    QTimer look;
    answerLoginsThatOverlap(&look, "{\"errorcode\":7}");
    for (int i = 0; i < 10; ++i)
        QMetaObject::invokeMethod(client_.data(), "SlotReconnect", Qt::QueuedConnection);
    client_->SlotInitialLater();
    QCOMPARE(log_->count("[TOVIK IoT] Try Reconnect ... "), 1);
    QCOMPARE(service_->requests().size(), 2);
    client_->SlotReconnect();
    QCOMPARE(service_->requests().size(), 3);
}

void TestTovikIotConnection::attemptsThatRaiseDoNotCount()
{
    for (int i = 0; i < 3; ++i) {
        service_->queue("[]");
        QVERIFY_EXCEPTION_THROWN(client_->SlotReconnect(), std::runtime_error);
    }
}

void TestTovikIotConnection::anOverlapLeavesOneMonitor()
{
    serveOneItem();
    QTimer look;
    answerLoginsThatOverlap(&look, token_reply);
    QMetaObject::invokeMethod(client_.data(), "SlotReconnect", Qt::QueuedConnection);
    client_->SlotReconnect();
    QCOMPARE(log_->count("[TOVIK IoT] Start Monitor ..."), 2);
    const QList<QTimer*> timers = client_->findChildren<QTimer*>();
    QCOMPARE(timers.size(), 2);
    QVERIFY(!timers.first()->isActive());
    QVERIFY(timers.last()->isActive());
}

QTEST_GUILESS_MAIN(TestTovikIotConnection)
#include "tst_tovik_iot_connection.moc"
