#include "tests/framework/driver_bench.h"

#include <QTest>
#include <QThread>

#include <memory>
#include <vector>

namespace {

const int patience = 30000; // milliseconds; reached only by a failing test

} // namespace

/// A driver with its link in a thread of its own, as hosts keep drivers that block.
class TestDriverBasicThread : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void requestsRunInTheDriversThread();
    void oneAnswerEachInOrder();
    void requestsOfManyThreads();
    void requestsWaitForTheLock();
    void settingsAreTakenOverInTheDriversThread();

private:
    /// Runs \a work in the driver's thread and waits for it.
    template <typename Work>
    void inDriversThread(Work work)
    {
        QMetaObject::invokeMethod(bench_->driver.get(), work, Qt::BlockingQueuedConnection);
    }
    void emitRead(const QString& unit)
    {
        Q_EMIT bench_->driver->SigGetValuesByteArray(unit, QLatin1String("link"), 9,
                                                     someAddress(2));
    }

    std::unique_ptr<DriverBench> bench_;
    std::unique_ptr<QThread> thread_;
};

void TestDriverBasicThread::init()
{
    bench_.reset(new DriverBench(ScriptedDevice::Line::Tcp));
    QVERIFY(bench_->connectLink());
    thread_.reset(new QThread);
    bench_->ethernet->moveToThread(thread_.get());
    bench_->driver->moveToThread(thread_.get());
    thread_->start();
}

void TestDriverBasicThread::cleanup()
{
    QThread* here = QThread::currentThread();
    inDriversThread([&] {
        bench_->ethernet->moveToThread(here);
        bench_->driver->moveToThread(here);
    });
    thread_->quit();
    QVERIFY(thread_->wait(patience));
    bench_.reset();
}

void TestDriverBasicThread::requestsRunInTheDriversThread()
{
    QThread* ran_in = nullptr;
    bench_->driver->on_build = [&](QByteArray*, QByteArray*) {
        ran_in = QThread::currentThread();
        return 0;
    };
    emitRead(QLatin1String("unit"));
    QTRY_COMPARE_WITH_TIMEOUT(bench_->answers->count(), 1, patience);
    inDriversThread([] {}); // what the hook wrote can be read
    QCOMPARE(ran_in, thread_.get());
    QCOMPARE(bench_->answers->take(), QStringList(QLatin1String("unit link - 0x20010003")));
}

void TestDriverBasicThread::oneAnswerEachInOrder()
{
    QStringList expected;
    for (int i = 1; i <= 50; ++i) {
        const QString unit = QString::number(i);
        if (i % 3 == 0) {
            Q_EMIT bench_->driver->SigSetValuesByteArray(unit, QLatin1String("link"), 9, "a",
                                                         someAddress(1));
            expected += unit + QLatin1String(" link 61 0x0");
        } else {
            emitRead(unit);
            expected += QString::fromLatin1("%1 link %2 0x0")
                            .arg(unit, bytesText(TestDevice::valuesOf(i, 2)));
        }
    }
    QTRY_COMPARE_WITH_TIMEOUT(bench_->answers->count(), expected.size(), patience);
    QCOMPARE(bench_->answers->take(), expected);
    inDriversThread([] {});
    QCoreApplication::processEvents();
    QVERIFY(bench_->answers->take().isEmpty());
}

void TestDriverBasicThread::requestsOfManyThreads()
{
    QStringList expected;
    std::vector<std::unique_ptr<QThread>> hosts;
    for (int host = 0; host < 4; ++host) {
        for (int i = 0; i < 10; ++i)
            expected += QString::fromLatin1("%1.%2").arg(host).arg(i);
        hosts.emplace_back(QThread::create([this, host] {
            for (int i = 0; i < 10; ++i)
                emitRead(QString::fromLatin1("%1.%2").arg(host).arg(i));
        }));
        hosts.back()->start();
    }
    for (const auto& host : hosts)
        QVERIFY(host->wait(patience));
    QTRY_COMPARE_WITH_TIMEOUT(bench_->answers->count(), expected.size(), patience);
    QStringList units;
    for (const QString& answer : bench_->answers->take()) {
        QVERIFY2(answer.endsWith(QLatin1String(" 0x0")), qPrintable(answer));
        units += answer.section(QLatin1Char(' '), 0, 0);
    }
    units.sort();
    QCOMPARE(units, expected);
}

// Another user of the lock, such as a transparent request from another thread, comes first.
void TestDriverBasicThread::requestsWaitForTheLock()
{
    bench_->driver->request_lock_.lock();
    emitRead(QLatin1String("unit"));
    for (int i = 0; i < 20; ++i) {
        QThread::msleep(1);
        QCoreApplication::processEvents();
        QCOMPARE(bench_->answers->count(), 0);
    }
    QVERIFY(bench_->device.received().isEmpty());
    bench_->driver->request_lock_.unlock();
    QTRY_COMPARE_WITH_TIMEOUT(bench_->answers->count(), 1, patience);
}

void TestDriverBasicThread::settingsAreTakenOverInTheDriversThread()
{
    bench_->ethernet->retry_count = 7;
    Q_EMIT bench_->driver->SigUpdateDrvEthernet();
    int retry_count = 0;
    inDriversThread([&] { retry_count = bench_->driver->retry_count_; });
    QCOMPARE(retry_count, 7);
}

QTEST_GUILESS_MAIN(TestDriverBasicThread)
#include "tst_driver_basic_thread.moc"
