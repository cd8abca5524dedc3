#include "tests/property/address_space.h"
#include "tests/property/records.h"
#include "tests/property/stream_bytes.h"

#include <QTest>

namespace {

/// Far below what the smallest damaged count would take, far above what reading needs.
const qint64 allowed_growth = 64 * 1024;

template <typename T>
T readFrom(const QByteArray& bytes)
{
    QDataStream stream(bytes);
    StreamFormat().applyTo(&stream);
    T record;
    stream >> record;
    return record;
}

void addCountRows()
{
    QTest::addColumn<int>("count");
    QTest::newRow("268435456") << 0x10000000;
    QTest::newRow("largest positive") << 0x7fffffff;
    QTest::newRow("all ones") << -1;
}

/// Qt's warnings about variants of unknown types: hundreds, and no news here.
void dropMessage(QtMsgType, const QMessageLogContext&, const QString&) {}

/// The bytes of a record that ends with an empty list, with another count.
QByteArray withCount(QByteArray bytes, int count)
{
    bytes.chop(4);
    return bytes + StreamBytes(StreamFormat()).number(count).bytes();
}

} // namespace

class TestDamagedStream : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void countOfServedItems_data() { addCountRows(); }
    void countOfServedItems();
    void countOfGroups_data() { addCountRows(); }
    void countOfGroups();
    void countOfItemsInAGroup_data() { addCountRows(); }
    void countOfItemsInAGroup();
    void everyByte_data();
    void everyByte();
};

void TestDamagedStream::countOfServedItems()
{
    QFETCH(int, count);
    const QByteArray bytes =
        withCount(StreamBytes(StreamFormat()).root(PropertyTovikIot()).bytes(), count) +
        StreamBytes(StreamFormat()).item(filledItem(1)).item(filledItem(2)).bytes();
    const qint64 before = peakAddressSpace();
    QVERIFY(before > 0);
    const auto root = readFrom<PropertyTovikIot>(bytes);
    QVERIFY(peakAddressSpace() - before < allowed_growth);
    QCOMPARE(root.dataitems.size(), 2);
    QCOMPARE(describe(root.dataitems[0]), describe(filledItem(1)));
    QCOMPARE(describe(root.dataitems[1]), describe(filledItem(2)));
}

void TestDamagedStream::countOfGroups()
{
    QFETCH(int, count);
    QByteArray bytes = StreamBytes(StreamFormat()).root(PropertyTovikIot()).bytes();
    bytes.chop(4);
    bytes = withCount(bytes, count) + StreamBytes(StreamFormat()).group(filledGroup()).bytes();
    const qint64 before = peakAddressSpace();
    QVERIFY(before > 0);
    const auto root = readFrom<PropertyTovikIot>(bytes);
    QVERIFY(peakAddressSpace() - before < allowed_growth);
    QCOMPARE(root.groups.size(), 1);
    QCOMPARE(describe(root.groups[0]), describe(filledGroup()));
    QVERIFY(root.dataitems.isEmpty());
}

void TestDamagedStream::countOfItemsInAGroup()
{
    QFETCH(int, count);
    const QByteArray bytes =
        withCount(StreamBytes(StreamFormat()).group(filledGroup(1, 0)).bytes(), count) +
        StreamBytes(StreamFormat()).item(filledItem(1)).bytes();
    const qint64 before = peakAddressSpace();
    QVERIFY(before > 0);
    const auto group = readFrom<PropertyTovikIotGroup>(bytes);
    QVERIFY(peakAddressSpace() - before < allowed_growth);
    QCOMPARE(group.name, filledGroup(1, 0).name);
    QCOMPARE(group.dataitems.size(), 1);
    QCOMPARE(describe(group.dataitems[0]), describe(filledItem(1)));
}

void TestDamagedStream::everyByte_data()
{
    QTest::addColumn<int>("mask");
    QTest::newRow("highest bit turned") << 0x80;
    QTest::newRow("all bits turned") << 0xff;
}

// A stored file with one wrong byte anywhere is read to some end, in bounded memory.
void TestDamagedStream::everyByte()
{
    QFETCH(int, mask);
    const QByteArray whole = StreamBytes(StreamFormat()).root(filledRoot(3, 3)).bytes();
    const QtMessageHandler handler = qInstallMessageHandler(dropMessage);
    int most_elements = 0;
    qint64 most_growth = 0; // of one read: a sanitizer keeps what is freed between them
    for (int i = 0; i < whole.size(); ++i) {
        QByteArray bytes = whole;
        bytes[i] = char(bytes.at(i) ^ mask);
        const qint64 before = peakAddressSpace();
        const auto root = readFrom<PropertyTovikIot>(bytes);
        most_growth = qMax(most_growth, peakAddressSpace() - before);
        most_elements = qMax(most_elements, root.groups.size() + root.dataitems.size());
    }
    qInstallMessageHandler(handler);
    QVERIFY(most_growth < allowed_growth);
    QVERIFY(most_elements >= 6);
    QVERIFY(most_elements <= whole.size());
}

QTEST_GUILESS_MAIN(TestDamagedStream)
#include "tst_damaged_stream.moc"
