#include "tests/property/records.h"
#include "tests/tools/host/stored/stored_samples.h"
#include "tools/host/stored/stream.h"
#include "tools/host/terminal/exit_code.h"

#include <QTest>

#include <cmath>
#include <limits>

using namespace tovik_host::stored;

namespace {

const Format usual = {false, 12, true, false};

/// A file whose one served item has this object as its value, on line 3.
QByteArray withValue(const char* value)
{
    return QByteArray("{\"tovik_iot\": {\n\"dataitems\": [{\"name\": \"A\",\n\"value\": ") + value +
           "}]}}";
}

QString errorOf(const QByteArray& text)
{
    try {
        const tovik_host::config::JsonFile file = jsonFile(text);
        recordFromJson(file);
        formatFromJson(file);
    } catch (const tovik_host::terminal::UsageError& error) {
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
    void hasWordsForValuesOfItems_data();
    void hasWordsForValuesOfItems();
    void refusesHiddenTexts();
    void namesThePlaceOfErrors_data();
    void namesThePlaceOfErrors();
    void readsTheFormat();
};

void TestHostStoredJson::hasEveryMember()
{
    PropertyTovikIot record;
    record.host = QStringLiteral("https://h");
    record.groups << PropertyTovikIotGroup();
    record.groups[0].dataitems << PropertyTovikIotDataItem();
    PropertyTovikIotDataItem& item = record.groups[0].dataitems[0];
    item.name = QStringLiteral("A");
    item.value = QVariant::fromValue<ushort>(5);
    const std::string item_json = R"({"name":"A","dataitem_id":null,"type":"16Bit-INT","length":1,)"
                                  R"("value":{"type":"ushort","value":5},"cloud_status":0,)"
                                  R"("alert":false,"update_time":0,"marked":false})";
    const std::string json =
        R"({"aux_flag":false,"host":"https://h","aux_value":0,"project":null,"email":null,)"
        R"("password":null,"groups":[{"group_id":null,"name":null,"location":null,)"
        R"("ddLocation":null,"alert":false,"permission":"RW","marked":false,"dataitems":[)" +
        item_json + R"(]}],"dataitems":[]})";
    QCOMPARE(QString::fromStdString(recordToJson({record}).dump()), QString::fromStdString(json));
}

void TestHostStoredJson::defaultsAreTheRecords()
{
    const PropertyTovikIot record =
        recordFromJson(jsonFile("{\"tovik_iot\": {\"groups\": [{}], \"dataitems\": [{}]}}"));
    PropertyTovikIot expected;
    expected.groups << PropertyTovikIotGroup();
    expected.dataitems << PropertyTovikIotDataItem();
    QCOMPARE(describe(record), describe(expected));
    QCOMPARE(written(record, usual).toHex(), writtenByQt(expected, usual).toHex());
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
    row("half a pair", QString(QChar(0xD83D)) + QLatin1Char('A'),
        R"({"type":"QString","stream":"AAAACgAAAAAE2D0AQQ=="})");
    row("pair the wrong way round", QString(QChar(0xDE00)) + QChar(0xD83D),
        R"({"type":"QString","stream":"AAAACgAAAAAE3gDYPQ=="})");
}

void TestHostStoredJson::hardTextsStay()
{
    QFETCH(QString, text);
    QFETCH(QString, json);
    const PropertyTovikIot record =
        recordFromJson(jsonFile("{\"tovik_iot\": {\"project\": " + json.toUtf8() + "}}"));
    QCOMPARE(record.project, text);
    QCOMPARE(record.project.isNull(), text.isNull());
    QCOMPARE(QString::fromStdString(recordToJson({record}).at("project").dump()), json);
}

void TestHostStoredJson::numbersOfUsersBecomeFloats()
{
    const PropertyTovikIot record =
        recordFromJson(jsonFile(withValue("{\"type\": \"float\", \"value\": 0.1}")));
    QCOMPARE(record.dataitems.at(0).value, QVariant::fromValue(0.1f));
    const PropertyTovikIot whole =
        recordFromJson(jsonFile(withValue("{\"type\": \"float\", \"value\": 3}")));
    QCOMPARE(whole.dataitems.at(0).value, QVariant::fromValue(3.0f));
}

void TestHostStoredJson::hasWordsForValuesOfItems_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("json");
    const auto row = [](const char* name, const QVariant& value, const char* json) {
        QTest::newRow(name) << value << QString::fromUtf8(json);
    };
    const float not_a_number = std::numeric_limits<float>::quiet_NaN();
    row("none", QVariant(), R"({"type":"invalid"})");
    row("flag", true, R"({"type":"bool","value":true})");
    row("short", QVariant::fromValue<short>(-2), R"({"type":"short","value":-2})");
    row("unsigned", 4294967295u, R"({"type":"uint","value":4294967295})");
    row("one", QVariant::fromValue(1.0f), R"({"type":"float","value":1.0})");
    row("negative zero", QVariant::fromValue(-0.0f), R"({"type":"float","value":-0.0})");
    row("text", QStringLiteral("x"), R"({"type":"QString","value":"x"})");
    row("null text", QString(), R"({"type":"QString","value":null})");
    row("infinite", QVariant::fromValue(-HUGE_VALF),
        R"({"type":"float","stream":"AAAAJgD/8AAAAAAAAA=="})");
    row("double", 0.5, R"({"type":"double","stream":"AAAABgA/4AAAAAAAAA=="})");
    row("bytes", QByteArray("\xff\0", 2), R"({"type":"QByteArray","value":"ff00"})");
    row("null bytes", QByteArray(), R"({"type":"QByteArray","value":null})");
    row("not a number", QVariant::fromValue(not_a_number),
        R"({"type":"float","stream":"AAAAJgB/+AAAAAAAAA=="})");
    row("null flag", QVariant(QVariant::Int), R"({"type":"int","stream":"AAAAAgEAAAAA"})");
    row("other type", QDate(2024, 1, 1), R"({"type":"QDate","stream":"AAAADgAAAAAAACWKlw=="})");
}

void TestHostStoredJson::hasWordsForValuesOfItems()
{
    QFETCH(QVariant, value);
    QFETCH(QString, json);
    PropertyTovikIot record;
    record.dataitems << itemWith(value);
    const tovik_host::value::OrderedJson item = recordToJson({record}).at("dataitems").at(0);
    QCOMPARE(QString::fromStdString(item.at("value").dump()), json);
    const PropertyTovikIot again = recordFromJson(jsonFile(withValue(json.toUtf8().constData())));
    QCOMPARE(valueBytes(again.dataitems.at(0).value).toHex(), valueBytes(value).toHex());
}

void TestHostStoredJson::refusesHiddenTexts()
{
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
    row("number as a text", R"({"tovik_iot": {"host": {"type": "int", "value": 1}}})",
        "file:1: tovik_iot.host: must be a text");
    row("damaged stream", "{\"tovik_iot\": {}, \"problems\": [{}]}",
        "file:1: problems: this is what show wrote of a damaged stream");
    row("version", "{\"tovik_iot\": {}, \"stream\": {\n\"version\": 20}}",
        "file:2: stream.version: must be a stream version from 1 to 19");
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
    value("unsigned", "{\"type\": \"ushort\", \"value\": -1}",
          "file:3: tovik_iot.dataitems[0].value.value: must be a whole number from 0 to 65535");
    value("fraction", "{\"type\": \"int\", \"value\": 1.5}",
          "file:3: tovik_iot.dataitems[0].value.value: must be a whole number");
    value("float", "{\"type\": \"float\", \"value\": 1e39}",
          "file:3: tovik_iot.dataitems[0].value.value: is too large for a float");
    value("other type in words", "{\"type\": \"QDate\", \"value\": \"2024-01-01\"}",
          "file:3: tovik_iot.dataitems[0].value.value: a value of this type stands as its "
          "\"stream\"");
    value("stream of another type", "{\"type\": \"int\", \"stream\": \"AAAADgAAAAAAACWKGA==\"}",
          "file:3: tovik_iot.dataitems[0].value.stream: must be a value of its type as streams");
    value("stream that is none", "{\"type\": \"int\", \"stream\": \"AAAA\"}",
          "file:3: tovik_iot.dataitems[0].value.stream: must be a value of its type as streams");
    value(
        "bytes", "{\"type\": \"QByteArray\", \"value\": \"abc\"}",
        "file:3: tovik_iot.dataitems[0].value.value: must be hexadecimal digits, 2 for each byte");
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
    const Hints none = formatFromJson(jsonFile("{\"tovik_iot\": {}}"));
    QVERIFY(!none.is_variant && !none.versions && !none.big_endian && !none.single_precision);
    Hints hints;
    hints.is_variant = true;
    hints.versions = Versions{8, 12};
    hints.big_endian = false;
    hints.single_precision = true;
    tovik_host::value::OrderedJson json = {{"tovik_iot", tovik_host::value::OrderedJson::object()}};
    json["stream"] = formatToJson(hints);
    QCOMPARE(json["stream"].dump(),
             std::string("{\"form\":\"variant\",\"version\":\"8-12\",\"byte_order\":\"little\","
                         "\"float_precision\":\"single\"}"));
    const Hints read = formatFromJson(jsonFile(tovik_host::value::jsonText(json).toUtf8()));
    QCOMPARE(formatToJson(read).dump(), json["stream"].dump());
}

QTEST_GUILESS_MAIN(TestHostStoredJson)
#include "tst_host_stored_json.moc"
