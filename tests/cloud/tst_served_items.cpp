#include "cloud/served_items.h"

#include <QElapsedTimer>
#include <QTest>

#include <atomic>
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

} // namespace

class TestServedItems : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void copies();
    void assigns();
    void followsTheConfiguration();
    void textsStayWholeWhileBothThreadsWork();

private:
    PropertyTovikIot property_;
};

void TestServedItems::init()
{
    property_ = PropertyTovikIot();
    for (int i = 0; i < item_count; ++i) {
        PropertyTovikIotDataItem item;
        item.name = QString::number(i);
        item.value = text(i);
        property_.dataitems.append(item);
    }
}

void TestServedItems::copies()
{
    const ServedItems items(&property_);
    QCOMPARE(items.size(), item_count);
    for (int i = 0; i < item_count; ++i)
        QVERIFY(items.copy(i) == property_.dataitems.at(i));
}

void TestServedItems::assigns()
{
    ServedItems items(&property_);
    items.setValue(3, QVariant(5));
    QCOMPARE(property_.dataitems.at(3).value, QVariant(5));
    QCOMPARE(property_.dataitems.at(2).value, QVariant(text(2)));
    items.setValue(3, QVariant());
    QVERIFY(!property_.dataitems.at(3).value.isValid());
}

void TestServedItems::followsTheConfiguration()
{
    const ServedItems items(&property_);
    property_.dataitems.removeLast();
    QCOMPARE(items.size(), item_count - 1);
}

/// The overlap of the driver's assignments and the client's copies. Without the lock it corrupts
/// the heap within a fraction of this time.
void TestServedItems::textsStayWholeWhileBothThreadsWork()
{
    ServedItems items(&property_);
    std::atomic<bool> done(false);
    std::atomic<bool> torn(false);
    std::atomic<int> copied(0);
    std::thread client([&] {
        while (!done) {
            for (int i = 0; i < item_count; ++i) {
                if (!isWhole(items.copy(i).value))
                    torn = true;
            }
            ++copied;
        }
    });
    QElapsedTimer timer;
    timer.start();
    int assigned = 0;
    while (timer.elapsed() < 3000 || copied < 1000) {
        for (int i = 0; i < item_count; ++i)
            items.setValue(i, text(i + assigned));
        ++assigned;
    }
    done = true;
    client.join();
    QVERIFY(!torn);
    QVERIFY(assigned > 0);
}

QTEST_APPLESS_MAIN(TestServedItems)
#include "tst_served_items.moc"
