#include "tests/property/records.h"
#include "tests/property/stream_bytes.h"
#include "tests/property/stream_model.h"

#include <QTest>

namespace {

/// Five groups with no, one and two items, and served items of every variant type.
PropertyTovikIot fullRoot()
{
    PropertyTovikIot root = filledRoot(5, 1);
    for (const QVariant& value :
         {QVariant(true), QVariant::fromValue<short>(-2), QVariant::fromValue<ushort>(65535),
          QVariant(-9), QVariant(4294967295u), QVariant::fromValue(-12.625f),
          QVariant(QString::fromLatin1("text")), QVariant(QByteArray("bytes")), QVariant()})
        root.dataitems.append(itemWith(value));
    return root;
}

template <typename T>
T readFrom(const QByteArray& bytes, const StreamFormat& format, T into = T())
{
    QDataStream stream(bytes);
    format.applyTo(&stream);
    stream >> into;
    return into;
}

PropertyTovikIot scalarsOf(PropertyTovikIot root)
{
    root.groups.clear();
    root.dataitems.clear();
    return root;
}

} // namespace

class TestTruncatedStream : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyLengthOfAConfiguration_data() { addDoublePrecisionRows(); }
    void everyLengthOfAConfiguration();
    void everyLengthOfAGroup_data() { addDoublePrecisionRows(); }
    void everyLengthOfAGroup();
    void everyLengthOfAnItem_data() { addFormatRows(); }
    void everyLengthOfAnItem();
    void cutInTheThirdOfFiveGroups();
    void cutBehindTheThirdOfFiveGroups();
    void countWithNothingBehindIt();
    void emptyStreamClearsAFilledConfiguration();
};

void TestTruncatedStream::everyLengthOfAConfiguration()
{
    QFETCH(StreamFormat, format);
    const QByteArray whole = StreamBytes(format).root(fullRoot()).bytes();
    QCOMPARE(describe(StreamModel(whole, format).root()), describe(fullRoot()));
    for (int length = 0; length <= whole.size(); ++length) {
        const QByteArray bytes = whole.left(length);
        const QStringList read = describe(readFrom(bytes, format, filledRoot(3, 3)));
        if (read != describe(StreamModel(bytes, format).root()))
            QFAIL(qPrintable(QString::fromLatin1("length %1: read %2")
                                 .arg(length)
                                 .arg(read.join(QLatin1Char('\n')))));
    }
}

void TestTruncatedStream::everyLengthOfAGroup()
{
    QFETCH(StreamFormat, format);
    const QByteArray whole = StreamBytes(format).group(filledGroup(1, 3)).bytes();
    for (int length = 0; length <= whole.size(); ++length) {
        const QByteArray bytes = whole.left(length);
        QCOMPARE(describe(readFrom(bytes, format, filledGroup(2, 4))),
                 describe(StreamModel(bytes, format).group()));
    }
}

void TestTruncatedStream::everyLengthOfAnItem()
{
    QFETCH(StreamFormat, format);
    for (const PropertyTovikIotDataItem& item : fullRoot().dataitems) {
        const QByteArray whole = StreamBytes(format).item(item).bytes();
        for (int length = 0; length <= whole.size(); ++length) {
            const QByteArray bytes = whole.left(length);
            QCOMPARE(describe(readFrom(bytes, format, filledItem(2))),
                     describe(StreamModel(bytes, format).item()));
        }
    }
}

// What could be read of a damaged project file is kept.
void TestTruncatedStream::cutInTheThirdOfFiveGroups()
{
    const StreamFormat format;
    const PropertyTovikIot root = filledRoot(5, 4);
    StreamBytes start(format);
    start.root(scalarsOf(root));
    QByteArray bytes = start.bytes();
    bytes.chop(8); // the two counts
    bytes += StreamBytes(format).number(5).group(root.groups[0]).group(root.groups[1]).bytes();
    bytes += StreamBytes(format).text(root.groups[2].group_id).text(root.groups[2].name).bytes();

    const PropertyTovikIot read = readFrom<PropertyTovikIot>(bytes, format);
    QCOMPARE(read.password, root.password);
    QCOMPARE(read.groups.size(), 3);
    QCOMPARE(describe(read.groups[0]), describe(root.groups[0]));
    QCOMPARE(describe(read.groups[1]), describe(root.groups[1]));
    QCOMPARE(read.groups[2].group_id, root.groups[2].group_id);
    QCOMPARE(read.groups[2].name, root.groups[2].name);
    QVERIFY(read.groups[2].location.isEmpty());
    QVERIFY(read.groups[2].permission.isEmpty());
    QVERIFY(read.groups[2].dataitems.isEmpty());
    QVERIFY(read.dataitems.isEmpty());
}

void TestTruncatedStream::cutBehindTheThirdOfFiveGroups()
{
    const StreamFormat format;
    const PropertyTovikIot root = filledRoot(5, 4);
    QByteArray bytes = StreamBytes(format).root(scalarsOf(root)).bytes();
    bytes.chop(8); // the two counts
    StreamBytes groups(format);
    groups.number(5).group(root.groups[0]).group(root.groups[1]).group(root.groups[2]);
    bytes += groups.bytes();

    const PropertyTovikIot read = readFrom<PropertyTovikIot>(bytes, format);
    QCOMPARE(read.groups.size(), 3);
    QCOMPARE(describe(read.groups[2]), describe(root.groups[2]));
    QVERIFY(read.dataitems.isEmpty());
}

// One element is always tried; it holds what reading from nothing gives, not an item's defaults.
void TestTruncatedStream::countWithNothingBehindIt()
{
    const StreamFormat format;
    QByteArray bytes = StreamBytes(format).root(PropertyTovikIot()).bytes();
    bytes.chop(4);
    bytes += StreamBytes(format).number(3).bytes();

    const PropertyTovikIot read = readFrom<PropertyTovikIot>(bytes, format);
    QVERIFY(read.groups.isEmpty());
    QCOMPARE(read.dataitems.size(), 1);
    PropertyTovikIotDataItem nothing = itemWith(QVariant());
    nothing.type.clear();
    nothing.length = 0;
    QCOMPARE(describe(read.dataitems[0]), describe(nothing));
}

void TestTruncatedStream::emptyStreamClearsAFilledConfiguration()
{
    PropertyTovikIot expected;
    expected.host.clear();
    const auto read = readFrom(QByteArray(), StreamFormat(), filledRoot(3, 3));
    QCOMPARE(describe(read), describe(expected));
}

QTEST_GUILESS_MAIN(TestTruncatedStream)
#include "tst_truncated_stream.moc"
