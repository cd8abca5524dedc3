#include "tests/property/address_space.h"
#include "tests/property/records.h"
#include "tests/property/stream_bytes.h"
#include "tests/tools/host/stored/stored_samples.h"
#include "tools/host/stored/stream.h"

#include <QDataStream>
#include <QTest>

#include <random>

using namespace tovik_host::stored;

namespace {

const Format usual = {false, 12, true, false};

/// In KiB; far below what any damaged count or length asks for.
const qint64 allowed_growth = 64 * 1024;

StreamBytes usualBytes()
{
    return StreamBytes(StreamFormat{12, QDataStream::BigEndian, QDataStream::DoublePrecision});
}

/// The members before the lists of a record with empty texts.
StreamBytes start()
{
    StreamBytes bytes = usualBytes();
    bytes.flag(false).text(QString()).number(0).text(QString()).text(QString()).text(QString());
    return bytes;
}

/// The first members of an item, up to its value.
QByteArray itemUpToValue()
{
    return usualBytes().text(QString()).text(QString()).text(QString()).number(1).bytes();
}

/// The rest of it.
QByteArray itemBehindValue()
{
    return usualBytes().number(0).flag(false).number(0).flag(false).bytes();
}

/// A record with one served item that has this value.
QByteArray withValue(const QByteArray& value)
{
    return start().number(0).number(1).bytes() + itemUpToValue() + value + itemBehindValue();
}

int lengthOf(const PropertyTovikIot& record)
{
    return written(record, usual).size();
}

} // namespace

class TestHostStoredDamage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cutAtEveryByte_data();
    void cutAtEveryByte();
    void keepsWhatCanBeRead();
    void turnedBits_data();
    void turnedBits();
    void damagedCountsTakeNoMemory_data();
    void damagedCountsTakeNoMemory();
    void namesOffsetAndMember_data();
    void namesOffsetAndMember();
    void readsOnBehindWrongFlags();
    void keepsTheFirstProblemAndTheLast();
    void listsInListsEndSomewhere();
};

void TestHostStoredDamage::cutAtEveryByte_data()
{
    QTest::addColumn<Format>("format");
    QTest::newRow("record of Qt 4.8") << usual;
    QTest::newRow("variant of Qt 4.8") << Format{true, 12, true, false};
    QTest::newRow("little variant of Qt 5") << Format{true, 19, false, false};
    QTest::newRow("record of Qt 4.0") << Format{false, 7, false, false};
}

// Whatever is missing is said at its place, and all before it is kept; the format is still found.
void TestHostStoredDamage::cutAtEveryByte()
{
    QFETCH(Format, format);
    PropertyTovikIot record = filledRoot(1, 1);
    record.dataitems << recordWith(driverValues().mid(0, 9)).dataitems;
    const QByteArray whole = writtenByQt(record, format);
    for (int size = 0; size < whole.size(); ++size) {
        const QByteArray cut = whole.left(size);
        const Reading reading = readDamaged(cut, format);
        QCOMPARE(reading.problems.size(), 1);
        const Problem& problem = reading.problems.first();
        // The value that is cut begins at or before the end, and no byte before it is lost.
        QVERIFY(problem.offset <= size);
        QVERIFY(reading.reach == size || reading.reach == problem.offset);
        const Detected detected = detect(cut, Hints());
        QVERIFY(!detected.reading.problems.isEmpty());
        QVERIFY(detected.ambiguity.isEmpty());
        const int header = format.is_variant ? 26 : 0;
        if (size < header + 6) // nothing tells form and order yet
            continue;
        QCOMPARE(detected.format.is_variant, format.is_variant);
        QCOMPARE(detected.format.big_endian, format.big_endian);
        QVERIFY(detected.versions.contains(format.version));
        if (size < whole.size() / 2) // few values, which may fit another version as well
            continue;
        QCOMPARE(detected.reading.problems.first().offset, problem.offset);
        QCOMPARE(detected.reading.problems.first().member, problem.member);
    }
}

// What stands before a cut is kept: all that is whole, in each element as far as it came.
void TestHostStoredDamage::keepsWhatCanBeRead()
{
    const PropertyTovikIot record = filledRoot(2, 2);
    const QByteArray whole = writtenByQt(record, usual);
    const QStringList all = describe(record);
    int most = 0;
    for (int size = 0; size < whole.size(); ++size) {
        const Reading read = readDamaged(whole.left(size), usual);
        int known = read.known;
        QVERIFY(known >= most); // a longer piece never gives less
        most = known;
        // The lines of the counts differ; of the others the known ones stand as in the whole.
        const int counts = 2 + 2;
        int same = 0;
        for (const QString& line : describe(read.record))
            same += all.contains(line) ? 1 : 0;
        QVERIFY(same >= known - counts);
        // All others have their defaults.
        QCOMPARE(jsonTextOf(recordFromJson(jsonFile(jsonTextOf(read.record, read.known)))),
                 jsonTextOf(read.record));
    }
    QCOMPARE(most, 8 + 2 * 8 + 9 + 2 * 9 - 1);
}

void TestHostStoredDamage::turnedBits_data()
{
    QTest::addColumn<uint>("seed");
    for (uint seed = 1; seed <= 4; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

// A stream with some wrong bits is read to some end: in bounded memory, with offsets in the file,
// and with a record that can be written.
void TestHostStoredDamage::turnedBits()
{
    QFETCH(uint, seed);
    PropertyTovikIot record = filledRoot(2, 2);
    record.dataitems << recordWith(allValues()).dataitems;
    const QByteArray whole = writtenByQt(record, {true, 12, true, false});
    std::mt19937 random(seed);
    const qint64 before = peakAddressSpace();
    QVERIFY(before > 0);
    int damaged = 0;
    for (int round = 0; round < 80; ++round) {
        QByteArray bytes = whole;
        for (int turned = 0; turned < 1 + round % 4; ++turned) {
            const int place = int(random() % uint(bytes.size()));
            bytes[place] = char(bytes.at(place) ^ (1 << random() % 8));
        }
        const Detected detected = detect(bytes, Hints());
        damaged += detected.reading.problems.isEmpty() ? 0 : 1;
        for (const Problem& problem : detected.reading.problems)
            QVERIFY(problem.offset >= 0 && problem.offset <= bytes.size());
        const PropertyTovikIot& record_read = detected.reading.record;
        QVERIFY(readWhole(contentOf(record_read), {false, all_versions.last, true, false}));
        const PropertyTovikIot again = recordFromJson(jsonFile(jsonTextOf({record_read})));
        QCOMPARE(contentOf(again).toHex(), contentOf(record_read).toHex());
    }
    QVERIFY(damaged > 20);
    QVERIFY(peakAddressSpace() - before < allowed_growth);
}

void TestHostStoredDamage::damagedCountsTakeNoMemory_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("member");
    const QByteArray most = QByteArray::fromHex("7fffffff");
    QTest::newRow("text") << QByteArray(1, '\0') + QByteArray::fromHex("7ffffffe") << "host";
    QTest::newRow("text, all but null")
        << QByteArray(1, '\0') + QByteArray::fromHex("fffffffe") << "host";
    QTest::newRow("groups") << start().bytes() + most << "groups[0].group_id";
    QTest::newRow("served items") << start().number(0).bytes() + most << "dataitems[0].name";
    const QByteArray item = start().number(0).number(1).bytes() + itemUpToValue();
    const auto value = [&](const char* type) { return item + QByteArray::fromHex(type) + '\0'; };
    QTest::newRow("bytes") << value("0000000c") + most << "dataitems[0].value";
    QTest::newRow("list of texts") << value("0000000b") + most << "dataitems[0].value";
    QTest::newRow("list") << value("00000009") + most << "dataitems[0].value";
    QTest::newRow("map") << value("00000008") + most << "dataitems[0].value";
    QTest::newRow("type name") << value("0000007f") + most << "dataitems[0].value";
}

void TestHostStoredDamage::damagedCountsTakeNoMemory()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, member);
    const qint64 before = peakAddressSpace();
    QVERIFY(before > 0);
    const Reading reading = readDamaged(bytes, usual);
    QCOMPARE(reading.problems.size(), 1);
    QCOMPARE(reading.problems.first().member, member);
    QVERIFY(peakAddressSpace() - before < allowed_growth);
}

void TestHostStoredDamage::namesOffsetAndMember_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("offset");
    QTest::addColumn<QString>("member");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, const QByteArray& bytes, int offset, const char* member,
                        const char* text) {
        QTest::newRow(name) << bytes << offset << QString::fromLatin1(member)
                            << QString::fromLatin1(text);
    };
    const QByteArray good = start().number(0).number(0).bytes();
    row("ends in the first number", good.left(7), 5, "aux_value",
        "takes more than the 2 bytes that the file still has");
    row("ends before a count", good.left(21), 21, "groups",
        "takes more than the 0 bytes that the file still has");
    row("text with half a character", QByteArray(1, '\0') + QByteArray::fromHex("00000003414243"),
        1, "host", "a text has two bytes for each character,");
    row("bytes after the record", good + "xyz", 29, "",
        "3 bytes stand after the end of the record");
    row("flag", QByteArray("\x02") + good.mid(1), 0, "aux_flag",
        "02 stands here, where Qt writes 01");
    row("null flag", withValue(QByteArray::fromHex("000000020500000001")), 49, "dataitems[0].value",
        "05 stands here, where Qt writes 01");
    row("value's flag", withValue(QByteArray::fromHex("000000010009")), 50, "dataitems[0].value",
        "09 stands here, where Qt writes 01");
    row("text after no value",
        withValue(QByteArray::fromHex("0000000001") +
                  usualBytes().text(QStringLiteral("x")).bytes()),
        50, "dataitems[0].value", "00 stands here, where Qt writes ff");
    row("type that Qt 4.8 numbers otherwise", withValue(QByteArray::fromHex("00000021000001")), 48,
        "dataitems[0].value", "21 stands here, where Qt writes 82");
    row("type that is none", withValue(QByteArray::fromHex("7000000000")), 45, "dataitems[0].value",
        "a value of type 1879048192 that the driver does not read,");
}

void TestHostStoredDamage::namesOffsetAndMember()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, offset);
    QFETCH(QString, member);
    QFETCH(QString, text);
    const Reading reading = readDamaged(bytes, usual);
    QVERIFY(!reading.problems.isEmpty());
    const Problem& problem = reading.problems.first();
    QCOMPARE(problem.member, member);
    QVERIFY2(problem.text.startsWith(text), qPrintable(problem.text));
    QCOMPARE(problem.offset, offset);
}

void TestHostStoredDamage::readsOnBehindWrongFlags()
{
    QByteArray bytes = writtenByQt(filledRoot(1, 2), usual);
    bytes[0] = '\x80';
    const Reading reading = readDamaged(bytes, usual);
    QCOMPARE(reading.problems.size(), 1);
    QCOMPARE(describe(reading.record), describe(filledRoot(1, 2)));
}

void TestHostStoredDamage::keepsTheFirstProblemAndTheLast()
{
    PropertyTovikIot record;
    for (int i = 0; i < 100; ++i)
        record.dataitems << PropertyTovikIotDataItem();
    QByteArray bytes = written(record, usual);
    const int item_size = (lengthOf(record) - lengthOf(PropertyTovikIot())) / 100;
    for (int i = 1; i <= 100; ++i)
        bytes[lengthOf(PropertyTovikIot()) + i * item_size - 1] = '\x07';
    bytes.chop(1);
    const Reading reading = readDamaged(bytes, usual);
    QCOMPARE(reading.problems.size(), 2);
    QCOMPARE(reading.problems.first().member, QStringLiteral("dataitems[0].marked"));
    QCOMPARE(reading.problems.last().offset, bytes.size());
    QCOMPARE(reading.problems.last().member, QStringLiteral("dataitems[99].marked"));
}

void TestHostStoredDamage::listsInListsEndSomewhere()
{
    QByteArray value;
    for (int depth = 0; depth < 100000; ++depth)
        value += QByteArray::fromHex("000000090000000001");
    const Reading reading = readDamaged(withValue(value), usual);
    QCOMPARE(reading.problems.size(), 1);
    QCOMPARE(
        reading.problems.first().text,
        QStringLiteral("a value of type 9 (QVariantList) that the driver does not read, or that "
                       "holds such a value, or lists more than 32 deep in one another"));
    QCOMPARE(reading.problems.first().offset, 45);
}

QTEST_GUILESS_MAIN(TestHostStoredDamage)
#include "tst_host_stored_damage.moc"
