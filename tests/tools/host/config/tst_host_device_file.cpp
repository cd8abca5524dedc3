#include "tools/host/config/config_file.h"
#include "tools/host/terminal/exit_code.h"

#include <QTemporaryDir>
#include <QTest>

using namespace tovik_host;
using namespace tovik_host::config;

class TestHostDeviceFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsEverything();
    void hasDefaults();
    void takesDefaultsFromOptions();
    void warnsOfRepeatedNames();
    void namesPlaceOfError_data();
    void namesPlaceOfError();
    void knowsWhetherThereIsALink();

private:
    QString write(const QByteArray& text);

    QTemporaryDir folder_;
};

QString TestHostDeviceFile::write(const QByteArray& text)
{
    QFile file(folder_.filePath(QStringLiteral("c.json")));
    if (file.open(QIODevice::WriteOnly))
        file.write(text);
    return file.fileName();
}

void TestHostDeviceFile::readsEverything()
{
    const DeviceFile file = loadDeviceFile(write(R"({
  "link": {"address": "tcp:plc:502", "unit": "{A}", "request_delay": 5, "response_timeout": 300,
           "retries": 2, "link_param_a": -7, "link_param_b": 8},
  "items": [
    {"name": "Speed", "address": "4x1", "type": "32Bit-FLOAT", "station": 17, "field1": 1,
     "extra1": 4, "extra2": -1},
    {"name": "Text", "type": "String", "length": 20}
  ]
})"),
                                           RequestOptions());
    QVERIFY(file.warnings.isEmpty());
    QCOMPARE(file.link.address.value(), QStringLiteral("tcp:plc:502"));
    QCOMPARE(file.link.unit.value(), QStringLiteral("{A}"));
    QCOMPARE(file.link.request_delay.value(), 5);
    QCOMPARE(file.link.response_timeout.value(), 300);
    QCOMPARE(file.link.retries.value(), 2);
    QCOMPARE(file.link.link_param_a.value(), -7);
    QCOMPARE(file.link.link_param_b.value(), 8);
    QVERIFY(file.link_place.endsWith(QLatin1String("c.json:2: link.address")));
    QCOMPARE(file.items.size(), 2);
    const ItemConfig& speed = file.items.first();
    QCOMPARE(speed.name, QStringLiteral("Speed"));
    QCOMPARE(speed.request.address, QStringLiteral("4x1"));
    QCOMPARE(speed.type->name, "32Bit-FLOAT");
    QCOMPARE(speed.request.station, 17);
    QCOMPARE(speed.request.field1, 1);
    QCOMPARE(speed.request.extra1, 4);
    QCOMPARE(speed.request.extra2, -1);
    QCOMPARE(file.items.last().length, 20);
}

void TestHostDeviceFile::hasDefaults()
{
    const DeviceFile file =
        loadDeviceFile(write("{\"items\": [{\"name\": \"4x1\"}]}"), RequestOptions());
    QVERIFY(!file.link.address);
    QVERIFY(!file.link.response_timeout);
    const ItemConfig& item = file.items.first();
    QCOMPARE(item.request.address, QStringLiteral("4x1"));
    QCOMPARE(item.type->name, "16Bit-UINT");
    QCOMPARE(item.request.station, 1);
    QCOMPARE(item.request.field1, 0);
    QCOMPARE(item.request.extra1, 0);
    QCOMPARE(item.request.extra2, 0);
}

void TestHostDeviceFile::takesDefaultsFromOptions()
{
    RequestOptions options;
    options.type = QStringLiteral("String");
    options.length = 6;
    options.elements = 3;
    options.station = 9;
    options.extra1 = 4;
    const DeviceFile file =
        loadDeviceFile(write("{\"items\": [{\"name\": \"a\"}, {\"name\": \"b\", \"type\": \"Bit\","
                             " \"station\": 2, \"extra1\": 0}]}"),
                       options);
    QCOMPARE(file.items.first().type->name, "String");
    QCOMPARE(file.items.first().length, 6);
    QCOMPARE(file.items.first().request.station, 9);
    QCOMPARE(file.items.first().request.extra1, 4);
    QCOMPARE(file.items.last().length, 0);
    QCOMPARE(file.items.first().elements, 1); // a text
    QCOMPARE(file.items.last().elements, 3);
    QCOMPARE(file.items.last().request.station, 2);
    QCOMPARE(file.items.last().request.extra1, 0);
}

void TestHostDeviceFile::warnsOfRepeatedNames()
{
    const DeviceFile file = loadDeviceFile(
        write("{\"items\": [\n{\"name\": \"a\"},\n{\"name\": \"a\"}]}"), RequestOptions());
    QCOMPARE(file.warnings.size(), 1);
    QVERIFY2(file.warnings.first().endsWith(
                 QLatin1String("c.json:3: items[1].name: items[0] has the name \"a\" already; by "
                               "name the first one only is found")),
             qPrintable(file.warnings.first()));
}

void TestHostDeviceFile::namesPlaceOfError_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("start");
    const auto row = [](const char* name, const QByteArray& text, const char* start) {
        QTest::newRow(name) << text << QString::fromUtf8(start);
    };
    const auto items = [](const char* list) { return QByteArray("{\n\"items\":\n") + list + "}"; };
    const auto link = [](const char* object) {
        return QByteArray("{\"link\":\n") + object + ",\n\"items\": [{\"name\": \"a\"}]}";
    };
    row("syntax", "{\n\"link\": {,\n}}", "c.json:2: not valid JSON: unexpected ','");
    row("no object", "[]", "c.json:1: must be an object");
    row("a service", "{\"items\": [],\n\"service\": {}}",
        "c.json:2: service: is for a cloud driver; the configuration of a device on a link has");
    row("error handling", "{\"items\": [],\n\"error_handling\": {}}",
        "c.json:2: error_handling: is for a cloud driver");
    row("unknown member", "{\n\"lnk\": {}}", "c.json:2: lnk: is no member of this object");
    row("no items", "{\"link\": {}}", "c.json:1: the member \"items\" is missing");
    row("items is no list", items("{}"), "c.json:2: items: must be a list");
    row("list without items", items("[]"), "c.json:2: items: must name at least one item");
    row("link is a text", link("\"tcp:h:1\""), "c.json:1: link: must be an object");
    row("misspelt setting", link("{\n\"timeout\": 5}"),
        "c.json:3: link.timeout: is no member of this object; it may have: address, unit, ");
    row("empty address", link("{\"address\": \"\"}"), "c.json:2: link.address: must not be empty");
    row("no time", link("{\"response_timeout\": 0}"),
        "c.json:2: link.response_timeout: must be a whole number from 1 to 600000");
    row("negative pause", link("{\"request_delay\": -1}"),
        "c.json:2: link.request_delay: must be a whole number from 0 to 60000");
    row("too many repeats", link("{\"retries\": 101}"),
        "c.json:2: link.retries: must be a whole number from 0 to 100");
    row("parameter that wraps around to -1", link("{\"link_param_a\": 18446744073709551615}"),
        "c.json:2: link.link_param_a: must be a whole number from -2147483648 to 2147483647");
    row("parameter as a text", link("{\"link_param_a\": \"1\"}"),
        "c.json:2: link.link_param_a: must be a whole number from -2147483648 to 2147483647");
    row("item without a name", items("[{\"address\": \"4x1\"}]"),
        "c.json:3: items[0]: the member \"name\" is missing");
    row("service's id", items("[{\"name\": \"a\",\n\"id\": \"x\"}]"),
        "c.json:4: items[0].id: is no member of this object; it may have: name, address, type");
    row("unknown type", items("[{\"name\": \"a\",\n\"type\": \"word\"}]"),
        "c.json:4: items[0].type: \"word\" is no type; the types are: Bit, 16Bit-BCD");
    row("text without a length", items("[\n{\"name\": \"a\", \"type\": \"String\"}]"),
        "c.json:4: items[0]: a String needs the member \"length\"");
    row("length of a number", items("[{\"name\": \"a\",\n\"length\": 4}]"),
        "c.json:4: items[0].length: only items of type String have a length");
    row("elements of a text",
        items("[{\"name\": \"a\", \"type\": \"String\", \"length\": 4,\n\"elements\": 2}]"),
        "c.json:4: items[0].elements: a String has a length, and no elements");
    row("no elements", items("[{\"name\": \"a\",\n\"elements\": 0}]"),
        "c.json:4: items[0].elements: must be a whole number from 1 to 2000");
    row("station out of range", items("[{\"name\": \"a\",\n\"station\": 65536}]"),
        "c.json:4: items[0].station: must be a whole number from 0 to 65535");
    row("fraction", items("[{\"name\": \"a\",\n\"extra2\": 0.5}]"),
        "c.json:4: items[0].extra2: must be a whole number");
}

void TestHostDeviceFile::namesPlaceOfError()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, start);
    QString message;
    try {
        loadDeviceFile(write(text), RequestOptions());
    } catch (const terminal::UsageError& error) {
        message = error.message().remove(folder_.path() + QLatin1Char('/'));
    }
    QVERIFY2(message.startsWith(start), qPrintable(message));
}

void TestHostDeviceFile::knowsWhetherThereIsALink()
{
    QVERIFY(namesLink(write("{\"link\": {}}")));
    QVERIFY(!namesLink(write("{\"service\": {}}")));
    QVERIFY(!namesLink(write("[]")));
    QVERIFY_EXCEPTION_THROWN(namesLink(write("{")), terminal::UsageError);
}

QTEST_APPLESS_MAIN(TestHostDeviceFile)
#include "tst_host_device_file.moc"
