#include "property/value_stream.h"
#include "tests/property/address_space.h"
#include "tests/property/records.h"
#include "tests/property/stream_bytes.h"

#include <QDate>
#include <QTest>

namespace {

/// Type numbers as a stream of Qt 5 has them.
enum Tag
{
    map_tag = 8,
    list_tag = 9,
    texts_tag = 11,
    bits_tag = 13,
    date_time_tag = 16,
    hash_tag = 28,
    variant_tag = 41,
    pixmap_tag = 65,
    image_tag = 70,
    own_tag = 1024
};

/// Far above what reading needs, far below what a damaged count or length would take.
const qint64 allowed_growth = 64 * 1024;

StreamBytes bytes()
{
    return StreamBytes(StreamFormat());
}

QByteArray tag(int number, int count)
{
    return bytes().number(number).flag(false).number(count).bytes();
}

/// The bytes of an item whose value is stored as \a value.
QByteArray itemWithBytes(const QByteArray& value)
{
    return bytes().text(QLatin1String("Temp")).text(QString()).text(QString()).number(1).bytes() +
           value;
}

QVariant nestedList(int depth)
{
    QVariant value = QVariantList{5};
    for (int i = 0; i < depth; ++i)
        value = QVariantList{value};
    return value;
}

/// The value's bytes as Qt itself writes them.
QByteArray writtenByQt(const QVariant& value, const StreamFormat& format)
{
    QByteArray result;
    QDataStream stream(&result, QIODevice::WriteOnly);
    format.applyTo(&stream);
    stream << value;
    return result;
}

QVariant readValue(const QByteArray& stored, const StreamFormat& format,
                   QDataStream::Status* status, qint64* left)
{
    QDataStream stream(stored);
    format.applyTo(&stream);
    QVariant value = 7;
    ReadValue(stream, &value);
    *status = stream.status();
    *left = stream.device()->bytesAvailable();
    return value;
}

} // namespace

class TestValueStream : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsWhatQtWrites_data();
    void readsWhatQtWrites();
    void damaged_data();
    void damaged();
    void deepestValue();
    void listThatIsCutKeepsWhatCame();
    void laterOfTwoKeysCounts();
    void whatFollowsIsRead();
};

void TestValueStream::readsWhatQtWrites_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("none") << QVariant();
    QTest::newRow("bool") << QVariant(true);
    QTest::newRow("char") << QVariant::fromValue('\xfe');
    QTest::newRow("signed char") << QVariant::fromValue<signed char>(-7);
    QTest::newRow("unsigned char") << QVariant::fromValue<uchar>(254);
    QTest::newRow("short") << QVariant::fromValue<short>(-2);
    QTest::newRow("unsigned short") << QVariant::fromValue<ushort>(65535);
    QTest::newRow("int") << QVariant(-2);
    QTest::newRow("unsigned int") << QVariant(4294967295u);
    QTest::newRow("long") << QVariant::fromValue(-3L);
    QTest::newRow("unsigned long") << QVariant::fromValue(3UL);
    QTest::newRow("long long") << QVariant(Q_INT64_C(-5000000000));
    QTest::newRow("unsigned long long") << QVariant(Q_UINT64_C(18446744073709551615));
    QTest::newRow("float") << QVariant::fromValue(-12.625f);
    QTest::newRow("double") << QVariant(0.5);
    QTest::newRow("character") << QVariant(QChar(0x263A));
    QTest::newRow("text") << QVariant(QString::fromLatin1("a\xe9"));
    QTest::newRow("null text") << QVariant(QString());
    QTest::newRow("null number") << QVariant(QVariant::Int);
    QTest::newRow("null list") << QVariant(QVariant::List);
    QTest::newRow("bytes") << QVariant(QByteArray("\0\xff", 2));
    QTest::newRow("date") << QVariant(QDate(2024, 2, 29));
    QTest::newRow("time of day") << QVariant(QTime(23, 59, 58, 7));
    QTest::newRow("texts") << QVariant(QStringList{QString(), QLatin1String("b")});
    QTest::newRow("list of lists") << QVariant(QVariantList{1, nestedList(2), QVariant()});
    QTest::newRow("map") << QVariant(
        QVariantMap{{QLatin1String("a"), 1}, {QLatin1String("b"), nestedList(1)}});
    QTest::newRow("hash") << QVariant(
        QVariantHash{{QLatin1String("a"), true}, {QLatin1String("b"), 2.5}});
}

void TestValueStream::readsWhatQtWrites()
{
    QFETCH(QVariant, value);
    for (int version = QDataStream::Qt_4_0; version <= QDataStream::Qt_5_15; ++version) {
        for (const auto order : {QDataStream::BigEndian, QDataStream::LittleEndian}) {
            const StreamFormat format{version, order, QDataStream::DoublePrecision};
            QDataStream::Status status = QDataStream::WriteFailed;
            qint64 left = -1;
            const QVariant read = readValue(writtenByQt(value, format), format, &status, &left);
            QCOMPARE(read.userType(), value.userType());
            QCOMPARE(read, value);
            // Before Qt 4.2 a stream did not say so of values that cannot be null themselves.
            if (version >= QDataStream::Qt_4_2)
                QCOMPARE(read.isNull(), value.isNull());
            QCOMPARE(status, QDataStream::Ok);
            QCOMPARE(left, qint64(0));
        }
    }
}

void TestValueStream::damaged_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<int>("type"); // what is left of it
    const QByteArray pair = tag(map_tag, 1) + bytes().text(QLatin1String("k")).bytes();
    const QByteArray record = bytes().number(own_tag).flag(false).number(17).bytes() +
                              QByteArray("PropertyTovikIot", 17) +
                              bytes().root(PropertyTovikIot()).bytes().chopped(4) +
                              bytes().number(1).bytes() + itemWithBytes(QByteArray());
    const QByteArray png("\0\0\0\1\x89PNG\r\n\x1a\n", 12);
    QTest::newRow("list in list, 100,000 deep")
        << tag(list_tag, 1).repeated(100000) << int(QMetaType::QVariantList);
    QTest::newRow("map in map, 100,000 deep")
        << pair.repeated(100000) << int(QMetaType::QVariantMap);
    QTest::newRow("variant in variant, 100,000 deep")
        << bytes().number(variant_tag).flag(false).bytes().repeated(100000) << 0;
    QTest::newRow("record in record, 20,000 deep") << record.repeated(20000) << 0;
    for (const int count : {0x10000000, 0x7fffffff, -1}) {
        QTest::addRow("list that says %u elements", unsigned(count))
            << tag(list_tag, count) << int(QMetaType::QVariantList);
        QTest::addRow("texts that say %u elements", unsigned(count))
            << tag(texts_tag, count) << int(QMetaType::QStringList);
        QTest::addRow("map that says %u elements", unsigned(count))
            << tag(map_tag, count) << int(QMetaType::QVariantMap);
        QTest::addRow("hash that says %u elements", unsigned(count))
            << tag(hash_tag, count) << int(QMetaType::QVariantHash);
    }
    QTest::newRow("bits") << tag(bits_tag, 0x7fffffff) << 0;
    QTest::newRow("image") << bytes().number(image_tag).flag(false).bytes() + png << 0;
    QTest::newRow("pixmap") << bytes().number(pixmap_tag).flag(false).bytes() + png << 0;
    const QByteArray moment = tag(date_time_tag, 0) + QByteArray("\0\x25\x85\x78\0\0\3\xe8", 8);
    QTest::newRow("date-time of a named zone")
        << moment + '\3' + bytes().text(QLatin1String("../../../dev/tty")).bytes() << 0;
    QTest::newRow("date-time of no zone") << moment + '\x53' << 0;
    QTest::newRow("type that there is not") << tag(-1, 5) << 0;
    QTest::newRow("negative type") << tag(40 - 97, 5) << 0;
}

void TestValueStream::damaged()
{
    QFETCH(QByteArray, value);
    QFETCH(int, type);
    const QByteArray stored = itemWithBytes(value);
    const qint64 before = peakAddressSpace();
    QDataStream stream(stored);
    StreamFormat().applyTo(&stream);
    PropertyTovikIotDataItem item;
    stream >> item;
    QVERIFY(before > 0);
    QVERIFY(peakAddressSpace() - before < allowed_growth);
    QCOMPARE(item.name, QString::fromLatin1("Temp"));
    QCOMPARE(item.value.userType(), type);
    if (type == 0)
        QCOMPARE(stream.status(), QDataStream::ReadCorruptData);
    // It can be stored again.
    QByteArray again;
    QDataStream writer(&again, QIODevice::WriteOnly);
    writer << item;
    QCOMPARE(writer.status(), QDataStream::Ok);
}

void TestValueStream::deepestValue()
{
    QDataStream::Status status = QDataStream::WriteFailed;
    qint64 left = -1;
    const StreamFormat format;
    const QVariant deep = nestedList(deepest_value - 1); // and a number in the innermost
    QCOMPARE(readValue(writtenByQt(deep, format), format, &status, &left), deep);
    QCOMPARE(status, QDataStream::Ok);
    QVERIFY(readValue(writtenByQt(nestedList(deepest_value), format), format, &status, &left) !=
            nestedList(deepest_value));
    QCOMPARE(status, QDataStream::ReadCorruptData);
}

void TestValueStream::listThatIsCutKeepsWhatCame()
{
    QDataStream::Status status = QDataStream::Ok;
    qint64 left = -1;
    const StreamFormat format;
    const QByteArray whole = writtenByQt(QVariantList{11, 12, 13}, format);
    QCOMPARE(readValue(whole.chopped(9), format, &status, &left), QVariant(QVariantList{11, 12}));
    // The number was not read, its type was.
    QCOMPARE(readValue(whole.chopped(1), format, &status, &left),
             QVariant(QVariantList{11, 12, 0}));
    QCOMPARE(status, QDataStream::ReadPastEnd);
}

void TestValueStream::laterOfTwoKeysCounts()
{
    const QByteArray entry = bytes().text(QLatin1String("k")).variant(1).bytes();
    const QByteArray later = bytes().text(QLatin1String("k")).variant(2).bytes();
    QDataStream::Status status = QDataStream::WriteFailed;
    qint64 left = -1;
    for (const int type : {map_tag, hash_tag}) {
        const QVariant read =
            readValue(tag(type, 2) + entry + later, StreamFormat(), &status, &left);
        QCOMPARE(read.toMap(), (QVariantMap{{QLatin1String("k"), 2}}));
        QCOMPARE(status, QDataStream::Ok);
        QCOMPARE(left, qint64(0));
    }
}

void TestValueStream::whatFollowsIsRead()
{
    PropertyTovikIotDataItem item = filledItem();
    item.value = QVariantMap{{QLatin1String("a"), QStringList{QLatin1String("b")}}};
    QByteArray stored;
    QDataStream writer(&stored, QIODevice::WriteOnly);
    writer << item << filledItem(2);
    QDataStream reader(stored);
    PropertyTovikIotDataItem first, second;
    reader >> first >> second;
    QVERIFY(first == item);
    QCOMPARE(describe(second), describe(filledItem(2)));
    QVERIFY(reader.atEnd());
}

QTEST_GUILESS_MAIN(TestValueStream)
#include "tst_value_stream.moc"
