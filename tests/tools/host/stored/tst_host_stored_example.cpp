#include "tests/tools/host/stored/stored_samples.h"
#include "tools/host/stored/stream.h"

#include <QTest>

using namespace tovik_host::stored;

namespace {

/// The blocks between fences under a heading of the guide.
QList<QByteArray> blocksUnder(const QByteArray& heading)
{
    QFile guide(QStringLiteral(TOVIK_CONFIGURATION_GUIDE));
    QList<QByteArray> blocks;
    if (!guide.open(QIODevice::ReadOnly))
        return blocks;
    bool is_there = false;
    bool in_block = false;
    for (const QByteArray& line : guide.readAll().split('\n')) {
        if (line.startsWith("```")) {
            in_block = !in_block;
            if (in_block && is_there)
                blocks << QByteArray();
        } else if (in_block && is_there) {
            blocks.last() += line + '\n';
        } else if (line.startsWith('#')) {
            is_there = line == heading;
        }
    }
    return blocks;
}

/// The bytes of a dump whose lines say offset, bytes and meaning, with two blanks between them.
QByteArray bytesOf(const QByteArray& dump)
{
    QByteArray bytes;
    for (const QByteArray& line : dump.split('\n')) {
        if (line.isEmpty())
            continue;
        if (line.left(4).trimmed().toInt() != bytes.size())
            return "wrong offset: " + line;
        bytes += QByteArray::fromHex(line.mid(6, 35));
    }
    return bytes;
}

} // namespace

class TestHostStoredExample : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bytesAreThoseOfTheRecord();
};

// The guide's bytes are what Qt writes of the guide's JSON, and what convert makes of them again.
void TestHostStoredExample::bytesAreThoseOfTheRecord()
{
    const QList<QByteArray> blocks = blocksUnder("### An example");
    QCOMPARE(blocks.size(), 2);
    const tovik_host::config::JsonFile json = jsonFile(blocks.at(0));
    const PropertyTovikIot record = recordFromJson(json);
    const Hints hints = formatFromJson(json);
    const std::vector<Format> formats = possibleFormats(hints);
    QCOMPARE(formats.size(),
             std::size_t(2)); // the JSON does not say that the precision is the usual one
    const Format format = formats.front();
    const QByteArray bytes = bytesOf(blocks.at(1));
    QCOMPARE(bytes.toHex(), written(record, format).toHex());
    QCOMPARE(bytes.toHex(), writtenByQt(record, format).toHex());
    const Detected detected = detect(bytes, Hints());
    Hints found = hints;
    found.versions = detected.versions;
    found.big_endian = detected.format.big_endian;
    tovik_host::value::OrderedJson again = tovik_host::value::OrderedJson::object();
    again["stream"] = formatToJson(found);
    again["tovik_iot"] = recordToJson(detected.reading.record);
    QCOMPARE(tovik_host::value::jsonText(again).toUtf8(), blocks.at(0));
}

QTEST_GUILESS_MAIN(TestHostStoredExample)
#include "tst_host_stored_example.moc"
