#include "tests/property/records.h"
#include "tests/property/value_bytes.h"

#include <QBitArray>
#include <QDateTime>
#include <QLineF>
#include <QLocale>
#include <QRectF>
#include <QRegExp>
#include <QRegularExpression>
#include <QSet>
#include <QTest>
#include <QTimeZone>
#include <QUrl>
#include <QUuid>

namespace {

/// The version of a stream of Qt 1.
const int oldest_version = 1;

QList<int> numbersUpTo(int last)
{
    QList<int> numbers;
    for (int i = 0; i <= last; ++i)
        numbers.append(i);
    return numbers;
}

QVariant readByQt(const QByteArray& stored, const StreamFormat& format)
{
    QDataStream stream(stored);
    format.applyTo(&stream);
    QVariant value;
    stream >> value;
    return value;
}

} // namespace

class TestValueStream : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsWhatQtWrites_data();
    void readsWhatQtWrites();
    void numbersOfQt3();
    void recordOfQt3_data();
    void recordOfQt3();
    void laterOfTwoKeysCounts();
    void whatFollowsIsRead();
};

void TestValueStream::readsWhatQtWrites_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<int>("since"); // the first version that keeps it
    QTest::newRow("none") << QVariant() << int(QDataStream::Qt_4_0);
    QTest::newRow("bool") << QVariant(true) << int(QDataStream::Qt_4_0);
    QTest::newRow("char") << QVariant::fromValue('\xfe') << int(QDataStream::Qt_4_0);
    QTest::newRow("signed char") << QVariant::fromValue<signed char>(-7)
                                 << int(QDataStream::Qt_4_0);
    QTest::newRow("unsigned char") << QVariant::fromValue<uchar>(254) << int(QDataStream::Qt_4_0);
    QTest::newRow("short") << QVariant::fromValue<short>(-2) << int(QDataStream::Qt_4_0);
    QTest::newRow("unsigned short")
        << QVariant::fromValue<ushort>(65535) << int(QDataStream::Qt_4_0);
    QTest::newRow("int") << QVariant(-2) << int(QDataStream::Qt_4_0);
    QTest::newRow("unsigned int") << QVariant(4294967295u) << int(QDataStream::Qt_4_0);
    QTest::newRow("long") << QVariant::fromValue(-3L) << int(QDataStream::Qt_4_0);
    QTest::newRow("unsigned long") << QVariant::fromValue(3UL) << int(QDataStream::Qt_4_0);
    QTest::newRow("long long") << QVariant(Q_INT64_C(-5000000000)) << int(QDataStream::Qt_4_0);
    QTest::newRow("unsigned long long")
        << QVariant(Q_UINT64_C(18446744073709551615)) << int(QDataStream::Qt_4_0);
    QTest::newRow("float") << QVariant::fromValue(-12.625f) << int(QDataStream::Qt_4_0);
    QTest::newRow("double") << QVariant(0.5) << int(QDataStream::Qt_4_0);
    QTest::newRow("character") << QVariant(QChar(0x263A)) << int(QDataStream::Qt_4_0);
    QTest::newRow("text") << QVariant(QString::fromLatin1("a\xe9")) << int(QDataStream::Qt_4_0);
    QTest::newRow("null text") << QVariant(QString()) << int(QDataStream::Qt_4_0);
    QTest::newRow("null number") << QVariant(QVariant::Int) << int(QDataStream::Qt_4_0);
    QTest::newRow("null list") << QVariant(QVariant::List) << int(QDataStream::Qt_4_0);
    QTest::newRow("bytes") << QVariant(QByteArray("\0\xff", 2)) << int(QDataStream::Qt_4_0);
    QTest::newRow("date") << QVariant(QDate(2024, 2, 29)) << int(QDataStream::Qt_4_0);
    QTest::newRow("time of day") << QVariant(QTime(23, 59, 58, 7)) << int(QDataStream::Qt_4_0);
    QTest::newRow("texts") << QVariant(QStringList{QString(), QLatin1String("b")})
                           << int(QDataStream::Qt_4_0);
    QTest::newRow("list of lists")
        << QVariant(QVariantList{1, nestedList(2), QVariant()}) << int(QDataStream::Qt_4_0);
    QTest::newRow("map") << QVariant(QVariantMap{{QLatin1String("a"), 1},
                                                 {QLatin1String("b"), nestedList(1)}})
                         << int(QDataStream::Qt_4_0);
    QTest::newRow("hash") << QVariant(QVariantHash{{QLatin1String("a"), true},
                                                   {QLatin1String("b"), 2.5}})
                          << int(QDataStream::Qt_4_0);
    const QDate day(2024, 2, 29);
    const QTime clock(23, 59, 58, 7);
    const QTimeZone own_zone("Own/Zone", 7200, QLatin1String("name"), QLatin1String("OZ"));
    const auto add = [](const char* name, const QVariant& value, int since = QDataStream::Qt_4_0) {
        QTest::newRow(name) << value << since;
    };
    add("local date-time", QDateTime(day, clock));
    add("date-time, UTC", QDateTime(day, clock, Qt::UTC));
    add("date-time, offset", QDateTime(day, clock, Qt::OffsetFromUTC, 3600), QDataStream::Qt_5_2);
    add("date-time, zone", QDateTime(day, clock, QTimeZone("Europe/Berlin")), QDataStream::Qt_5_2);
    add("date-time, zone by offset", QDateTime(day, clock, QTimeZone(10800)), QDataStream::Qt_5_2);
    add("date-time, zone of its own", QDateTime(day, clock, own_zone), QDataStream::Qt_5_2);
    add("no date-time", QDateTime());
    add("URL", QUrl(QString::fromUtf8("https://user@h\xc3\xa4.example:8/a%20b?c=d#e")));
    add("URL of a file", QUrl(QLatin1String("file:///a//b")));
    add("no URL", QUrl());
    QBitArray bits(8011);
    bits.setBit(3);
    bits.setBit(8010);
    add("bits", bits);
    add("no bits", QBitArray());
    add("one bit", QBitArray(1, true));
    add("bits of one byte", QBitArray(8, true));
    add("bits of a kilobyte", QBitArray(8192, true));
    add("bits of a kilobyte and a byte", QBitArray(8193, true));
    add("size", QSize(3, -4));
    add("size, real", QSizeF(0.1, -4.5));
    add("point", QPoint(70000, -2));
    add("point, real", QPointF(0.1, -4.5));
    add("rectangle", QRect(1, -2, 3, 4));
    add("rectangle, real", QRectF(0.1, -2.5, 3, 4));
    add("line", QLine(1, -2, 3, 4));
    add("line, real", QLineF(0.1, -2.5, 3, 4));
    add("UUID", QUuid(0x67C8770B, 0x44F1, 0x410A, 0xAB, 0x9A, 0xF9, 0xB5, 0x44, 0x6F, 0x13, 0xEE));
    add("locale", QLocale(QLatin1String("de_AT")));
    add("expression", QRegExp(QLatin1String("^(\\d{1,3}\\.){3}\\d{1,3}$"), Qt::CaseInsensitive));
    add("expression, wildcard",
        QRegExp(QLatin1String("*.[ch]"), Qt::CaseSensitive, QRegExp::Wildcard));
    add("expression as Perl has it",
        QRegularExpression(QLatin1String("(a+)+$"), QRegularExpression::CaseInsensitiveOption));
    add("list of them", QVariantList{QUrl(QLatin1String("http://a")), bits, QPoint(1, 2)});
}

void TestValueStream::readsWhatQtWrites()
{
    QFETCH(QVariant, value);
    QFETCH(int, since);
    for (int version = oldest_version; version <= QDataStream::Qt_5_15; ++version) {
        for (const auto order : {QDataStream::BigEndian, QDataStream::LittleEndian}) {
            const StreamFormat format{version, order, QDataStream::DoublePrecision};
            const QByteArray stored = writtenByQt(value, format);
            const QVariant expected = readByQt(stored, format);
            const ReadResult read = readValue(stored, format);
            QCOMPARE(read.value.userType(), expected.userType());
            QCOMPARE(read.value, expected);
            QCOMPARE(read.value.isNull(), expected.isNull());
            QCOMPARE(writtenByQt(read.value, format).toHex(),
                     writtenByQt(expected, format).toHex());
            QCOMPARE(read.status, QDataStream::Ok);
            QCOMPARE(read.left, qint64(0));
            if (version < since)
                continue;
            QCOMPARE(read.value.userType(), value.userType());
            QCOMPARE(read.value, value);
            // Before Qt 4.2 a stream did not say so of values that cannot be null themselves.
            if (version >= QDataStream::Qt_4_2)
                QCOMPARE(read.value.isNull(), value.isNull());
        }
    }
}

// Types of a user interface are not read, and numbers from 36 on mean nothing.
void TestValueStream::numbersOfQt3()
{
    const QSet<int> refused{5, 6, 7, 10, 11, 13, 15, 21, 22, 23, 24, 25, 31, 32, 35, 36, 127, 1024};
    for (const int version : {1, 4, 5, 6}) {
        const StreamFormat format{version, QDataStream::BigEndian, QDataStream::DoublePrecision};
        for (const int number : QList<int>{127, 1024} + numbersUpTo(36)) {
            const QByteArray stored = valueBytes().number(number).bytes() + QByteArray(20, '\0');
            const ReadResult read = readValue(stored, format);
            QCOMPARE(read.status != QDataStream::Ok, refused.contains(number));
            if (refused.contains(number)) {
                QVERIFY(!read.value.isValid());
                continue;
            }
            QDataStream by_qt(stored);
            format.applyTo(&by_qt);
            QVariant expected;
            by_qt >> expected;
            QCOMPARE(read.value.userType(), expected.userType());
            QCOMPARE(read.value, expected);
            QCOMPARE(read.left, by_qt.device()->bytesAvailable());
        }
    }
}

void TestValueStream::recordOfQt3_data()
{
    QTest::addColumn<StreamFormat>("format");
    QTest::addColumn<QByteArray>("stored");
    // Three texts, a length, the value (true), a number, a flag, a number, a flag.
    QTest::newRow("version 1, big endian")
        << StreamFormat{1, QDataStream::BigEndian, QDataStream::DoublePrecision}
        << QByteArray("00000002 54e9 00000000 00000001 42 00000007"
                      "00000012 01 00000003 01 0000000b 01");
    QTest::newRow("version 4, big endian")
        << StreamFormat{4, QDataStream::BigEndian, QDataStream::DoublePrecision}
        << QByteArray("00000004 005400e9 ffffffff 00000002 0042 00000007"
                      "00000012 01 00000003 01 0000000b 01");
    QTest::newRow("version 6, little endian")
        << StreamFormat{6, QDataStream::LittleEndian, QDataStream::DoublePrecision}
        << QByteArray("04000000 5400e900 ffffffff 02000000 4200 07000000"
                      "12000000 01 03000000 01 0b000000 01");
}

void TestValueStream::recordOfQt3()
{
    QFETCH(StreamFormat, format);
    QFETCH(QByteArray, stored);
    PropertyTovikIotDataItem expected = itemWith(true);
    expected.name = QString::fromLatin1("T\xe9");
    expected.type = QLatin1String("B");
    expected.length = 7;
    expected.cloud_status = 3;
    expected.alert = expected.marked = true;
    expected.update_time = 11;
    QDataStream reader(QByteArray::fromHex(stored));
    format.applyTo(&reader);
    PropertyTovikIotDataItem item;
    reader >> item;
    QCOMPARE(describe(item), describe(expected));
    QCOMPARE(item.dataitem_id.isNull(), format.version > 1); // then there were no null texts
    QVERIFY(reader.atEnd());
    QCOMPARE(reader.status(), QDataStream::Ok);
}

void TestValueStream::laterOfTwoKeysCounts()
{
    const QByteArray entry = valueBytes().text(QLatin1String("k")).variant(1).bytes();
    const QByteArray later = valueBytes().text(QLatin1String("k")).variant(2).bytes();
    for (const int type : {map_tag, hash_tag}) {
        const ReadResult read = readValue(taggedCount(type, 2) + entry + later, StreamFormat());
        QCOMPARE(read.value.toMap(), (QVariantMap{{QLatin1String("k"), 2}}));
        QCOMPARE(read.status, QDataStream::Ok);
        QCOMPARE(read.left, qint64(0));
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
