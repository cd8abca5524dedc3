#include "tests/property/records.h"
#include "tests/tools/host/stored/stored_samples.h"
#include "tools/host/stored/stream.h"

#include <QDataStream>
#include <QTest>

using namespace tovik_host::stored;

class TestHostStoredDetection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheFormat_data() { addStoredFormatRows(); }
    void findsTheFormat();
    void findsVersionsBeforeQt4_data();
    void findsVersionsBeforeQt4();
    void takesWhatDoesNotMatter_data();
    void takesWhatDoesNotMatter();
    void asksWhereResultsDiffer();
    void listensToHints();
    void tellsOtherVariants();
    void tellsVariantsByTheirBeginning();
    void readsNamesOfVersions_data();
    void readsNamesOfVersions();
    void saysVersionsInWords_data();
    void saysVersionsInWords();
};

// A record that has a value of each kind can be told in every format.
void TestHostStoredDetection::findsTheFormat()
{
    QFETCH(Format, format);
    const PropertyTovikIot record = recordWith({QVariant(), QVariant::fromValue(0.5f), 0.25, true});
    const QByteArray bytes = writtenByQt(record, format);
    const Detected detected = detect(bytes, Hints());
    QCOMPARE(detected.ambiguity, QString());
    QVERIFY(detected.reading.problems.isEmpty());
    QCOMPARE(detected.format.is_variant, format.is_variant);
    QCOMPARE(detected.format.big_endian, format.big_endian);
    QVERIFY(detected.versions.contains(format.version));
    QCOMPARE(detected.format.single_precision, format.single_precision);
    for (int version = detected.versions.first; version <= detected.versions.last; ++version) {
        Format other = detected.format;
        other.version = version;
        QCOMPARE(writtenByQt(record, other).toHex(), bytes.toHex());
    }
}

void TestHostStoredDetection::findsVersionsBeforeQt4_data()
{
    QTest::addColumn<Format>("format");
    for (int version = 1; version < QDataStream::Qt_4_0; ++version) {
        for (const bool big_endian : {true, false}) {
            QTest::addRow("version %d, %s endian", version, qPrintable(choices[1].word(big_endian)))
                << Format{false, version, big_endian, false};
        }
    }
}

// They number the types of values in their own way; the record comes back byte for byte.
void TestHostStoredDetection::findsVersionsBeforeQt4()
{
    QFETCH(Format, format);
    PropertyTovikIot record = filledRoot(1, 1);
    record.dataitems << recordWith({QVariant(), true, -7, 7u, QStringLiteral("x"), 0.25}).dataitems;
    const QByteArray bytes = writtenByQt(record, format);
    const Detected detected = detect(bytes, Hints());
    QCOMPARE(detected.ambiguity, QString());
    QVERIFY(detected.reading.problems.isEmpty());
    QVERIFY(detected.versions.contains(format.version));
    QVERIFY(detected.versions.last < QDataStream::Qt_4_0);
    QCOMPARE(detected.format.big_endian, format.big_endian);
    QCOMPARE(describe(detected.reading.record), describe(readByQt(bytes, format)));
    const PropertyTovikIot again = recordFromJson(jsonFile(jsonTextOf(detected.reading.record)));
    QCOMPARE(written(again, format).toHex(), bytes.toHex());
    // Said beforehand, it is read likewise.
    Hints hints;
    hints.versions = Versions{format.version, format.version};
    QCOMPARE(rangeText(detect(bytes, hints).versions), QString::number(format.version));
}

void TestHostStoredDetection::takesWhatDoesNotMatter_data()
{
    QTest::addColumn<QList<QVariant>>("values");
    QTest::addColumn<int>("version");
    QTest::addColumn<bool>("is_variant");
    QTest::addColumn<QString>("versions");
    const QList<QVariant> plain = {true, 5, QStringLiteral("x")};
    const QList<QVariant> none;
    QTest::newRow("no items") << none << 12 << false << QStringLiteral("7-19");
    QTest::newRow("no items, variant") << none << 12 << true << QStringLiteral("8-12");
    QTest::newRow("no items, oldest variant") << none << 7 << true << QStringLiteral("7");
    QTest::newRow("types that stayed") << plain << 12 << false << QStringLiteral("8-19");
    QTest::newRow("types that stayed, Qt 5") << plain << 17 << true << QStringLiteral("13-19");
    QTest::newRow("no value") << QList<QVariant>{QVariant()} << 9 << false
                              << QStringLiteral("8-12");
    QTest::newRow("float, old") << QList<QVariant>{0.5f} << 9 << false << QStringLiteral("8-11");
    QTest::newRow("float, Qt 4.8") << QList<QVariant>{0.5f} << 12 << false << QStringLiteral("12");
}

void TestHostStoredDetection::takesWhatDoesNotMatter()
{
    QFETCH(QList<QVariant>, values);
    QFETCH(int, version);
    QFETCH(bool, is_variant);
    QFETCH(QString, versions);
    const QByteArray bytes = writtenByQt(recordWith(values), {is_variant, version, true, false});
    const Detected detected = detect(bytes, Hints());
    QVERIFY(detected.reading.problems.isEmpty());
    QCOMPARE(rangeText(detected.versions), versions);
    QVERIFY(!detected.format.single_precision);
}

void TestHostStoredDetection::asksWhereResultsDiffer()
{
    PropertyTovikIot record;
    record.host = QLatin1String("");
    record.project = record.email = record.password = record.host;
    const Format format = {false, 12, true, false};
    // Nothing but zeros: both orders give the same.
    Detected detected = detect(written(record, format), Hints());
    QVERIFY(detected.ambiguity.isEmpty());
    QVERIFY(detected.format.big_endian);
    record.aux_value = 1;
    const QByteArray bytes = written(record, format);
    detected = detect(bytes, Hints());
    QVERIFY2(detected.ambiguity.contains(QLatin1String("--byte-order big")) &&
                 detected.ambiguity.contains(QLatin1String("--byte-order little")),
             qPrintable(detected.ambiguity));
    Hints hints;
    hints.big_endian = false;
    detected = detect(bytes, hints);
    QVERIFY(detected.ambiguity.isEmpty());
    QCOMPARE(detected.reading.record.aux_value, 0x01000000);
}

void TestHostStoredDetection::listensToHints()
{
    const QByteArray bytes =
        writtenByQt(recordWith({QVariant::fromValue<short>(1)}), {false, 12, true, false});
    Hints hints;
    hints.versions = Versions{19, 19};
    const Detected detected = detect(bytes, hints);
    QVERIFY(!detected.reading.problems.isEmpty());
    QCOMPARE(rangeText(detected.versions), QStringLiteral("19"));
    QCOMPARE(detected.reading.problems.first().member, QStringLiteral("dataitems[0].value"));
}

void TestHostStoredDetection::tellsOtherVariants()
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_4_8);
    stream << quint32(127) << qint8(0) << QByteArray("Other", 6) << quint32(0);
    const Detected detected = detect(bytes, Hints());
    QCOMPARE(detected.reading.problems.size(), 1);
    const Problem problem = detected.reading.problems.first();
    QCOMPARE(problem.offset, 8); // the length of the type's name
    QCOMPARE(problem.text, QStringLiteral("no variant of PropertyTovikIot has this byte here"));
}

// The first bytes of this one are also the flag and the first text of a record.
void TestHostStoredDetection::tellsVariantsByTheirBeginning()
{
    const QByteArray whole = writtenByQt(filledRoot(1, 1), {true, 19, false, false});
    for (int size = 4; size < 60; ++size) {
        const Detected detected = detect(whole.left(size), Hints());
        QVERIFY(detected.format.is_variant);
        QVERIFY(!detected.format.big_endian);
        QVERIFY(detected.versions.contains(19));
    }
    QByteArray other = whole;
    other[9] = 'x'; // of the type's name
    const Detected detected = detect(other, Hints());
    QVERIFY(detected.format.is_variant);
    QCOMPARE(detected.reading.problems.first().offset, 9);
}

void TestHostStoredDetection::readsNamesOfVersions_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("version");
    const auto row = [](const char* text, int version) {
        QTest::newRow(text) << QString::fromLatin1(text) << version;
    };
    row("1", 1);
    row("Qt_3_3", 6);
    row("7", 7);
    row("12", 12);
    row("19", all_versions.last);
    row("Qt_4_0", 7);
    row("Qt_4_8", 12);
    row("4.8", 12);
    row("Qt 5.6", 17);
    row("5.12", 18);
    row("Qt_5_15", QDataStream::Qt_5_15);
    row("0", 0);
    row("20", 0);
    row("-12", 0);
    row("", 0);
    row("Qt_4_10", 0);
    row("Qt_6_0", 0);
    row("Qt_4", 0);
}

void TestHostStoredDetection::readsNamesOfVersions()
{
    QFETCH(QString, text);
    QFETCH(int, version);
    QCOMPARE(versionOf(text).value_or(0), version);
}

void TestHostStoredDetection::saysVersionsInWords_data()
{
    QTest::addColumn<QString>("range");
    QTest::addColumn<QString>("words");
    const auto row = [](const char* range, const char* words) {
        QTest::newRow(range) << QString::fromLatin1(range) << QString::fromLatin1(words);
    };
    row("1", "1 (Qt 1.0)");
    row("4-6", "4 to 6 (Qt 3.0 to 3.3)");
    row("12", "12 (Qt 4.6 to 4.8)");
    row("13", "13 (Qt 5.0)");
    row("8-11", "8 to 11 (Qt 4.2 to 4.5)");
    row("7-19", "7 to 19 (Qt 4.0 to 5.15)");
}

void TestHostStoredDetection::saysVersionsInWords()
{
    QFETCH(QString, range);
    QFETCH(QString, words);
    const std::optional<Versions> versions = rangeOf(range);
    QVERIFY(versions);
    QCOMPARE(rangeInWords(*versions), words);
    QCOMPARE(rangeText(*versions), range);
}

QTEST_GUILESS_MAIN(TestHostStoredDetection)
#include "tst_host_stored_detection.moc"
