#include "tests/property/records.h"
#include "tests/tools/host/stored/stored_samples.h"
#include "tools/host/stored_reader.h"
#include "tools/host/stored_writer.h"
#include "tools/host/terminal/usage_error.h"

#include <QtTest>

using namespace tovik_host;

namespace {

const StoredFormat usual = {StoredForm::record, 12, true, false};

/// A file whose one served item has this object as its value, on line 3.
QByteArray withValue(const char* value)
{
    return QByteArray("{\"tovik_iot\": {\n\"dataitems\": [{\"name\": \"A\",\n\"value\": ") + value +
           "}]}}";
}

QString errorOf(const QByteArray& text)
{
    try {
        const JsonFile file = jsonFile(text);
        recordFromJson(file);
        formatFromJson(file);
    } catch (const UsageError& error) {
        return error.message();
    }
    return QString();
}

} // namespace

class TestHostStoredJson : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hasEveryMember();
    void defaultsAreTheRecords();
    void hardTextsStay_data();
    void hardTextsStay();
    void numbersOfUsersBecomeFloats();
    void repeatedKeysStayInOrder();
    void hidesThePassword();
    void namesThePlaceOfErrors_data();
    void namesThePlaceOfErrors();
    void readsTheFormat();
};

void TestHostStoredJson::hasEveryMember()
{
    StoredRecord record;
    record.host = QStringLiteral("https://h");
    record.groups.resize(1);
    record.groups[0].dataitems.resize(1);
    StoredItem& item = record.groups[0].dataitems[0];
    item.name = QStringLiteral("A");
    item.value = StoredValue(*findValueType(QStringLiteral("ushort")));
    item.value.bits = 5;
    const std::string item_json = R"({"name":"A","dataitem_id":null,"type":"16Bit-INT","length":1,)"
                                  R"("value":{"type":"ushort","value":5},"cloud_status":0,)"
                                  R"("alert":false,"update_time":0,"marked":false})";
    const std::string json =
        R"({"aux_flag":false,"host":"https://h","aux_value":0,"project":null,"email":null,)"
        R"("password":null,"groups":[{"group_id":null,"name":null,"location":null,)"
        R"("ddLocation":null,"alert":false,"permission":"RW","marked":false,"dataitems":[)" +
        item_json + R"(]}],"dataitems":[]})";
    QCOMPARE(QString::fromStdString(recordToJson(record, HiddenTexts::none).dump()),
             QString::fromStdString(json));
}

void TestHostStoredJson::defaultsAreTheRecords()
{
    const StoredRecord record =
        recordFromJson(jsonFile("{\"tovik_iot\": {\"groups\": [{}], \"dataitems\": [{}]}}"));
    PropertyTovikIot expected;
    expected.groups << PropertyTovikIotGroup();
    expected.dataitems << PropertyTovikIotDataItem();
    QCOMPARE(describe(propertyOf(record)), describe(expected));
    QCOMPARE(writeStored(record, usual).bytes.toHex(), writtenByQt(expected, usual).toHex());
}

void TestHostStoredJson::hardTextsStay_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("json");
    const auto row = [](const char* name, const QString& text, const char* json) {
        QTest::newRow(name) << text << QString::fromUtf8(json);
    };
    row("null", QString(), "null");
    row("empty", QLatin1String(""), "\"\"");
    row("zero", QString::fromLatin1("a\0b", 3), "\"a\\u0000b\"");
    row("byte order mark", QString(QChar(0xFEFF)) + QLatin1Char('a'),
        "\"\xef\xbb\xbf"
        "a\"");
    row("pair", QString::fromUtf8("\xf0\x9f\x98\x80"), "\"\xf0\x9f\x98\x80\"");
    row("half a pair", QString(QChar(0xD83D)) + QLatin1Char('A'), "{\"utf16\":\"d83d0041\"}");
    row("pair the wrong way round", QString(QChar(0xDE00)) + QChar(0xD83D),
        "{\"utf16\":\"de00d83d\"}");
}

void TestHostStoredJson::hardTextsStay()
{
    QFETCH(QString, text);
    QFETCH(QString, json);
    QCOMPARE(QString::fromStdString(textToJson(text).dump()), json);
    const StoredRecord record =
        recordFromJson(jsonFile("{\"tovik_iot\": {\"project\": " + json.toUtf8() + "}}"));
    QCOMPARE(record.project, text);
    QCOMPARE(record.project.isNull(), text.isNull());
}

void TestHostStoredJson::numbersOfUsersBecomeFloats()
{
    const StoredRecord record =
        recordFromJson(jsonFile(withValue("{\"type\": \"float\", \"value\": 0.1}")));
    QCOMPARE(doubleOf(record.dataitems[0].value.bits), double(0.1f));
    const StoredRecord whole =
        recordFromJson(jsonFile(withValue("{\"type\": \"double\", \"value\": 3}")));
    QCOMPARE(doubleOf(whole.dataitems[0].value.bits), 3.0);
}

void TestHostStoredJson::repeatedKeysStayInOrder()
{
    const QByteArray json = withValue(R"({"type": "QVariantMap", "value": [
        ["b", {"type": "int", "value": 1}], ["a", {"type": "int", "value": 2}],
        ["b", {"type": "invalid"}]]})");
    const StoredRecord record = recordFromJson(jsonFile(json));
    const StoredRecord again = readStored(writeStored(record, usual).bytes, usual).record;
    QCOMPARE(jsonTextOf(again), jsonTextOf(record));
    const StoredValue& value = again.dataitems[0].value;
    QCOMPARE(value.texts,
             (QVector<QString>{QStringLiteral("b"), QStringLiteral("a"), QStringLiteral("b")}));
    QCOMPARE(value.elements[2].type->kind, ValueKind::nothing);
}

void TestHostStoredJson::hidesThePassword()
{
    StoredRecord record;
    record.password = QStringLiteral("secret");
    QCOMPARE(recordToJson(record, HiddenTexts::password).at("password").dump(),
             std::string("{\"hidden\":true}"));
    QCOMPARE(recordToJson(record, HiddenTexts::none).at("password").dump(),
             std::string("\"secret\""));
    record.password = QString();
    QVERIFY(recordToJson(record, HiddenTexts::password).at("password").is_null());
    QCOMPARE(errorOf("{\"tovik_iot\": {\"password\": {\"hidden\": true}}}"),
             QStringLiteral("file:1: tovik_iot.password: is hidden in this file, which show wrote: "
                            "only convert, or show --show-password, writes it"));
}

void TestHostStoredJson::namesThePlaceOfErrors_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("start");
    const auto row = [](const char* name, const QByteArray& text, const char* start) {
        QTest::newRow(name) << text << QString::fromUtf8(start);
    };
    const auto value = [&row](const char* name, const char* object, const char* start) {
        row(name, withValue(object), start);
    };
    row("member that there is not", "{\"tovik_iot\": {\n\"hosst\": \"\"}}",
        "file:2: tovik_iot.hosst: is no member of this object; it may have: aux_flag, host,");
    row("text", "{\"tovik_iot\": {\"host\": 5}}", "file:1: tovik_iot.host: must be a text");
    row("flag", "{\"tovik_iot\": {\"aux_flag\": 1}}",
        "file:1: tovik_iot.aux_flag: must be true or");
    row("number", "{\"tovik_iot\": {\"aux_value\": 2147483648}}",
        "file:1: tovik_iot.aux_value: must be a whole number from -2147483648 to 2147483647");
    row("list", "{\"tovik_iot\": {\"groups\": {}}}", "file:1: tovik_iot.groups: must be a list");
    row("element", "{\"tovik_iot\": {\"groups\": [\n5]}}",
        "file:2: tovik_iot.groups[0]: must be an object");
    row("half a unit", "{\"tovik_iot\": {\"host\": {\"utf16\": \"d8\"}}}",
        "file:1: tovik_iot.host: must be hexadecimal digits, 4 for each character");
    row("damaged stream", "{\"tovik_iot\": {}, \"problems\": [{}]}",
        "file:1: problems: this is what show wrote of a damaged stream");
    row("version", "{\"tovik_iot\": {}, \"stream\": {\n\"version\": 6}}",
        "file:2: stream.version: must be a stream version from 7 to 19");
    row("form", "{\"tovik_iot\": {}, \"stream\": {\"form\": \"x\"}}",
        "file:1: stream.form: must be \"variant\" or \"record\"");
    value("value without a type", "{}",
          "file:3: tovik_iot.dataitems[0].value: the member \"type\" is missing");
    value("unknown type", "{\"type\": \"byte\", \"value\": 1}",
          "file:3: tovik_iot.dataitems[0].value.type: \"byte\" is no type of a value; the types "
          "are:");
    value("value without content", "{\"type\": \"int\"}",
          "file:3: tovik_iot.dataitems[0].value: the member \"value\" is missing");
    value("content of nothing", "{\"type\": \"invalid\", \"value\": 1}",
          "file:3: tovik_iot.dataitems[0].value.value: an invalid value has no content");
    value(
        "short", "{\"type\": \"short\", \"value\": 32768}",
        "file:3: tovik_iot.dataitems[0].value.value: must be a whole number from -32768 to 32767");
    value("unsigned", "{\"type\": \"uchar\", \"value\": -1}",
          "file:3: tovik_iot.dataitems[0].value.value: must be a whole number from 0 to 255");
    value("64 bits", "{\"type\": \"qlonglong\", \"value\": 9223372036854775808}",
          "file:3: tovik_iot.dataitems[0].value.value: must be a whole number from -922");
    value("fraction", "{\"type\": \"int\", \"value\": 1.5}",
          "file:3: tovik_iot.dataitems[0].value.value: must be a whole number");
    value("float", "{\"type\": \"float\", \"value\": 1e39}",
          "file:3: tovik_iot.dataitems[0].value.value: is too large for a float");
    value("bits", "{\"type\": \"float\", \"value\": \"bits:12\"}",
          "file:3: tovik_iot.dataitems[0].value.value: must be a number, \"nan\"");
    value(
        "bytes", "{\"type\": \"QByteArray\", \"value\": \"abc\"}",
        "file:3: tovik_iot.dataitems[0].value.value: must be hexadecimal digits, 2 for each byte");
    value("map", "{\"type\": \"QVariantMap\", \"value\": [[\"a\"]]}",
          "file:3: tovik_iot.dataitems[0].value.value[0]: must be a list of two: key and value");
}

void TestHostStoredJson::namesThePlaceOfErrors()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, start);
    const QString error = errorOf(text);
    QVERIFY2(error.startsWith(start), qPrintable(error));
}

void TestHostStoredJson::readsTheFormat()
{
    const FormatHints none = formatFromJson(jsonFile("{\"tovik_iot\": {}}"));
    QVERIFY(!none.form && !none.versions && !none.big_endian && !none.single_precision);
    FormatHints hints;
    hints.form = StoredForm::variant;
    hints.versions = VersionRange{8, 12};
    hints.big_endian = false;
    hints.single_precision = true;
    OrderedJson json = {{"tovik_iot", OrderedJson::object()}};
    json["stream"] = formatToJson(hints);
    QCOMPARE(json["stream"].dump(),
             std::string("{\"form\":\"variant\",\"version\":\"8-12\",\"byte_order\":\"little\","
                         "\"float_precision\":\"single\"}"));
    const FormatHints read = formatFromJson(jsonFile(storedJsonText(json)));
    QCOMPARE(formatToJson(read).dump(), json["stream"].dump());
}

QTEST_GUILESS_MAIN(TestHostStoredJson)
#include "tst_host_stored_json.moc"
