#include "tests/property/records.h"
#include "tests/property/stream_bytes.h"

#include <QTest>

Q_DECLARE_METATYPE(QDataStream::ByteOrder)

namespace {

template <typename T>
QByteArray written(const T& record, const StreamFormat& format)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    format.applyTo(&stream);
    stream << record;
    return bytes;
}

template <typename T>
T readBack(const QByteArray& bytes, const StreamFormat& format, T into)
{
    QDataStream stream(bytes);
    format.applyTo(&stream);
    stream >> into;
    return stream.atEnd() && stream.status() == QDataStream::Ok ? into : T();
}

struct NamedValue
{
    const char* name;
    QVariant value;
};

QList<NamedValue> values()
{
    return QList<NamedValue>{
        {"bool false", false},
        {"bool true", true},
        {"short, smallest", QVariant::fromValue<short>(-32768)},
        {"unsigned short, largest", QVariant::fromValue<ushort>(65535)},
        {"int, smallest", QVariant(-2147483647 - 1)},
        {"unsigned int, largest", QVariant(0xffffffffu)},
        {"float", QVariant::fromValue(-12.625f)},
        {"float that is no short decimal", QVariant::fromValue(0.1f)},
        {"text", QString::fromUtf8("Gr\xc3\xbc\xc3\x9f"
                                   "e")},
        {"empty text", QString::fromLatin1("")},
        {"byte array with a zero", QByteArray("\xff\0a", 3)},
        {"none", QVariant()},
    };
}

} // namespace

class TestConfigurationStream : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaultRootIsTheseBytes_data();
    void defaultRootIsTheseBytes();
    void defaultItem_data() { addFormatRows(); }
    void defaultItem();
    void everyVariantType_data();
    void everyVariantType();
    void groups_data() { addFormatRows(); }
    void groups();
    void wholeConfiguration_data() { addFormatRows(); }
    void wholeConfiguration();
    void operatorsReturnTheStreamUnchanged_data() { addFormatRows(); }
    void operatorsReturnTheStreamUnchanged();
    void recordsFollowOneAnother();
    void equalTextsShareOneBuffer();
    void nullAndEmptyTextsStay_data();
    void nullAndEmptyTextsStay();
};

void TestConfigurationStream::defaultRootIsTheseBytes_data()
{
    QTest::addColumn<QDataStream::ByteOrder>("order");
    QTest::addColumn<QByteArray>("bytes");
    // A flag, the base URL, a number, three null texts, two counts.
    QTest::newRow("big endian")
        << QDataStream::BigEndian
        << QByteArray("00 0000002a 0068 0074 0074 0070 0073 003a 002f 002f 0063 006c 006f 0075 0064"
                      "002e 0065 0078 0061 006d 0070 006c 0065 00000000 ffffffff ffffffff ffffffff"
                      "00000000 00000000");
    QTest::newRow("little endian")
        << QDataStream::LittleEndian
        << QByteArray("00 2a000000 6800 7400 7400 7000 7300 3a00 2f00 2f00 6300 6c00 6f00 7500 6400"
                      "2e00 6500 7800 6100 6d00 7000 6c00 6500 00000000 ffffffff ffffffff ffffffff"
                      "00000000 00000000");
}

void TestConfigurationStream::defaultRootIsTheseBytes()
{
    QFETCH(QDataStream::ByteOrder, order);
    QFETCH(QByteArray, bytes);
    for (const int version : stream_versions) {
        const StreamFormat format{version, order, QDataStream::DoublePrecision};
        QCOMPARE(written(PropertyTovikIot(), format).toHex(), QByteArray::fromHex(bytes).toHex());
        QCOMPARE(StreamBytes(format).root(PropertyTovikIot()).bytes().toHex(),
                 QByteArray::fromHex(bytes).toHex());
    }
}

void TestConfigurationStream::defaultItem()
{
    QFETCH(StreamFormat, format);
    StreamBytes expected(format);
    expected.text(QString()).text(QString()).text(QLatin1String("16Bit-INT")).number(1);
    expected.variant(QString::fromLatin1("")).number(0).flag(false).number(0).flag(false);
    QCOMPARE(written(PropertyTovikIotDataItem(), format).toHex(), expected.bytes().toHex());
}

void TestConfigurationStream::everyVariantType_data()
{
    QTest::addColumn<QVariant>("value");
    for (const NamedValue& named : values())
        QTest::newRow(named.name) << named.value;
}

void TestConfigurationStream::everyVariantType()
{
    QFETCH(QVariant, value);
    const PropertyTovikIotDataItem item = itemWith(value);
    for (const int version : stream_versions) {
        for (const auto order : {QDataStream::BigEndian, QDataStream::LittleEndian}) {
            for (const auto precision :
                 {QDataStream::SinglePrecision, QDataStream::DoublePrecision}) {
                const StreamFormat format{version, order, precision};
                const QByteArray expected = StreamBytes(format).item(item).bytes();
                QCOMPARE(written(item, format).toHex(), expected.toHex());
                const auto read = readBack(expected, format, filledItem());
                QCOMPARE(read.value.userType(), value.userType());
                QCOMPARE(describe(read), describe(item));
            }
        }
    }
}

void TestConfigurationStream::groups()
{
    QFETCH(StreamFormat, format);
    for (const auto& group : {PropertyTovikIotGroup(), filledGroup(1, 0), filledGroup(2, 3)}) {
        const QByteArray expected = StreamBytes(format).group(group).bytes();
        QCOMPARE(written(group, format).toHex(), expected.toHex());
        // What the object held before, items included, is gone.
        QCOMPARE(describe(readBack(expected, format, filledGroup(9, 5))), describe(group));
    }
}

void TestConfigurationStream::wholeConfiguration()
{
    QFETCH(StreamFormat, format);
    for (const auto& root :
         {PropertyTovikIot(), filledRoot(5, 0), filledRoot(0, 4), filledRoot(4, 4)}) {
        const QByteArray expected = StreamBytes(format).root(root).bytes();
        QCOMPARE(written(root, format).toHex(), expected.toHex());
        // What the object held before, lists included, is gone.
        QCOMPARE(describe(readBack(expected, format, filledRoot(7, 7))), describe(root));
    }
}

template <typename T>
static void streamBothWays(const T& source, const StreamFormat& format)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::ReadWrite);
    format.applyTo(&stream);
    QCOMPARE(&(stream << source), &stream);
    QVERIFY(stream.device()->seek(0));
    T target;
    QCOMPARE(&(stream >> target), &stream);
    QCOMPARE(describe(target), describe(source));
    QCOMPARE(stream.version(), format.version);
    QCOMPARE(stream.byteOrder(), format.order);
    QCOMPARE(stream.floatingPointPrecision(), format.precision);
    QCOMPARE(stream.status(), QDataStream::Ok);
}

void TestConfigurationStream::operatorsReturnTheStreamUnchanged()
{
    QFETCH(StreamFormat, format);
    streamBothWays(filledItem(), format);
    streamBothWays(filledGroup(), format);
    streamBothWays(filledRoot(), format);
}

// No record reads further than its own end.
void TestConfigurationStream::recordsFollowOneAnother()
{
    QByteArray bytes;
    QDataStream writer(&bytes, QIODevice::WriteOnly);
    writer << filledRoot() << filledItem() << filledGroup() << PropertyTovikIot() << filledItem(4);

    QDataStream reader(bytes);
    PropertyTovikIot first, second;
    PropertyTovikIotGroup group;
    PropertyTovikIotDataItem item, last;
    reader >> first >> item >> group >> second >> last;
    QCOMPARE(describe(first), describe(filledRoot()));
    QCOMPARE(describe(item), describe(filledItem()));
    QCOMPARE(describe(group), describe(filledGroup()));
    QCOMPARE(describe(second), describe(PropertyTovikIot()));
    QCOMPARE(describe(last), describe(filledItem(4)));
    QVERIFY(reader.atEnd());
}

// Of a few texts that every element repeats, a large configuration keeps one copy each.
void TestConfigurationStream::equalTextsShareOneBuffer()
{
    const int texts = 16;
    PropertyTovikIot root;
    for (int i = 0; i < 3 * texts; ++i) {
        PropertyTovikIotDataItem item;
        item.type = QString::fromLatin1("type %1").arg(i % texts);
        root.dataitems.append(item);
        PropertyTovikIotGroup group;
        group.permission = QString::fromLatin1("permission %1").arg(i % texts);
        root.groups.append(group);
    }
    const StreamFormat format;
    const auto read = readBack(StreamBytes(format).root(root).bytes(), format, PropertyTovikIot());
    QCOMPARE(describe(read), describe(root));
    for (int i = texts; i < 3 * texts; ++i) {
        QCOMPARE(read.dataitems[i].type.constData(), read.dataitems[i % texts].type.constData());
        QCOMPARE(read.groups[i].permission.constData(),
                 read.groups[i % texts].permission.constData());
    }
}

void TestConfigurationStream::nullAndEmptyTextsStay_data()
{
    QTest::addColumn<QStringList>("texts");
    const QString empty = QLatin1String("");
    QTest::newRow("null after empty") << QStringList{empty, QString(), empty};
    QTest::newRow("empty after null") << QStringList{QString(), empty, QString()};
}

void TestConfigurationStream::nullAndEmptyTextsStay()
{
    QFETCH(QStringList, texts);
    PropertyTovikIot root;
    for (const QString& text : texts) {
        PropertyTovikIotDataItem item;
        item.name = item.type = text;
        root.dataitems.append(item);
        PropertyTovikIotGroup group;
        group.name = group.permission = text;
        root.groups.append(group);
    }
    const StreamFormat format;
    const QByteArray bytes = StreamBytes(format).root(root).bytes();
    const auto read = readBack(bytes, format, PropertyTovikIot());
    for (int i = 0; i < texts.size(); ++i) {
        QCOMPARE(read.dataitems[i].name.isNull(), texts[i].isNull());
        QCOMPARE(read.dataitems[i].type.isNull(), texts[i].isNull());
        QCOMPARE(read.groups[i].name.isNull(), texts[i].isNull());
        QCOMPARE(read.groups[i].permission.isNull(), texts[i].isNull());
    }
    QCOMPARE(written(read, format).toHex(), bytes.toHex());
}

QTEST_GUILESS_MAIN(TestConfigurationStream)
#include "tst_configuration_stream.moc"
