#include "cloud/driver_state.h"

#include <QElapsedTimer>
#include <QTest>
#include <QThread>

#include <limits>
#include <memory>

namespace {

const int item_count = 20;

/// A text of 40 equal characters: a torn copy shows as a mixture or as a freed text.
QString text(int character)
{
    return QString(40, QChar('a' + character % 26));
}

QString id(int item)
{
    return QStringLiteral("id %1").arg(item);
}

MonitorDataItem entry(int item, const QVariant& value)
{
    return {id(item), value};
}

} // namespace

/// What client and driver share: the served items, what is counted, and the ages of the values.
class TestDriverState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void copies();
    void assigns();
    void findsTheFirstOfAName();
    void followsTheConfiguration();
    void takesTheFirstEntryOfAnId();

    void startsWithNothing();
    void keepsLatestAndLongestCycle_data();
    void keepsLatestAndLongestCycle();
    void countsReads();
    void countsWrites();
    void countsConnectionsAfterTheFirst();
    void keepsTheLatestError();

    void agesOnlyWhatTheDriverHas();
    void aValueThatWaitedIsAsOldAsItsRead();
    void aReadOfTheNextCycleMakesNoValueYounger();
    void aCycleThatWasNotSentLeavesNoTrace();
    void valuesThatNobodyReadHaveNoAge();
    void itemsWithoutAnEntryGrowOlder();
    void whatADriverDoesNotTakeIsKeptOnce();

private:
    int age(int item) const { return state_->itemAges().at(item).toInt(); }
    void read(std::initializer_list<bool> taken);

    PropertyTovikIot property_;
    std::unique_ptr<DriverState> state_;
};

void TestDriverState::init()
{
    property_ = PropertyTovikIot();
    for (int i = 0; i < item_count; ++i) {
        PropertyTovikIotDataItem item;
        item.name = QString::number(i);
        item.dataitem_id = id(i);
        item.value = text(i);
        property_.dataitems.append(item);
    }
    state_.reset(new DriverState(&property_));
}

void TestDriverState::copies()
{
    QCOMPARE(state_->size(), item_count);
    for (int i = 0; i < item_count; ++i)
        QVERIFY(state_->copy(i) == property_.dataitems.at(i));
}

void TestDriverState::assigns()
{
    state_->setValue(3, QVariant(5));
    QCOMPARE(property_.dataitems.at(3).value, QVariant(5));
    QCOMPARE(state_->value(3), QVariant(5));
    QCOMPARE(state_->value(2), QVariant(text(2)));
    state_->setValue(3, QVariant());
    QVERIFY(!property_.dataitems.at(3).value.isValid());
}

void TestDriverState::findsTheFirstOfAName()
{
    property_.dataitems[7].name = QStringLiteral("3");
    property_.dataitems[8].type = QStringLiteral("odd");
    const DriverState state(&property_);
    QCOMPARE(state.indexOf(QStringLiteral("3")), 3);
    QCOMPARE(state.indexOf(QStringLiteral("7")), -1);
    QVERIFY(state.typeOf(7));
    QVERIFY(!state.typeOf(8));
}

void TestDriverState::followsTheConfiguration()
{
    property_.dataitems.removeLast();
    QCOMPARE(state_->size(), item_count - 1);
}

void TestDriverState::takesTheFirstEntryOfAnId()
{
    property_.dataitems[5].dataitem_id = id(4);
    state_->takeValues({entry(4, 1), entry(2, 2), entry(4, 3), entry(99, 4)});
    QCOMPARE(state_->value(4), QVariant(1));
    QCOMPARE(state_->value(5), QVariant(1));
    QCOMPARE(state_->value(2), QVariant(2));
    QCOMPARE(state_->value(3), QVariant(text(3)));
}

void TestDriverState::startsWithNothing()
{
    const DriverNumbers numbers = state_->numbers();
    QVERIFY(!numbers.connected);
    QCOMPARE(numbers.cycle_count, 0);
    QCOMPARE(numbers.cycle_milliseconds, -1);
    QCOMPARE(numbers.longest_cycle_milliseconds, -1);
    QCOMPARE(numbers.read_count, 0u);
    QCOMPARE(numbers.write_count, 0u);
    QCOMPARE(numbers.failed_write_count, 0u);
    QCOMPARE(numbers.reconnect_count, 0);
    QCOMPARE(numbers.last_error, 0);
    QCOMPARE(numbers.last_error_age, -1);
    QCOMPARE(state_->itemAges().size(), item_count);
    QCOMPARE(age(0), -1);
    QCOMPARE(age(item_count - 1), -1);
}

void TestDriverState::keepsLatestAndLongestCycle_data()
{
    QTest::addColumn<QList<qint64>>("cycles");
    QTest::addColumn<int>("latest");
    QTest::addColumn<int>("longest");
    const int greatest = std::numeric_limits<int>::max();
    QTest::newRow("a cycle of no time is one") << QList<qint64>{0} << 0 << 0;
    QTest::newRow("longest first") << QList<qint64>{90, 20} << 20 << 90;
    QTest::newRow("longest last") << QList<qint64>{20, 90} << 90 << 90;
    QTest::newRow("longer than an int holds")
        << QList<qint64>{qint64(greatest) + 5} << greatest << greatest;
}

void TestDriverState::keepsLatestAndLongestCycle()
{
    QFETCH(QList<qint64>, cycles);
    for (const qint64 cycle : cycles)
        state_->cycleDone(cycle);
    QCOMPARE(state_->numbers().cycle_count, cycles.size());
    QTEST(state_->numbers().cycle_milliseconds, "latest");
    QTEST(state_->numbers().longest_cycle_milliseconds, "longest");
}

void TestDriverState::countsReads()
{
    read({true, false, true});
    QCOMPARE(state_->numbers().read_count, 3u);
    QCOMPARE(state_->numbers().cycle_count, 0);
}

void TestDriverState::countsWrites()
{
    state_->writeDone(true);
    state_->writeDone(false);
    state_->writeDone(true);
    QCOMPARE(state_->numbers().write_count, 2u);
    QCOMPARE(state_->numbers().failed_write_count, 1u);
}

void TestDriverState::countsConnectionsAfterTheFirst()
{
    state_->connected();
    QCOMPARE(state_->numbers().reconnect_count, 0);
    QVERIFY(state_->isConnected());
    state_->disconnected();
    QVERIFY(!state_->numbers().connected);
    state_->connected();
    state_->connected();
    QCOMPARE(state_->numbers().reconnect_count, 2);
    QVERIFY(state_->numbers().connected);
}

void TestDriverState::keepsTheLatestError()
{
    state_->failed(7);
    state_->failed(256);
    state_->connected();
    read({true});
    QCOMPARE(state_->numbers().last_error, 256);
    QVERIFY(state_->numbers().last_error_age >= 0);
    QTRY_VERIFY(state_->numbers().last_error_age >= 100);
}

/// A cycle that has read as many items.
void TestDriverState::read(std::initializer_list<bool> taken)
{
    state_->cycleBegun();
    for (const bool is_taken : taken)
        state_->valueRead(is_taken);
}

void TestDriverState::agesOnlyWhatTheDriverHas()
{
    QElapsedTimer elapsed;
    elapsed.start();
    read({true, false});
    state_->valuesSent();
    QCOMPARE(age(0), -1);
    state_->takeValues({entry(0, 1), entry(1, 1)});
    QVERIFY(age(0) >= 0);
    QVERIFY(age(0) <= elapsed.elapsed());
    // Of another type than the item's.
    QCOMPARE(age(1), -1);
    QCOMPARE(age(2), -1);
}

/// A host whose thread is busy takes a value late: it is old then, and looks it.
void TestDriverState::aValueThatWaitedIsAsOldAsItsRead()
{
    read({true});
    state_->valuesSent();
    QElapsedTimer waited;
    waited.start();
    QThread::msleep(50);
    const qint64 before = waited.elapsed();
    state_->takeValues({entry(0, 1)});
    QVERIFY(age(0) >= before);
}

/// The client is in its next cycle while the values of the one before are still on their way.
void TestDriverState::aReadOfTheNextCycleMakesNoValueYounger()
{
    read({true});
    state_->valuesSent();
    QElapsedTimer waited;
    waited.start();
    QThread::msleep(50);
    const qint64 before = waited.elapsed();
    read({true});
    state_->valuesSent();
    state_->takeValues({entry(0, 1)});
    QVERIFY(age(0) >= before);
    const int older = age(0);
    state_->takeValues({entry(0, 2)});
    QVERIFY(age(0) <= older);
}

void TestDriverState::aCycleThatWasNotSentLeavesNoTrace()
{
    read({false});
    read({true});
    state_->valuesSent();
    state_->takeValues({entry(0, 1)});
    QVERIFY(age(0) >= 0);
}

void TestDriverState::valuesThatNobodyReadHaveNoAge()
{
    state_->takeValues({entry(0, 1)});
    QCOMPARE(state_->value(0), QVariant(1));
    QCOMPARE(age(0), -1);
}

void TestDriverState::itemsWithoutAnEntryGrowOlder()
{
    read({true, true});
    state_->valuesSent();
    state_->takeValues({entry(0, 1), entry(1, 1)});
    QTRY_VERIFY(age(0) >= 20);
    const int older = age(0);
    read({true});
    state_->valuesSent();
    state_->takeValues({entry(1, 2)});
    QVERIFY(age(0) >= older);
    QVERIFY(age(1) < age(0));
}

/// A host whose thread is blocked gets the newest value of each item, and no more lists than it has
/// room for.
void TestDriverState::whatADriverDoesNotTakeIsKeptOnce()
{
    QList<QList<MonitorDataItem>> sent;
    for (int cycle = 0; cycle < 1000; ++cycle) {
        const bool is_short = cycle == 999; // its second read has failed
        QList<MonitorDataItem> values{entry(0, cycle), entry(1, cycle)};
        if (is_short)
            values.removeLast();
        state_->cycleBegun();
        for (int i = 0; i < values.size(); ++i)
            state_->valueRead(true);
        if (state_->keepsBack(values))
            continue;
        state_->valuesSent();
        sent.append(values);
    }
    QCOMPARE(sent.size(), int(DriverState::most_untaken));
    for (int i = 0; i < sent.size(); ++i) {
        QVERIFY(i == 0 || state_->value(0) == QVariant(i - 1));
        state_->takeValues(sent.at(i));
    }
    QCOMPARE(state_->value(0), QVariant(999));
    QCOMPARE(state_->value(1), QVariant(998));
    QVERIFY(age(0) >= 0);
    // What was kept is gone with that.
    state_->valuesSent();
    state_->takeValues({entry(0, 5)});
    QCOMPARE(state_->value(0), QVariant(5));
    QCOMPARE(state_->value(1), QVariant(998));
    QVERIFY(!state_->keepsBack({entry(0, 6)}));
}

QTEST_GUILESS_MAIN(TestDriverState)
#include "tst_driver_state.moc"
