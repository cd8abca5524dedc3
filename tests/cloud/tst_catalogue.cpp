#include "cloud/catalogue.h"
#include "tests/support/log_recorder.h"

#include <QTest>

#include <stdexcept>

namespace {

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

picojson::value parsed(const QByteArray& json)
{
    picojson::value value;
    const std::string error = picojson::parse(value, json.toStdString());
    if (!error.empty())
        qFatal("%s", error.c_str());
    return value;
}

} // namespace

class TestCatalogue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listChecks_data();
    void listChecks();
    void wholeGroup();
    void groupMembers_data();
    void groupMembers();
    void droppedGroups_data();
    void droppedGroups();
    void wholeItem();
    void itemMembers_data();
    void itemMembers();
    void droppedItems_data();
    void droppedItems();
    void aRecordIsReadAnew();
    void elementThatIsNoObjectRaises();
};

void TestCatalogue::listChecks_data()
{
    QTest::addColumn<QByteArray>("number");
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<int>("result");
    QTest::addColumn<int>("size"); // -1: no array
    QTest::addColumn<QString>("group_line");
    QTest::addColumn<QString>("item_line");
    const QString no_groups = latin1("[TOVIK IoT] GetGroupList Error: no Number/groups!");
    const QString no_items = latin1("[TOVIK IoT] GetDataitemList Error: no Number/dataitems!");
    const QString warn_groups = latin1("[TOVIK IoT] Warning: no group!");
    const QString warn_items = latin1("[TOVIK IoT] Warning: Group  \"Boiler\" : no dataitem!");
    const QString bad_group_number =
        latin1("[TOVIK IoT] GetGroupList Error: group number invalid!");
    const QString bad_item_number =
        latin1("[TOVIK IoT] GetDataitemList Error: dataitem number invalid!");
    const QString groups_array = latin1("[TOVIK IoT] GetGroupList Error: groups is not array!");
    const QString items_array =
        latin1("[TOVIK IoT] GetDataitemList Respond Error: dataitems is not array!");
    auto row = [](const char* name, const char* number, const char* list, int result, int size,
                  const QString& group_line, const QString& item_line) {
        QTest::newRow(name) << QByteArray(number) << QByteArray(list) << result << size
                            << group_line << item_line;
    };
    row("two of two", "2", "[{},{}]", 0, 2, QString(), QString());
    row("the array's length counts, not the number", "5", "[{},{},{}]", 0, 3, QString(), QString());
    row("a smaller number does not cut", "1", "[1,2,3,4,5,6,7,8,9,10]", 0, 10, QString(),
        QString());
    row("none", "0", "[]", 0, -1, warn_groups, warn_items);
    row("a fraction below one is none", "0.9", "[{}]", 0, -1, warn_groups, warn_items);
    row("negative is none", "-3", "[{}]", 0, -1, warn_groups, warn_items);
    row("none, and the list is no array", "0", "5", 0, -1, warn_groups, warn_items);
    row("no number", nullptr, "[]", 256, -1, no_groups, no_items);
    row("null number", "null", "[]", 256, -1, no_groups, no_items);
    row("no list, although the number is 0", "0", nullptr, 256, -1, no_groups, no_items);
    row("null list", "1", "null", 256, -1, no_groups, no_items);
    row("text number", "\"1\"", "[]", 256, -1, bad_group_number, bad_item_number);
    row("list is an object", "1", "{}", 256, -1, groups_array, items_array);
}

void TestCatalogue::listChecks()
{
    QFETCH(QByteArray, number);
    QFETCH(QByteArray, list);
    QFETCH(int, result);
    QFETCH(int, size);
    QFETCH(QString, group_line);
    QFETCH(QString, item_line);
    picojson::object reply;
    if (!number.isEmpty())
        reply["Number"] = parsed(number);
    if (!list.isEmpty())
        reply["groups"] = reply["dataitems"] = parsed(list);
    LogRecorder log;
    const picojson::array earlier;
    const picojson::array* found = &earlier;
    QCOMPARE(catalogue::findGroups(reply, &found).result, result);
    QCOMPARE(found ? int(found->size()) : -1, size);
    QCOMPARE(log.take(), group_line.isEmpty() ? QStringList() : QStringList(group_line));
    found = &earlier;
    QCOMPARE(catalogue::findDataitems(reply, latin1("Boiler"), &found).result, result);
    QCOMPARE(found ? int(found->size()) : -1, size);
    QCOMPARE(log.take(), item_line.isEmpty() ? QStringList() : QStringList(item_line));
}

void TestCatalogue::wholeGroup()
{
    PropertyTovikIotGroup group;
    QVERIFY(catalogue::readGroup(
        parsed("{\"group_id\":\"g\xE9\",\"name\":\"Halle \xC3\xA4\",\"location\":\"l\xE9\","
               "\"ddLocation\":\"d\xE9\",\"alert\":true,\"permission\":\"R\",\"marked\":true}"),
        &group));
    QCOMPARE(group.group_id, latin1("g\xE9"));
    QCOMPARE(group.name, latin1("Halle \xE4"));
    QCOMPARE(group.location, latin1("l\xE9"));
    QCOMPARE(group.ddLocation, latin1("d\xE9"));
    QCOMPARE(group.alert, true);
    QCOMPARE(group.permission, latin1("R"));
    QCOMPARE(group.marked, false);
    QVERIFY(group.dataitems.isEmpty());
}

void TestCatalogue::groupMembers_data()
{
    QTest::addColumn<QByteArray>("members");
    QTest::newRow("only what is needed") << QByteArray();
    QTest::newRow("null members") << QByteArray(
        ",\"location\":null,\"ddLocation\":null,\"alert\":null,\"permission\":null");
    QTest::newRow("mistyped members")
        << QByteArray(",\"location\":1,\"ddLocation\":[],\"alert\":1,\"permission\":true");
}

void TestCatalogue::groupMembers()
{
    QFETCH(QByteArray, members);
    PropertyTovikIotGroup expected;
    expected.group_id = latin1("1");
    expected.name = latin1("n");
    PropertyTovikIotGroup group;
    QVERIFY(catalogue::readGroup(
        parsed(QByteArray("{\"group_id\":\"1\",\"name\":\"n\"") + members + QByteArray("}")),
        &group));
    QVERIFY(group == expected);
}

void TestCatalogue::droppedGroups_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::newRow("empty id") << QByteArray("{\"group_id\":\"\",\"name\":\"n\"}");
    QTest::newRow("no id") << QByteArray("{\"name\":\"n\"}");
    QTest::newRow("number for an id") << QByteArray("{\"group_id\":1,\"name\":\"n\"}");
    QTest::newRow("empty name") << QByteArray("{\"group_id\":\"1\",\"name\":\"\"}");
    QTest::newRow("no name") << QByteArray("{\"group_id\":\"1\"}");
    QTest::newRow("nothing") << QByteArray("{}");
}

void TestCatalogue::droppedGroups()
{
    QFETCH(QByteArray, json);
    PropertyTovikIotGroup group;
    QVERIFY(!catalogue::readGroup(parsed(json), &group));
}

void TestCatalogue::wholeItem()
{
    PropertyTovikIotDataItem item;
    QVERIFY(catalogue::readDataitem(
        parsed("{\"name\":\"Au\xC3\x9F"
               "en\",\"dataitem_id\":\"i\xE9\",\"type\":\"32Bit-UINT\",\"length\":2.9,"
               "\"value\":4294967295,\"cloud_status\":-1.5,\"alert\":true,"
               "\"update_time\":3e10,\"marked\":true}"),
        &item));
    QCOMPARE(item.name, latin1("Au\xDF"
                               "en"));
    QCOMPARE(item.dataitem_id, latin1("i\xE9"));
    QCOMPARE(item.type, latin1("32Bit-UINT"));
    QCOMPARE(item.length, 2);
    QCOMPARE(item.value, QVariant(4294967295U));
    QCOMPARE(item.cloud_status, -1);
    QCOMPARE(item.alert, true);
    QCOMPARE(item.update_time, 2147483647);
    QCOMPARE(item.marked, false);
}

void TestCatalogue::itemMembers_data()
{
    QTest::addColumn<QByteArray>("members");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QVariant>("value");
    auto row = [](const char* name, const char* members, const char* type, const QVariant& value) {
        QTest::newRow(name) << QByteArray(members) << latin1(type) << value;
    };
    const QVariant untouched = latin1("");
    row("nothing else", "", "16Bit-INT", untouched);
    row("a value without a type is a sixteen bit integer", ",\"value\":-2", "16Bit-INT",
        QVariant::fromValue<short>(-2));
    row("a mistyped type keeps the default", ",\"type\":5,\"value\":7", "16Bit-INT",
        QVariant::fromValue<short>(7));
    row("a type without a value is zero", ",\"type\":\"32Bit-FLOAT\"", "32Bit-FLOAT", 0);
    row("a text for a float keeps zero", ",\"type\":\"32Bit-FLOAT\",\"value\":\"1.5\"",
        "32Bit-FLOAT", 0);
    row("a null value keeps zero", ",\"type\":\"Bit\",\"value\":null", "Bit", 0);
    row("a number for a bit keeps zero", ",\"type\":\"Bit\",\"value\":1", "Bit", 0);
    row("Ascii String is a String", ",\"type\":\"Ascii String\",\"value\":\"t\"", "String",
        latin1("t"));
    row("70000.9 is cut to sixteen bits", ",\"type\":\"16Bit-INT\",\"value\":70000.9", "16Bit-INT",
        QVariant::fromValue<short>(4464));
    row("minus one is zero unsigned", ",\"type\":\"16Bit-UINT\",\"value\":-1", "16Bit-UINT",
        QVariant::fromValue<unsigned short>(0));
    row("minus one is zero in 32 bits unsigned", ",\"type\":\"32Bit-UINT\",\"value\":-1",
        "32Bit-UINT", 0U);
    row("3e10 saturates", ",\"type\":\"32Bit-INT\",\"value\":3e10", "32Bit-INT", 2147483647);
    row("3e10 in sixteen bits unsigned", ",\"type\":\"16Bit-UINT\",\"value\":3e10", "16Bit-UINT",
        QVariant::fromValue<unsigned short>(65535));
    row("mistyped others keep their defaults",
        ",\"length\":\"9\",\"cloud_status\":true,\"alert\":1,\"update_time\":\"x\"", "16Bit-INT",
        untouched);
}

void TestCatalogue::itemMembers()
{
    QFETCH(QByteArray, members);
    QFETCH(QString, type);
    QFETCH(QVariant, value);
    PropertyTovikIotDataItem expected;
    expected.name = latin1("n");
    expected.dataitem_id = latin1("1");
    expected.type = type;
    expected.value = value;
    PropertyTovikIotDataItem item;
    QVERIFY(catalogue::readDataitem(
        parsed(QByteArray("{\"name\":\"n\",\"dataitem_id\":\"1\"") + members + QByteArray("}")),
        &item));
    QCOMPARE(item.value.userType(), value.userType());
    QVERIFY(item == expected);
}

void TestCatalogue::droppedItems_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::newRow("no name") << QByteArray("{\"dataitem_id\":\"1\"}");
    QTest::newRow("empty name") << QByteArray("{\"name\":\"\",\"dataitem_id\":\"1\"}");
    QTest::newRow("no id") << QByteArray("{\"name\":\"n\"}");
    QTest::newRow("empty id") << QByteArray("{\"name\":\"n\",\"dataitem_id\":\"\"}");
    QTest::newRow("unknown type") << QByteArray(
        "{\"name\":\"n\",\"dataitem_id\":\"1\",\"type\":\"64Bit-INT\"}");
    QTest::newRow("type in other letter case")
        << QByteArray("{\"name\":\"n\",\"dataitem_id\":\"1\",\"type\":\"bit\",\"value\":true}");
    QTest::newRow("empty type") << QByteArray(
        "{\"name\":\"n\",\"dataitem_id\":\"1\",\"type\":\"\"}");
}

void TestCatalogue::droppedItems()
{
    QFETCH(QByteArray, json);
    PropertyTovikIotDataItem item;
    QVERIFY(!catalogue::readDataitem(parsed(json), &item));
}

void TestCatalogue::aRecordIsReadAnew()
{
    PropertyTovikIotDataItem item;
    item.name = latin1("old");
    item.length = 9;
    item.marked = true;
    QVERIFY(!catalogue::readDataitem(parsed("{\"dataitem_id\":\"1\"}"), &item));
    QVERIFY(item.name.isEmpty());
    QCOMPARE(item.length, 1);
    QCOMPARE(item.marked, false);
    PropertyTovikIotGroup group;
    group.name = latin1("old");
    group.dataitems.append(item);
    group.marked = true;
    QVERIFY(!catalogue::readGroup(parsed("{\"group_id\":\"1\"}"), &group));
    QVERIFY(group.name.isEmpty());
    QVERIFY(group.dataitems.isEmpty());
    QCOMPARE(group.marked, false);
}

void TestCatalogue::elementThatIsNoObjectRaises()
{
    const char* const elements[] = {"5", "\"text\"", "[]", "null", "true"};
    for (const char* element : elements) {
        PropertyTovikIotGroup group;
        PropertyTovikIotDataItem item;
        try {
            catalogue::readGroup(parsed(element), &group);
            QFAIL(element);
        } catch (const std::runtime_error& error) {
            QCOMPARE(error.what(), "is<object>()");
        }
        QVERIFY_EXCEPTION_THROWN(catalogue::readDataitem(parsed(element), &item),
                                 std::runtime_error);
    }
}

QTEST_APPLESS_MAIN(TestCatalogue)
#include "tst_catalogue.moc"
