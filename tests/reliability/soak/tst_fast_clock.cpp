#include <QElapsedTimer>
#include <QMutex>
#include <QTest>
#include <QTimer>
#include <QWaitCondition>

#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <thread>

namespace {

const int speed = 24; // what the test's environment says

/// Past the preloaded library.
double realSeconds(clockid_t clock)
{
    timespec time{};
    ::syscall(SYS_clock_gettime, clock, &time);
    return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

double fastSeconds(clockid_t clock)
{
    timespec time{};
    ::clock_gettime(clock, &time);
    return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

} // namespace

Q_DECLARE_METATYPE(std::function<void()>)

/// Time goes by faster for all that looks at a clock or waits, and by the same in each process.
class TestFastClock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void clocksRunAhead();
    void processorTimeStays();
    void waitsAreShorter_data();
    void waitsAreShorter();
};

void TestFastClock::clocksRunAhead()
{
    const double uptime = realSeconds(CLOCK_MONOTONIC);
    const double wall = realSeconds(CLOCK_REALTIME);
    const double patience = 60 * speed;
    const double fast_wall = wall + (speed - 1) * uptime;
    QVERIFY(std::abs(fastSeconds(CLOCK_MONOTONIC) - speed * uptime) < patience);
    QVERIFY(std::abs(fastSeconds(CLOCK_REALTIME) - fast_wall) < patience);
    QVERIFY(std::abs(double(::time(nullptr)) - fast_wall) < patience);
    timeval day{};
    ::gettimeofday(&day, nullptr);
    QVERIFY(std::abs(double(day.tv_sec) - fast_wall) < patience);
}

void TestFastClock::processorTimeStays()
{
    const double before = realSeconds(CLOCK_PROCESS_CPUTIME_ID);
    const double seen = fastSeconds(CLOCK_PROCESS_CPUTIME_ID);
    QVERIFY(before <= seen && seen <= realSeconds(CLOCK_PROCESS_CPUTIME_ID));
}

void TestFastClock::waitsAreShorter_data()
{
    QTest::addColumn<std::function<void()>>("wait");
    auto row = [](const char* name, const std::function<void()>& wait) {
        QTest::newRow(name) << wait;
    };
    static const int time = 12000;
    row("a pause", [] { QThread::msleep(time); });
    row("an event loop", [] {
        QEventLoop loop;
        QTimer::singleShot(time, &loop, &QEventLoop::quit);
        loop.exec();
    });
    row("a condition of Qt's", [] {
        QMutex mutex;
        QWaitCondition nobody;
        mutex.lock();
        QVERIFY(!nobody.wait(&mutex, time));
        mutex.unlock();
    });
    row("a condition with a steady clock", [] {
        static std::mutex mutex;
        std::condition_variable nobody;
        std::unique_lock<std::mutex> lock(mutex);
        nobody.wait_for(lock, std::chrono::milliseconds(time));
    });
    row("a condition with the time of day", [] {
        static std::mutex mutex;
        std::condition_variable nobody;
        std::unique_lock<std::mutex> lock(mutex);
        nobody.wait_until(lock, std::chrono::system_clock::now() + std::chrono::milliseconds(time));
    });
}

/// Twelve seconds that take half of one; a busy machine may take most of them.
void TestFastClock::waitsAreShorter()
{
    QFETCH(std::function<void()>, wait);
    QElapsedTimer fast;
    fast.start();
    const double before = realSeconds(CLOCK_MONOTONIC);
    wait();
    const double real = realSeconds(CLOCK_MONOTONIC) - before;
    // An event loop's timer may be a twentieth early.
    QVERIFY2(real > 0.47 && real < 11, qPrintable(QString::number(real)));
    QVERIFY(fast.elapsed() > 11300);
}

QTEST_GUILESS_MAIN(TestFastClock)
#include "tst_fast_clock.moc"
