#include "cloud/driver_state.h"

#include <QElapsedTimer>
#include <QTest>

#include <atomic>
#include <memory>
#include <thread>

namespace {

const int item_count = 20;

/// A text of 40 equal characters: a torn copy shows as a mixture or as a freed text.
QString text(int character)
{
    return QString(40, QChar('a' + character % 26));
}

bool isWhole(const QVariant& value)
{
    const QString read = value.toString();
    return read == QString(read.size(), read.at(0)) && read.size() == 40;
}

MonitorDataItem entry(int item, const QVariant& value)
{
    return {QString::number(item), value};
}

} // namespace

/// What client and driver share, while both work. The thread sanitizer sees here which lock is
/// missing.
class TestDriverStateThreads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void textsStayWhole();
    void isReadWhileItIsCounted();
    void eachCallsWhatIsForIt();
    void valuesAreTakenWhileOthersAreSent();

private:
    void read();

    PropertyTovikIot property_;
    std::unique_ptr<DriverState> state_;
};

void TestDriverStateThreads::init()
{
    property_ = PropertyTovikIot();
    for (int i = 0; i < item_count; ++i) {
        PropertyTovikIotDataItem item;
        item.dataitem_id = QString::number(i);
        item.value = text(i);
        property_.dataitems.append(item);
    }
    state_.reset(new DriverState(&property_));
}

/// The overlap of the driver's assignments and the client's copies. Without the lock it corrupts
/// the heap within a fraction of this time.
void TestDriverStateThreads::textsStayWhole()
{
    std::atomic<bool> done(false);
    std::atomic<bool> torn(false);
    std::atomic<int> copied(0);
    std::thread client([&] {
        while (!done) {
            for (int i = 0; i < item_count; ++i) {
                if (!isWhole(state_->copy(i).value))
                    torn = true;
            }
            ++copied;
        }
    });
    QElapsedTimer timer;
    timer.start();
    int assigned = 0;
    while (timer.elapsed() < 3000 || copied < 1000) {
        QList<MonitorDataItem> values;
        for (int i = 0; i < item_count; ++i)
            values.append(entry(i, text(i + assigned)));
        for (int i = 0; i < item_count; ++i)
            state_->setValue(i, text(i + assigned + 1));
        state_->takeValues(values);
        ++assigned;
    }
    done = true;
    client.join();
    QVERIFY(!torn);
    QVERIFY(assigned > 0);
}

/// No age is ever below zero, and no count goes back.
void TestDriverStateThreads::isReadWhileItIsCounted()
{
    const int rounds = 200000;
    read();
    state_->valuesSent();
    state_->takeValues({entry(0, 1)});
    std::atomic<bool> is_over(false);
    std::thread client([this, &is_over] {
        for (int i = 0; i < rounds; ++i) {
            read();
            state_->valuesSent();
            state_->cycleDone(i);
            state_->failed(1 + i % 9);
            state_->takeValues({entry(0, i)});
        }
        is_over = true;
    });
    uint reads = 0;
    bool is_sound = true;
    while (!is_over) {
        const DriverNumbers now = state_->numbers();
        is_sound = is_sound && state_->itemAges().at(0).toInt() >= 0 && now.read_count >= reads &&
                   now.last_error_age >= -1 && now.last_error < 10;
        reads = now.read_count;
    }
    client.join();
    QVERIFY(is_sound);
    QCOMPARE(state_->numbers().read_count, uint(rounds) + 1);
    QCOMPARE(state_->numbers().cycle_count, rounds);
    QCOMPARE(state_->numbers().longest_cycle_milliseconds, rounds - 1);
}

/// A cycle that has read one item.
void TestDriverStateThreads::read()
{
    state_->cycleBegun();
    state_->valueRead(true);
}

void TestDriverStateThreads::eachCallsWhatIsForIt()
{
    const int rounds = 5000;
    const int looks = 20; // without another lock in between, which would put the threads in order
    int sizes = 0;
    int connections = 0;
    std::thread client([&] {
        for (int i = 0; i < rounds; ++i) {
            for (int look = 0; look < looks; ++look)
                sizes += state_->size();
            for (int look = 0; look < looks; ++look)
                state_->connected();
            connections += state_->isConnected() ? 1 : 0;
            state_->writeDone(true);
            read();
            if (!state_->keepsBack({entry(0, state_->copy(0).value)}))
                state_->valuesSent();
        }
    });
    for (int i = 0; i < rounds; ++i) {
        // Somebody has the list as well, so that the assignment makes it anew.
        const QList<PropertyTovikIotDataItem> shared(property_.dataitems);
        state_->setValue(0, text(i));
        state_->takeValues({entry(0, text(i))});
        state_->disconnected();
        state_->numbers();
    }
    client.join();
    QCOMPARE(sizes, rounds * looks * item_count);
    QVERIFY(connections > 0);
    QCOMPARE(state_->numbers().write_count, uint(rounds));
    QCOMPARE(state_->numbers().reconnect_count, rounds * looks - 1);
}

void TestDriverStateThreads::valuesAreTakenWhileOthersAreSent()
{
    const int rounds = 2000;
    state_->valueRead(true);
    std::thread client([this] {
        for (int i = 0; i < rounds; ++i)
            state_->valuesSent();
    });
    for (int i = 0; i < rounds; ++i)
        state_->takeValues({entry(0, i)});
    client.join();
    QCOMPARE(state_->value(0), QVariant(rounds - 1));
}

QTEST_APPLESS_MAIN(TestDriverStateThreads)
#include "tst_driver_state_threads.moc"
