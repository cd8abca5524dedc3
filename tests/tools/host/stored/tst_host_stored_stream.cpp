#include "tests/property/records.h"
#include "tests/tools/host/stored/stored_samples.h"
#include "tools/host/stored_reader.h"
#include "tools/host/stored_writer.h"

#include <QtTest>

using namespace tovik_host;

class TestHostStoredStream : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsWhatTheLibraryReads_data() { addStoredFormatRows(); }
    void readsWhatTheLibraryReads();
    void keepsEveryValue_data() { addStoredFormatRows(); }
    void keepsEveryValue();
    void keepsFlagsOfNullVariants_data() { addStoredFormatRows(); }
    void keepsFlagsOfNullVariants();
    void readsRecordedStreams_data();
    void readsRecordedStreams();
    void refusesToWriteWhatTheFormatLacks();
    void keepsBitsOfFloatingNumbers_data();
    void keepsBitsOfFloatingNumbers();
    void reportsOtherTypes_data();
    void reportsOtherTypes();
};

// Every good stream gives the same record here and with the library's operators.
void TestHostStoredStream::readsWhatTheLibraryReads()
{
    QFETCH(StoredFormat, format);
    PropertyTovikIot record = filledRoot(3, 3);
    record.dataitems << recordWith(driverValues()).dataitems;
    const QByteArray bytes = writtenByQt(record, format);
    const StoredReading reading = readStored(bytes, format);
    QVERIFY2(reading.clean(), qPrintable(reading.problems.value(0).text));
    QCOMPARE(reading.end, bytes.size());
    QCOMPARE(describe(propertyOf(reading.record)), describe(readByQt(bytes, format)));
    QCOMPARE(describe(propertyOf(reading.record)), describe(record));
}

// Stream to record to JSON, and all the way back, byte for byte.
void TestHostStoredStream::keepsEveryValue()
{
    QFETCH(StoredFormat, format);
    PropertyTovikIot record = filledRoot(2, 2);
    record.dataitems << recordWith(allValues()).dataitems;
    for (const QString& text : hardTexts()) {
        PropertyTovikIotGroup group;
        group.name = text;
        record.groups << group;
    }
    const QByteArray bytes = writtenByQt(record, format);
    const StoredReading reading = readStored(bytes, format);
    QVERIFY2(reading.clean(), qPrintable(reading.problems.value(0).text));
    const QByteArray json = jsonTextOf(reading.record);
    const StoredRecord again = recordFromJson(jsonFile(json));
    QCOMPARE(jsonTextOf(again), json);
    const StoredWriting writing = writeStored(again, format);
    QCOMPARE(writing.problem, QString());
    QCOMPARE(writing.bytes.toHex(), bytes.toHex());
}

void TestHostStoredStream::keepsFlagsOfNullVariants()
{
    QFETCH(StoredFormat, format);
    const PropertyTovikIot record =
        recordWith({QVariant(QVariant::Int), QVariant(QVariant::String)});
    const QByteArray bytes = writtenByQt(record, format);
    const StoredReading reading = readStored(bytes, format);
    QVERIFY(reading.clean());
    QCOMPARE(reading.record.dataitems.front().value.null_flag, format.hasNullFlag());
    const StoredRecord again = recordFromJson(jsonFile(jsonTextOf(reading.record)));
    QCOMPARE(writeStored(again, format).bytes.toHex(), bytes.toHex());
}

void TestHostStoredStream::readsRecordedStreams_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<StoredFormat>("format");
    for (const char* name : {"empty", "plant"}) {
        for (const int version : {7, 11, 12}) {
            for (const bool big_endian : {true, false}) {
                const QString file = QStringLiteral("%1-v%2-%3.stream")
                                         .arg(QLatin1String(name))
                                         .arg(version)
                                         .arg(QLatin1String(big_endian ? "be" : "le"));
                QTest::newRow(qPrintable(file))
                    << file << StoredFormat{StoredForm::record, version, big_endian, false};
            }
        }
    }
}

// Files that a program with Qt 4.8 wrote.
void TestHostStoredStream::readsRecordedStreams()
{
    QFETCH(QString, file);
    QFETCH(StoredFormat, format);
    QFile stream(QStringLiteral(TOVIK_RECORDED_STREAMS "/") + file);
    QVERIFY(stream.open(QIODevice::ReadOnly));
    const QByteArray bytes = stream.readAll();
    const StoredReading reading = readStored(bytes, format);
    QVERIFY(reading.clean());
    QCOMPARE(describe(propertyOf(reading.record)), describe(readByQt(bytes, format)));
    QCOMPARE(writeStored(reading.record, format).bytes.toHex(), bytes.toHex());
}

void TestHostStoredStream::refusesToWriteWhatTheFormatLacks()
{
    StoredRecord record;
    record.dataitems.resize(2);
    StoredValue& value = record.dataitems[1].value;
    value.null_flag = true;
    QCOMPARE(writeStored(record, {StoredForm::record, 7, true, false}).problem,
             QStringLiteral("dataitems[1].value: its null flag cannot be stored in stream version "
                            "7, only from version 8 (Qt 4.2) on"));
    QVERIFY(writeStored(record, {StoredForm::record, 8, true, false}).ok());
    value = StoredValue(*findValueType(QStringLiteral("double")));
    value.bits = bitsOf(0.1);
    const StoredWriting writing = writeStored(record, {StoredForm::record, 12, true, true});
    QVERIFY2(writing.problem.startsWith(QLatin1String("dataitems[1].value: the value does not fit "
                                                      "into the 4 bytes")),
             qPrintable(writing.problem));
    QVERIFY(writing.bytes.isEmpty());
    QVERIFY(writeStored(record, {StoredForm::record, 12, true, false}).ok());
}

void TestHostStoredStream::keepsBitsOfFloatingNumbers_data()
{
    QTest::addColumn<QByteArray>("bits");
    QTest::addColumn<QString>("json");
    QTest::newRow("one") << QByteArray("3ff0000000000000") << QStringLiteral("1.0");
    QTest::newRow("negative zero") << QByteArray("8000000000000000") << QStringLiteral("-0.0");
    QTest::newRow("usual not-a-number")
        << QByteArray("7ff8000000000000") << QStringLiteral("\"nan\"");
    QTest::newRow("negative not-a-number")
        << QByteArray("fff8000000000000") << QStringLiteral("\"bits:fff8000000000000\"");
    QTest::newRow("signalling not-a-number that no float has")
        << QByteArray("7ff0000000000001") << QStringLiteral("\"bits:7ff0000000000001\"");
    QTest::newRow("double that no float has")
        << QByteArray("3fb999999999999a") << QStringLiteral("\"bits:3fb999999999999a\"");
    QTest::newRow("double larger than any float")
        << QByteArray("7fe0000000000000") << QStringLiteral("\"bits:7fe0000000000000\"");
}

// What stands in the 8 bytes of a float stays, though a float would not hold it.
void TestHostStoredStream::keepsBitsOfFloatingNumbers()
{
    QFETCH(QByteArray, bits);
    QFETCH(QString, json);
    StoredRecord record;
    record.dataitems.resize(1);
    StoredValue& value = record.dataitems[0].value;
    value = StoredValue(*findValueType(QStringLiteral("float")));
    value.bits = bits.toULongLong(nullptr, 16);
    QCOMPARE(QString::fromStdString(valueToJson(value).at("value").dump()), json);
    const StoredFormat format = {StoredForm::record, 12, true, false};
    const QByteArray bytes = writeStored(record, format).bytes;
    QVERIFY(bytes.toHex().contains("00000087" + QByteArray("00") + bits));
    const StoredRecord again = readStored(bytes, format).record;
    const StoredRecord from_json = recordFromJson(jsonFile(jsonTextOf(again)));
    QCOMPARE(writeStored(from_json, format).bytes.toHex(), bytes.toHex());
}

void TestHostStoredStream::reportsOtherTypes_data()
{
    QTest::addColumn<int>("version");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("text");
    const QVariant date = QDate(2024, 1, 1);
    QTest::newRow("date, Qt 4") << 12 << date << QStringLiteral("a value of type 14 (QDate); ");
    QTest::newRow("date, Qt 5") << 19 << date << QStringLiteral("a value of type 14 (QDate); ");
    QTest::newRow("no type of Qt's") << 19 << QVariant::fromValue(PropertyTovikIot())
                                     << QStringLiteral("a value of the type \"PropertyTovikIot");
}

void TestHostStoredStream::reportsOtherTypes()
{
    QFETCH(int, version);
    QFETCH(QVariant, value);
    QFETCH(QString, text);
    const StoredFormat format = {StoredForm::variant, version, true, false};
    const QByteArray bytes = writtenByQt(recordWith({1, value, 2}), format);
    const StoredReading reading = readStored(bytes, format);
    QCOMPARE(reading.problems.size(), 1);
    const StoredProblem problem = reading.problems.first();
    QCOMPARE(problem.member, QStringLiteral("dataitems[1].value"));
    QVERIFY2(problem.text.startsWith(text), qPrintable(problem.text));
    QCOMPARE(reading.record.dataitems.size(), std::size_t(2));
    QCOMPARE(reading.record.dataitems[1].known, 4);
    QCOMPARE(reading.record.dataitems[1].name, QStringLiteral("item 1"));
}

QTEST_GUILESS_MAIN(TestHostStoredStream)
#include "tst_host_stored_stream.moc"
