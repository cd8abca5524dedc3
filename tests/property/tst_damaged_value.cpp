#include "property/value_stream.h"
#include "tests/property/address_space.h"
#include "tests/property/records.h"
#include "tests/property/value_bytes.h"

#include <QBitArray>
#include <QDateTime>
#include <QRegExp>
#include <QTest>

namespace {

/// Far above what reading needs, far below what a damaged count or length would take.
const qint64 allowed_growth = 64 * 1024;

QByteArray url(const QByteArray& encoded)
{
    return taggedCount(url_tag, encoded.size()) + encoded;
}

QByteArray expression(const QByteArray& pattern, int syntax)
{
    const QString text = QString::fromLatin1(pattern);
    return valueBytes().number(expression_tag).flag(false).text(text).flag(true).bytes() +
           char(syntax) + '\0';
}

/// The bytes of an item whose value is stored as \a value.
QByteArray itemWithBytes(const QByteArray& value)
{
    return valueBytes()
               .text(QLatin1String("Temp"))
               .text(QString())
               .text(QString())
               .number(1)
               .bytes() +
           value;
}

} // namespace

class TestDamagedValue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void damaged_data();
    void damaged();
    void deepestValue_data();
    void deepestValue();
    void listThatIsCutKeepsWhatCame();
    void bitsBehindTheLast();
    void typesThatQt4CountsDifferently_data();
    void typesThatQt4CountsDifferently();
    void kindsOfTime();
    void expressionsOfOneRecord();
};

void TestDamagedValue::damaged_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<int>("type"); // what is left of it
    const QByteArray pair = taggedCount(map_tag, 1) + valueBytes().text(QLatin1String("k")).bytes();
    const QByteArray record = valueBytes().number(own_tag).flag(false).number(17).bytes() +
                              QByteArray("PropertyTovikIot", 17) +
                              valueBytes().root(PropertyTovikIot()).bytes().chopped(4) +
                              valueBytes().number(1).bytes() + itemWithBytes(QByteArray());
    const QByteArray png("\0\0\0\1\x89PNG\r\n\x1a\n", 12);
    QTest::newRow("list in list, 100,000 deep")
        << taggedCount(list_tag, 1).repeated(100000) << int(QMetaType::QVariantList);
    QTest::newRow("map in map, 100,000 deep")
        << pair.repeated(100000) << int(QMetaType::QVariantMap);
    QTest::newRow("variant in variant, 100,000 deep")
        << valueBytes().number(variant_tag).flag(false).bytes().repeated(100000) << 0;
    QTest::newRow("record in record, 20,000 deep") << record.repeated(20000) << 0;
    for (const int count : {0x10000000, 0x7fffffff, -1}) {
        QTest::addRow("list that says %u elements", unsigned(count))
            << taggedCount(list_tag, count) << int(QMetaType::QVariantList);
        QTest::addRow("texts that say %u elements", unsigned(count))
            << taggedCount(texts_tag, count) << int(QMetaType::QStringList);
        QTest::addRow("map that says %u elements", unsigned(count))
            << taggedCount(map_tag, count) << int(QMetaType::QVariantMap);
        QTest::addRow("hash that says %u elements", unsigned(count))
            << taggedCount(hash_tag, count) << int(QMetaType::QVariantHash);
    }
    QTest::newRow("bits that say more than come")
        << taggedCount(bits_tag, 0x7fffffff) << int(QMetaType::QBitArray);
    QTest::newRow("bits, negative count") << taggedCount(bits_tag, -1) << 0;
    QTest::newRow("image") << valueBytes().number(image_tag).flag(false).bytes() + png << 0;
    QTest::newRow("pixmap") << valueBytes().number(pixmap_tag).flag(false).bytes() + png << 0;
    const QByteArray moment =
        taggedCount(date_time_tag, 0) + QByteArray("\0\x25\x85\x78\0\0\3\xe8", 8);
    QTest::newRow("date-time of a named zone")
        << moment + '\3' + valueBytes().text(QLatin1String("../../../dev/tty")).bytes() << 0;
    QTest::newRow("date-time of no zone") << moment + '\x53' << 0;
    QTest::newRow("date-time of a zone that this machine lacks")
        << moment + '\3' + valueBytes().text(QLatin1String("Europe/Atlantis")).bytes() << 0;
    QTest::newRow("date-time of a zone without a name")
        << moment + '\3' + valueBytes().text(QString()).bytes() << 0;
    QTest::newRow("date-time of a zone of its own with a NUL for a name")
        << moment + '\3' +
               valueBytes()
                   .text(QLatin1String("OffsetFromUtc"))
                   .text(QString(1, QChar(0)))
                   .bytes() +
               QByteArray(20, '\0')
        << 0;
    QTest::newRow("date-time of a zone of its own with the name of a file")
        << moment + '\3' +
               valueBytes()
                   .text(QLatin1String("OffsetFromUtc"))
                   .text(QLatin1String("../tty"))
                   .bytes() +
               QByteArray(20, '\0')
        << 0;
    QTest::newRow("URL of the longest host")
        << url("http://" + QByteArray(1022, 'h')) << int(QMetaType::QUrl);
    QTest::newRow("URL of a host one longer") << url("http://" + QByteArray(1023, 'h') + "/") << 0;
    QTest::newRow("URL of a host one longer, no scheme") << url("//" + QByteArray(1023, 'h')) << 0;
    QTest::newRow("URL of a file with a long name")
        << url("file:///" + QByteArray(2000, 'n')) << int(QMetaType::QUrl);
    QTest::newRow("URL with two slashes far behind")
        << url("http:/" + QByteArray(2000, 'n') + "//") << int(QMetaType::QUrl);
    QTest::newRow("URL of a host of 100,000 characters")
        << url(QByteArray("http://") + QByteArray("\xe6\xbc\xa2").repeated(100000)) << 0;
    for (const char* const pattern :
         {"(a{1000}){1000}", "((a{99}){99}){99}", "[a-z]{1000}", "x{4294967295}"})
        QTest::addRow("expression of copies, %s", pattern) << expression(pattern, 0) << 0;
    QTest::newRow("expression that ends inside of a brace")
        << expression("a{2", 0) << int(QMetaType::QRegExp);
    QTest::newRow("expression, 100,000 deep") << expression(QByteArray(100000, '('), 0) << 0;
    QTest::newRow("expression that looks ahead, 60 deep")
        << expression(QByteArray("(?=").repeated(60), 0) << 0;
    QTest::newRow("expression of 1,000 stars") << expression(QByteArray(1000, '*'), 1) << 0;
    QTest::newRow("expression of the last syntax")
        << expression("a", QRegExp::W3CXmlSchema11) << int(QMetaType::QRegExp);
    QTest::newRow("expression of a syntax that there is not") << expression("a", 6) << 0;
    QTest::newRow("type that there is not") << taggedCount(-1, 5) << 0;
    QTest::newRow("type of a name that there is not")
        << valueBytes().number(own_tag).flag(false).number(8).bytes() + QByteArray("Nothing", 8)
        << 0;
    QTest::newRow("negative type") << taggedCount(40 - 97, 5) << 0;
}

void TestDamagedValue::damaged()
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

void TestDamagedValue::deepestValue_data()
{
    QTest::addColumn<QByteArray>("around"); // one value
    QTest::newRow("lists") << taggedCount(list_tag, 1);
    const QByteArray key = valueBytes().text(QLatin1String("k")).bytes();
    QTest::newRow("maps") << taggedCount(map_tag, 1) + key;
    QTest::newRow("hashes") << taggedCount(hash_tag, 1) + key;
}

void TestDamagedValue::deepestValue()
{
    QFETCH(QByteArray, around);
    const StreamFormat format;
    const QByteArray number = writtenByQt(5, format);
    const QByteArray deep = around.repeated(deepest_value) + number;
    const ReadResult read = readValue(deep, format);
    QCOMPARE(writtenByQt(read.value, format), deep);
    QCOMPARE(read.status, QDataStream::Ok);
    const QByteArray deeper = around + deep;
    const ReadResult cut = readValue(deeper, format);
    QVERIFY(writtenByQt(cut.value, format) != deeper);
    QCOMPARE(cut.status, QDataStream::ReadCorruptData);
}

void TestDamagedValue::listThatIsCutKeepsWhatCame()
{
    const StreamFormat format;
    const QByteArray whole = writtenByQt(QVariantList{11, 12, 13}, format);
    QCOMPARE(readValue(whole.chopped(9), format).value, QVariant(QVariantList{11, 12}));
    // The number was not read, its type was.
    const ReadResult cut = readValue(whole.chopped(1), format);
    QCOMPARE(cut.value, QVariant(QVariantList{11, 12, 0}));
    QCOMPARE(cut.status, QDataStream::ReadPastEnd);
}

// Only Qt's own reader looks at them.
void TestDamagedValue::bitsBehindTheLast()
{
    const ReadResult read = readValue(taggedCount(bits_tag, 3) + '\x0f', StreamFormat());
    QCOMPARE(read.value, QVariant(QBitArray()));
    QCOMPARE(read.status, QDataStream::ReadCorruptData);
}

void TestDamagedValue::typesThatQt4CountsDifferently_data()
{
    QTest::addColumn<QByteArray>("start"); // type, and the name of one that is not Qt's own
    QTest::addColumn<bool>("is_of_qt4");
    const QByteArray name =
        valueBytes().flag(false).number(12).bytes() + QByteArray("signed char", 12);
    const QByteArray no_name = valueBytes().flag(false).bytes();
    QTest::newRow("long, Qt 4") << valueBytes().number(129).bytes() + no_name << true;
    QTest::newRow("a name, Qt 4") << valueBytes().number(127).bytes() + name << true;
    QTest::newRow("a name, Qt 5") << valueBytes().number(own_tag).bytes() + name << false;
}

void TestDamagedValue::typesThatQt4CountsDifferently()
{
    QFETCH(QByteArray, start);
    QFETCH(bool, is_of_qt4);
    const int first_version_of_qt5 = 13;
    for (int version = QDataStream::Qt_4_2; version <= QDataStream::Qt_5_15; ++version) {
        const StreamFormat format{version, QDataStream::BigEndian, QDataStream::DoublePrecision};
        const ReadResult read = readValue(start + QByteArray(8, '\7'), format);
        const bool is_known = is_of_qt4 == (version < first_version_of_qt5);
        QCOMPARE(read.value.isValid(), is_known);
        QCOMPARE(read.status, is_known ? QDataStream::Ok : QDataStream::ReadCorruptData);
    }
}

// Kinds of time that there are not ended the process, in Qt's reader or its writer.
void TestDamagedValue::kindsOfTime()
{
    for (int version = QDataStream::Qt_4_0; version <= QDataStream::Qt_5_15; ++version) {
        const StreamFormat format{version, QDataStream::BigEndian, QDataStream::DoublePrecision};
        QByteArray moment = writtenByQt(QDateTime(QDate(2024, 2, 29), QTime(1, 2)), format);
        for (int kind = -128; kind < 128; ++kind) {
            moment[moment.size() - 1] = char(kind);
            const QByteArray stored =
                moment + valueBytes().number(0).text(QLatin1String("Etc/UTC")).bytes();
            const ReadResult read = readValue(stored, format);
            QVERIFY(!read.value.isValid() || (kind >= -1 && kind <= 4));
            QCOMPARE(read.value.isValid(), read.status == QDataStream::Ok);
            if (read.value.isValid())
                QVERIFY(!writtenByQt(read.value, format).isEmpty());
        }
    }
}

// Each compiles to some kilobytes: of very many in one record, only the first come back.
void TestDamagedValue::expressionsOfOneRecord()
{
    const int count = 3000;
    PropertyTovikIot root;
    for (int i = 0; i < count; ++i)
        root.dataitems.append(itemWith(QRegExp(QString::number(i))));
    QByteArray stored;
    QDataStream writer(&stored, QIODevice::WriteOnly);
    writer << root;
    QDataStream reader(stored);
    PropertyTovikIot read;
    reader >> read;
    QCOMPARE(read.dataitems.size(), count);
    QCOMPARE(reader.status(), QDataStream::ReadCorruptData);
    int valid = 0;
    while (valid < count - 1 && read.dataitems[valid].value.isValid()) {
        QCOMPARE(read.dataitems[valid].value, root.dataitems[valid].value);
        ++valid;
    }
    QVERIFY(valid > 500);
    QVERIFY(valid < 1500);
    QVERIFY(!read.dataitems[count - 1].value.isValid());
    QCOMPARE(read.dataitems[count - 1].length, 1); // what stands after a value is read
}

QTEST_GUILESS_MAIN(TestDamagedValue)
#include "tst_damaged_value.moc"
