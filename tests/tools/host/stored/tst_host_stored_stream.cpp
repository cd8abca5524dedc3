#include "tests/property/records.h"
#include "tests/tools/host/stored/stored_samples.h"
#include "tools/host/stored/stream.h"

#include <QDataStream>
#include <QEasingCurve>
#include <QTest>

#include <algorithm>

using namespace tovik_host::stored;

class TestHostStoredStream : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsWhatTheLibraryReads_data() { addStoredFormatRows(); }
    void readsWhatTheLibraryReads();
    void readsMemberByMember_data() { addStoredFormatRows(); }
    void readsMemberByMember();
    void keepsEveryValue_data() { addStoredFormatRows(); }
    void keepsEveryValue();
    void keepsFlagsOfNullVariants_data() { addStoredFormatRows(); }
    void keepsFlagsOfNullVariants();
    void readsHashesInAnyOrder();
    void readsRecordedStreams_data();
    void readsRecordedStreams();
    void refusesToWriteWhatTheFormatLacks();
    void reportsOtherTypes_data();
    void reportsOtherTypes();
};

// Every good stream gives the same record here and with the library's operators.
void TestHostStoredStream::readsWhatTheLibraryReads()
{
    QFETCH(Format, format);
    PropertyTovikIot record = filledRoot(3, 3);
    record.dataitems << recordWith(driverValues()).dataitems;
    const QByteArray bytes = writtenByQt(record, format);
    const std::optional<PropertyTovikIot> read = readWhole(bytes, format);
    QVERIFY(read);
    QCOMPARE(describe(*read), describe(readByQt(bytes, format)));
    QCOMPARE(describe(*read), describe(record));
    QCOMPARE(written(*read, format).toHex(), bytes.toHex());
}

// What reads damaged streams reads a good one to the end, and finds nothing wrong.
void TestHostStoredStream::readsMemberByMember()
{
    QFETCH(Format, format);
    PropertyTovikIot record = filledRoot(2, 2);
    record.dataitems << recordWith(allValues()).dataitems;
    const QByteArray bytes = writtenByQt(record, format);
    const Reading reading = readDamaged(bytes, format);
    QVERIFY2(reading.problems.isEmpty(), qPrintable(reading.problems.value(0).text));
    QCOMPARE(reading.reach, bytes.size());
    QCOMPARE(contentOf(reading.record).toHex(), contentOf(record).toHex());
    QCOMPARE(reading.known, 8 + 2 * 8 + 9 + 2 * 9 + 9 * allValues().size());
}

// Stream to record to JSON, and all the way back, byte for byte.
void TestHostStoredStream::keepsEveryValue()
{
    QFETCH(Format, format);
    PropertyTovikIot record = filledRoot(2, 2);
    record.dataitems << recordWith(allValues()).dataitems;
    for (const QString& text : hardTexts()) {
        PropertyTovikIotGroup group;
        group.name = text;
        record.groups << group;
    }
    const QByteArray bytes = writtenByQt(record, format);
    const std::optional<PropertyTovikIot> read = readWhole(bytes, format);
    QVERIFY(read);
    const QByteArray json = jsonTextOf({*read});
    const PropertyTovikIot again = recordFromJson(jsonFile(json));
    QCOMPARE(jsonTextOf({again}), json);
    QCOMPARE(written(again, format).toHex(), bytes.toHex());
}

void TestHostStoredStream::keepsFlagsOfNullVariants()
{
    QFETCH(Format, format);
    const PropertyTovikIot record =
        recordWith({QVariant(QVariant::Int), QVariant(QVariant::String)});
    const QByteArray bytes = writtenByQt(record, format);
    const std::optional<PropertyTovikIot> read = readWhole(bytes, format);
    QVERIFY(read);
    QCOMPARE(read->dataitems.first().value.isNull(), format.version >= QDataStream::Qt_4_2);
    const PropertyTovikIot again = recordFromJson(jsonFile(jsonTextOf({*read})));
    QCOMPARE(written(again, format).toHex(), bytes.toHex());
}

// Qt keeps the entries of a hash in another order in every process.
void TestHostStoredStream::readsHashesInAnyOrder()
{
    const Format format = {false, 19, true, false};
    QVariantHash hash;
    for (int i = 0; i < 3; ++i)
        hash.insert(QString::number(i), i);
    QByteArray value = writtenByQt(recordWith({hash}), format);
    int orders = 0;
    QStringList keys = hash.keys();
    std::sort(keys.begin(), keys.end());
    do {
        QByteArray entries;
        QDataStream stream(&entries, QIODevice::WriteOnly);
        for (const QString& key : keys)
            stream << key << hash.value(key);
        QByteArray bytes = value;
        const int start = bytes.indexOf(QByteArray::fromHex("0000001c0000000003")) + 9;
        bytes.replace(start, entries.size(), entries);
        const std::optional<PropertyTovikIot> read = readWhole(bytes, format);
        QVERIFY(read);
        QCOMPARE(read->dataitems.first().value, QVariant(hash));
        ++orders;
    } while (std::next_permutation(keys.begin(), keys.end()));
    QCOMPARE(orders, 6);
}

void TestHostStoredStream::readsRecordedStreams_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<Format>("format");
    for (const char* name : {"empty", "plant"}) {
        for (const int version : {7, 11, 12}) {
            for (const bool big_endian : {true, false}) {
                const QString file = QStringLiteral("%1-v%2-%3.stream")
                                         .arg(QLatin1String(name))
                                         .arg(version)
                                         .arg(QLatin1String(big_endian ? "be" : "le"));
                QTest::newRow(qPrintable(file))
                    << file << Format{false, version, big_endian, false};
            }
        }
    }
}

// Files that a program with Qt 4.8 wrote.
void TestHostStoredStream::readsRecordedStreams()
{
    QFETCH(QString, file);
    QFETCH(Format, format);
    QFile stream(QStringLiteral(TOVIK_RECORDED_STREAMS "/") + file);
    QVERIFY(stream.open(QIODevice::ReadOnly));
    const QByteArray bytes = stream.readAll();
    const std::optional<PropertyTovikIot> read = readWhole(bytes, format);
    QVERIFY(read);
    QCOMPARE(describe(*read), describe(readByQt(bytes, format)));
    QCOMPARE(written(*read, format).toHex(), bytes.toHex());
}

void TestHostStoredStream::refusesToWriteWhatTheFormatLacks()
{
    PropertyTovikIot record = recordWith({1, QVariant(QVariant::Int)});
    QCOMPARE(firstLoss(record, {false, 7, true, false}), QStringLiteral("dataitems[1].value"));
    QCOMPARE(firstLoss(record, {false, 8, true, false}), QString());
    record = recordWith({1, 2, 0.1});
    QCOMPARE(firstLoss(record, {false, 12, true, true}), QStringLiteral("dataitems[2].value"));
    QCOMPARE(firstLoss(record, {true, 12, false, false}), QString());
    QCOMPARE(firstLoss(recordWith({0.5}), {false, 12, true, true}), QString());
}

void TestHostStoredStream::reportsOtherTypes_data()
{
    QTest::addColumn<int>("version");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("text");
    const QVariant curve = QEasingCurve();
    QTest::newRow("easing curve, Qt 4")
        << 12 << curve << QStringLiteral("a value of type 29 (QEasingCurve) ");
    QTest::newRow("easing curve, Qt 5")
        << 19 << curve << QStringLiteral("a value of type 29 (QEasingCurve) ");
    QTest::newRow("no type of Qt's") << 19 << QVariant::fromValue(PropertyTovikIot())
                                     << QStringLiteral("a value of type 1024 that ");
}

void TestHostStoredStream::reportsOtherTypes()
{
    QFETCH(int, version);
    QFETCH(QVariant, value);
    QFETCH(QString, text);
    const Format format = {true, version, true, false};
    const QByteArray bytes = writtenByQt(recordWith({1, value, 2}), format);
    const Reading reading = readDamaged(bytes, format);
    QCOMPARE(reading.problems.size(), 1);
    const Problem problem = reading.problems.first();
    QCOMPARE(problem.member, QStringLiteral("dataitems[1].value"));
    QVERIFY2(problem.text.startsWith(text), qPrintable(problem.text));
    QCOMPARE(reading.record.dataitems.size(), 2);
    QCOMPARE(reading.known, 8 + 9 + 4);
    QCOMPARE(reading.record.dataitems.at(1).name, QStringLiteral("item 1"));
}

QTEST_GUILESS_MAIN(TestHostStoredStream)
#include "tst_host_stored_stream.moc"
