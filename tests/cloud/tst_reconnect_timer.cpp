#include "cloud/reconnect_timer.h"
#include "tests/support/log_recorder.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <memory>

namespace {

const int endless = 3600 * 1000;

/// Counts those of the timer that it is a filter of.
class TimerEvents : public QObject
{
public:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        count += event->type() == QEvent::Timer ? 1 : 0;
        return QObject::eventFilter(watched, event);
    }

    int count = 0;
};

} // namespace

/// Starting anew without losing what has been waited.
class TestReconnectTimer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void repeats();
    void aShotThatIsBroughtForwardComesEarly();
    void theInterval_data();
    void theInterval();
    void aLaterMomentChangesNothing();
    void stoppedItIsNotBroughtForward();
    void startedAnewItComesInTime();
    void stopped_data();
    void stopped();
    void noShotInsideAShot();
    void whatComesInsideAShot_data();
    void whatComesInsideAShot();
    void aShotThatIsLeftOutCounts();
    void stopsWithItsThread();
};

void TestReconnectTimer::repeats()
{
    ReconnectTimer timer(nullptr);
    QSignalSpy shots(&timer, SIGNAL(timeout()));
    timer.start(20);
    QVERIFY(timer.remaining() <= 20);
    QTRY_VERIFY(shots.size() >= 3);
}

void TestReconnectTimer::aShotThatIsBroughtForwardComesEarly()
{
    ReconnectTimer timer(nullptr);
    QSignalSpy shots(&timer, SIGNAL(timeout()));
    timer.start(endless);
    QVERIFY(timer.remaining() > endless / 2);
    timer.bringForward(20);
    QVERIFY(timer.remaining() <= 20);
    QTRY_COMPARE(shots.size(), 1);
    // The next one comes after a whole interval again.
    QVERIFY(timer.isActive());
    QVERIFY(timer.remaining() > endless / 2);
}

void TestReconnectTimer::theInterval_data()
{
    QTest::addColumn<int>("interval");
    QTest::newRow("of no time") << 0;
    QTest::newRow("below zero, which never shoots") << -5000;
}

void TestReconnectTimer::theInterval()
{
    QFETCH(int, interval);
    LogRecorder log; // Qt complains of an interval below zero
    ReconnectTimer timer(nullptr);
    QSignalSpy shots(&timer, SIGNAL(timeout()));
    timer.start(interval);
    QCOMPARE(timer.interval(), interval);
    QCOMPARE(timer.remaining(), 0);
    timer.bringForward(0);
    QTest::qWait(20);
    QCOMPARE(shots.isEmpty(), interval < 0);
}

void TestReconnectTimer::aLaterMomentChangesNothing()
{
    ReconnectTimer timer(nullptr);
    QSignalSpy shots(&timer, SIGNAL(timeout()));
    timer.start(20);
    timer.bringForward(endless);
    QVERIFY(timer.remaining() <= 20);
    QTRY_VERIFY(!shots.isEmpty());
}

void TestReconnectTimer::stoppedItIsNotBroughtForward()
{
    ReconnectTimer timer(nullptr);
    QSignalSpy shots(&timer, SIGNAL(timeout()));
    timer.bringForward(0);
    QTest::qWait(20);
    QVERIFY(shots.isEmpty());
}

void TestReconnectTimer::startedAnewItComesInTime()
{
    ReconnectTimer timer(nullptr);
    QSignalSpy shots(&timer, SIGNAL(timeout()));
    timer.start(endless);
    timer.bringForward(1);
    timer.start(endless);
    QTest::qWait(30);
    QVERIFY(shots.isEmpty());
}

void TestReconnectTimer::stopped_data()
{
    QTest::addColumn<bool>("as_any_timer");
    QTest::newRow("by its own slot") << false;
    QTest::newRow("as the timer that it is for others") << true;
}

void TestReconnectTimer::stopped()
{
    QFETCH(bool, as_any_timer);
    ReconnectTimer timer(nullptr);
    QSignalSpy shots(&timer, SIGNAL(timeout()));
    timer.start(endless);
    timer.bringForward(1);
    if (as_any_timer)
        static_cast<QTimer&>(timer).stop();
    else
        QMetaObject::invokeMethod(&timer, "stop");
    QVERIFY(!timer.isActive());
    QTest::qWait(30);
    QVERIFY(shots.isEmpty());
    QVERIFY(!timer.isActive());
}

/// Started anew inside its slot, it would otherwise call that slot again inside itself.
void TestReconnectTimer::noShotInsideAShot()
{
    ReconnectTimer timer(nullptr);
    int inside = 0;
    int deepest = 0;
    int shots = 0;
    connect(&timer, &QTimer::timeout, &timer, [&] {
        ++shots;
        deepest = qMax(deepest, ++inside);
        timer.stop();
        timer.start(10);
        timer.bringForward(1);
        QTest::qWait(40);
        --inside;
    });
    timer.start(1);
    QTRY_VERIFY(shots >= 2);
    timer.stop();
    QCOMPARE(deepest, 1);
}

void TestReconnectTimer::whatComesInsideAShot_data()
{
    QTest::addColumn<int>("interval");
    QTest::addColumn<bool>("comes");
    QTest::newRow("nothing of a timer of no time, which would come without end") << 0 << false;
    QTest::newRow("of any other, what is left out") << 1 << true;
}

void TestReconnectTimer::whatComesInsideAShot()
{
    QFETCH(int, interval);
    QFETCH(bool, comes);
    ReconnectTimer timer(nullptr);
    TimerEvents events;
    timer.installEventFilter(&events);
    bool is_over = false;
    bool has_come = false;
    connect(&timer, &QTimer::timeout, &timer, [&] {
        const int before = events.count;
        has_come = QTest::qWaitFor([&] { return events.count > before; }, comes ? 5000 : 50);
        timer.stop();
        is_over = true;
    });
    timer.start(interval);
    QTRY_VERIFY(is_over);
    QCOMPARE(has_come, comes);
}

/// What remains is the time to the next shot, not to the one that came to nothing.
void TestReconnectTimer::aShotThatIsLeftOutCounts()
{
    ReconnectTimer timer(nullptr);
    int inside = 0;
    int afterwards = 0;
    connect(&timer, &QTimer::timeout, &timer, [&] {
        QTest::qWait(250);
        inside = timer.remaining();
        QMetaObject::invokeMethod(
            &timer,
            [&] {
                afterwards = timer.remaining();
                timer.stop();
            },
            Qt::QueuedConnection);
    });
    timer.start(200);
    QTRY_VERIFY(!timer.isActive());
    QVERIFY2(inside > 0, qPrintable(QString::number(inside)));
    QVERIFY2(afterwards > 0, qPrintable(QString::number(afterwards)));
}

/// A timer that runs still cannot be deleted from another thread without a complaint of Qt's.
void TestReconnectTimer::stopsWithItsThread()
{
    LogRecorder log;
    QThread thread;
    std::unique_ptr<ReconnectTimer> timer(new ReconnectTimer(nullptr));
    timer->moveToThread(&thread);
    connect(&thread, SIGNAL(finished()), timer.get(), SLOT(stop()));
    thread.start();
    QMetaObject::invokeMethod(
        timer.get(),
        [&] {
            timer->start(endless);
            timer->bringForward(endless / 2);
        },
        Qt::BlockingQueuedConnection);
    thread.quit();
    QVERIFY(thread.wait(10000));
    QVERIFY(!timer->isActive());
    timer.reset();
    QVERIFY(log.take().isEmpty());
}

QTEST_GUILESS_MAIN(TestReconnectTimer)
#include "tst_reconnect_timer.moc"
