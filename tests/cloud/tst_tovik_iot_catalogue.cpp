#include "cloud/tovik_iot.h"
#include "tests/support/log_recorder.h"
#include "tests/support/scripted_service.h"

#include <QTest>

#include <stdexcept>

namespace {

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

const char two_groups[] =
    "{\"errorcode\":0,\"Number\":2,\"groups\":[{\"group_id\":\"1\",\"name\":\"Boiler\"},"
    "{\"group_id\":\"2\",\"name\":\"Hall\"}]}";
const char one_item[] =
    "{\"errorcode\":0,\"Number\":1,\"dataitems\":[{\"name\":\"Temp\",\"dataitem_id\":\"X\","
    "\"type\":\"16Bit-INT\",\"value\":-2}]}";
const char no_items[] = "{\"errorcode\":0,\"Number\":0,\"dataitems\":[]}";

} // namespace

/// The group list with each group's item list, as a conversation.
class TestTovikIotCatalogue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void requests();
    void groupsAreReplaced();
    void servedItemsAreNotTouched();
    void groupsAreEmptiedBeforeTheRequest();
    void noGroup();
    void groupWithoutItemsIsKept();
    void groupThatIsDroppedIsNotAskedFor();
    void failingItemListKeepsTheGroupsBefore();
    void itemsAreAppended();
    void droppedItems();
    void replyThatIsNoObjectRaises();
    void secondGroupThatIsNoObjectRaisesAfterTheFirstIsIn();
    void itemThatIsNoObjectRaises();

private:
    QScopedPointer<ScriptedService> service_;
    PropertyTovikIot property_;
    QScopedPointer<TovikIot> client_;
    QScopedPointer<LogRecorder> log_;
};

void TestTovikIotCatalogue::init()
{
    service_.reset(new ScriptedService);
    property_ = PropertyTovikIot();
    property_.host = service_->url();
    log_.reset(new LogRecorder);
    client_.reset(new TovikIot(&property_));
    log_->take();
}

void TestTovikIotCatalogue::cleanup()
{
    client_.reset();
    log_.reset();
    service_.reset();
}

void TestTovikIotCatalogue::requests()
{
    service_->queue(two_groups);
    service_->queue(one_item);
    service_->queue(no_items);
    QCOMPARE(client_->GetGroupList(latin1("T\"")), 0);
    QCOMPARE(service_->paths(), (QList<QByteArray>{"/qlix_api/imonitor/group/list",
                                                   "/qlix_api/imonitor/group/dataitems",
                                                   "/qlix_api/imonitor/group/dataitems"}));
    QCOMPARE(service_->bodies(),
             (QList<QByteArray>{"{\"token\":\"T\\\"\"}", "{\"group_id\":\"1\",\"token\":\"T\\\"\"}",
                                "{\"group_id\":\"2\",\"token\":\"T\\\"\"}"}));
}

void TestTovikIotCatalogue::groupsAreReplaced()
{
    PropertyTovikIotGroup old;
    old.name = latin1("old");
    property_.groups.append(old);
    service_->queue(two_groups);
    service_->queue(one_item);
    service_->queue(one_item);
    QCOMPARE(client_->GetGroupList(latin1("T")), 0);
    QCOMPARE(property_.groups.size(), 2);
    QCOMPARE(property_.groups.at(0).name, latin1("Boiler"));
    QCOMPARE(property_.groups.at(1).group_id, latin1("2"));
    QCOMPARE(property_.groups.at(1).dataitems.size(), 1);
    QCOMPARE(property_.groups.at(1).dataitems.at(0).value, QVariant::fromValue<short>(-2));
    QVERIFY(log_->lines().isEmpty());
}

void TestTovikIotCatalogue::servedItemsAreNotTouched()
{
    PropertyTovikIotDataItem served;
    served.name = latin1("Temp");
    served.dataitem_id = latin1("X");
    served.value = 5;
    property_.dataitems.append(served);
    service_->queue(two_groups);
    service_->queue(one_item);
    service_->queue(one_item);
    QCOMPARE(client_->GetGroupList(latin1("T")), 0);
    QCOMPARE(property_.dataitems.size(), 1);
    QVERIFY(served == property_.dataitems.first());
}

void TestTovikIotCatalogue::groupsAreEmptiedBeforeTheRequest()
{
    property_.groups.append(PropertyTovikIotGroup());
    bool empty_when_asked = false;
    service_->setHandler([&](const ScriptedRequest&) {
        empty_when_asked = property_.groups.isEmpty();
        return ScriptedReply::json("{\"errorcode\":4}");
    });
    QCOMPARE(client_->GetGroupList(latin1("T")), 4);
    QVERIFY(empty_when_asked);
    QVERIFY(property_.groups.isEmpty());
    QCOMPARE(log_->take(), QStringList{latin1("[TOVIK IoT] GetGroupList Error:  4")});
}

void TestTovikIotCatalogue::noGroup()
{
    service_->queue("{\"errorcode\":0,\"Number\":0,\"groups\":[]}");
    QCOMPARE(client_->GetGroupList(latin1("T")), 0);
    QCOMPARE(log_->take(), QStringList{latin1("[TOVIK IoT] Warning: no group!")});
    service_->queue("{\"errorcode\":0,\"Number\":0}");
    QCOMPARE(client_->GetGroupList(latin1("T")), 256);
    QCOMPARE(log_->take(),
             QStringList{latin1("[TOVIK IoT] GetGroupList Error: no Number/groups!")});
}

void TestTovikIotCatalogue::groupWithoutItemsIsKept()
{
    service_->queue(two_groups);
    service_->queue(no_items);
    service_->queue(one_item);
    QCOMPARE(client_->GetGroupList(latin1("T")), 0);
    QCOMPARE(property_.groups.size(), 2);
    QVERIFY(property_.groups.at(0).dataitems.isEmpty());
    QCOMPARE(log_->take(),
             QStringList{latin1("[TOVIK IoT] Warning: Group  \"Boiler\" : no dataitem!")});
}

void TestTovikIotCatalogue::groupThatIsDroppedIsNotAskedFor()
{
    service_->queue("{\"errorcode\":0,\"Number\":3,\"groups\":[{\"group_id\":\"\",\"name\":\"A\"},"
                    "{\"group_id\":\"2\"},{\"group_id\":\"3\",\"name\":\"C\"}]}");
    service_->queue(one_item);
    QCOMPARE(client_->GetGroupList(latin1("T")), 0);
    QCOMPARE(service_->requests().size(), 2);
    QCOMPARE(property_.groups.size(), 1);
    QCOMPARE(property_.groups.first().name, latin1("C"));
    QVERIFY(log_->lines().isEmpty());
}

void TestTovikIotCatalogue::failingItemListKeepsTheGroupsBefore()
{
    service_->queue(two_groups);
    service_->queue(one_item);
    service_->queue("{\"errorcode\":9}");
    QCOMPARE(client_->GetGroupList(latin1("T")), 9);
    QCOMPARE(property_.groups.size(), 1);
    QCOMPARE(property_.groups.first().name, latin1("Boiler"));
    QCOMPARE(log_->take(), QStringList{latin1("[TOVIK IoT] GetDataitemList Error:  9")});
}

void TestTovikIotCatalogue::itemsAreAppended()
{
    PropertyTovikIotGroup group;
    group.group_id = latin1("7");
    service_->queue(one_item);
    service_->queue(one_item);
    QCOMPARE(client_->GetDataitemList(latin1("T"), &group), 0);
    QCOMPARE(client_->GetDataitemList(latin1("T"), &group), 0);
    QCOMPARE(group.dataitems.size(), 2);
    QCOMPARE(service_->bodies().first(), QByteArray("{\"group_id\":\"7\",\"token\":\"T\"}"));
}

void TestTovikIotCatalogue::droppedItems()
{
    service_->queue("{\"errorcode\":0,\"Number\":1,\"dataitems\":["
                    "{\"name\":\"A\",\"dataitem_id\":\"1\",\"type\":\"bit\"},"
                    "{\"name\":\"\",\"dataitem_id\":\"2\"},{\"name\":\"C\"},"
                    "{\"name\":\"D\",\"dataitem_id\":\"4\",\"type\":\"Ascii String\"}]}");
    PropertyTovikIotGroup group;
    QCOMPARE(client_->GetDataitemList(latin1("T"), &group), 0);
    QCOMPARE(group.dataitems.size(), 1);
    QCOMPARE(group.dataitems.first().name, latin1("D"));
    QCOMPARE(group.dataitems.first().type, latin1("String"));
}

void TestTovikIotCatalogue::replyThatIsNoObjectRaises()
{
    service_->setHandler([](const ScriptedRequest&) { return ScriptedReply::json("[1]"); });
    PropertyTovikIotGroup group;
    QVERIFY_EXCEPTION_THROWN(client_->Login(QString(), QString(), QString()), std::runtime_error);
    QVERIFY_EXCEPTION_THROWN(client_->GetGroupList(latin1("T")), std::runtime_error);
    QVERIFY_EXCEPTION_THROWN(client_->GetDataitemList(latin1("T"), &group), std::runtime_error);
    const PropertyTovikIotDataItem item;
    QVERIFY_EXCEPTION_THROWN(client_->ReadDataitemValue(latin1("T"), item), std::runtime_error);
    QVERIFY_EXCEPTION_THROWN(client_->WriteDataitemValue(latin1("T"), item, 1), std::runtime_error);
}

void TestTovikIotCatalogue::secondGroupThatIsNoObjectRaisesAfterTheFirstIsIn()
{
    service_->queue("{\"errorcode\":0,\"Number\":2,\"groups\":["
                    "{\"group_id\":\"1\",\"name\":\"Boiler\"},5]}");
    service_->queue(one_item);
    try {
        client_->GetGroupList(latin1("T"));
        QFAIL("no exception");
    } catch (const std::runtime_error& error) {
        QCOMPARE(error.what(), "is<object>()");
    }
    QCOMPARE(service_->requests().size(), 2);
    QCOMPARE(property_.groups.size(), 1);
}

void TestTovikIotCatalogue::itemThatIsNoObjectRaises()
{
    service_->queue("{\"errorcode\":0,\"Number\":1,\"dataitems\":["
                    "{\"name\":\"A\",\"dataitem_id\":\"1\"},\"text\"]}");
    PropertyTovikIotGroup group;
    QVERIFY_EXCEPTION_THROWN(client_->GetDataitemList(latin1("T"), &group), std::runtime_error);
    QCOMPARE(group.dataitems.size(), 1);
}

QTEST_GUILESS_MAIN(TestTovikIotCatalogue)
#include "tst_tovik_iot_catalogue.moc"
