#include "tests/interface/vtable_slot.h"
#include "tests/property/records.h"

#include <QTest>

namespace {

using Item = PropertyTovikIotDataItem;

/// A way to make one member differ from that of filledItem().
struct Change
{
    const char* name;
    void (*apply)(Item* item);
};

const Change changes[] = {
    {"name", [](Item* item) { item->name = QLatin1String("Item 1"); }},
    {"dataitem_id", [](Item* item) { item->dataitem_id.clear(); }},
    {"type", [](Item* item) { item->type = QLatin1String("32Bit-UINT"); }},
    {"length", [](Item* item) { item->length = 3; }},
    {"value: number", [](Item* item) { item->value = -7; }},
    {"value: none", [](Item* item) { item->value = QVariant(); }},
    {"value: text", [](Item* item) { item->value = QString(QLatin1String("text")); }},
    {"cloud_status", [](Item* item) { item->cloud_status = -3; }},
    {"alert", [](Item* item) { item->alert = false; }},
    {"update_time", [](Item* item) { item->update_time = 0; }},
    {"marked", [](Item* item) { item->marked = false; }},
};

void addChangeRows()
{
    QTest::addColumn<int>("index");
    int index = 0;
    for (const Change& change : changes)
        QTest::newRow(change.name) << index++;
}

Item changedItem(int index)
{
    Item item = filledItem();
    changes[index].apply(&item);
    return item;
}

} // namespace

class TestPropertyTovikIotDataItem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaults();
    void initialResetsEveryMember();
    void comparisonFinds_data() { addChangeRows(); }
    void comparisonFinds();
    void everyCopyCarries_data() { addChangeRows(); }
    void everyCopyCarries();
    void selfAssignmentKeepsAll();
    void equalNumbersOfDifferentTypesAreEqual();
    void emptyTextIsNotNoValue();
    void initialIsTheFirstVirtual();
    void layout();
};

void TestPropertyTovikIotDataItem::defaults()
{
    const Item item;
    QVERIFY(item.name.isEmpty());
    QVERIFY(item.dataitem_id.isEmpty());
    QCOMPARE(item.type, QString::fromLatin1("16Bit-INT"));
    QCOMPARE(item.length, 1);
    QCOMPARE(item.value.userType(), int(QMetaType::QString));
    QVERIFY(item.value.toString().isEmpty());
    QCOMPARE(item.cloud_status, 0);
    QVERIFY(!item.alert);
    QCOMPARE(item.update_time, 0);
    QVERIFY(!item.marked);
    Item copy(item);
    QVERIFY(copy == item);
}

void TestPropertyTovikIotDataItem::initialResetsEveryMember()
{
    Item item = filledItem();
    item.Initial();
    QCOMPARE(describe(item), describe(Item()));
}

void TestPropertyTovikIotDataItem::comparisonFinds()
{
    QFETCH(int, index);
    Item item = filledItem();
    Item changed = changedItem(index);
    QVERIFY(item == filledItem());
    QVERIFY(!(item != filledItem()));
    QVERIFY(!(item == changed));
    QVERIFY(item != changed);
    QVERIFY(!(changed == item));
    QVERIFY(changed != item);
}

void TestPropertyTovikIotDataItem::everyCopyCarries()
{
    QFETCH(int, index);
    const Item changed = changedItem(index);
    const QStringList expected = describe(changed);
    const Item copy(changed);
    QCOMPARE(describe(copy), expected);

    Item assigned = filledItem(2);
    QCOMPARE(&(assigned = changed), &assigned);
    QCOMPARE(describe(assigned), expected);

    Item renewed = filledItem(2);
    renewed.RenewAllmemeber(changed);
    QCOMPARE(describe(renewed), expected);

    assigned.Initial();
    renewed.name.append(QLatin1Char('x'));
    QCOMPARE(describe(changed), expected); // the copies are values of their own
}

void TestPropertyTovikIotDataItem::selfAssignmentKeepsAll()
{
    Item item = filledItem();
    const Item& same = item;
    item = same;
    QCOMPARE(describe(item), describe(filledItem()));
    item.RenewAllmemeber(same);
    QCOMPARE(describe(item), describe(filledItem()));
    QVERIFY(item == same);
    QVERIFY(!(item != same));
}

// Values compare as variants do: 1 from a stored file equals 1 from the service, whatever its
// width.
void TestPropertyTovikIotDataItem::equalNumbersOfDifferentTypesAreEqual()
{
    Item item = itemWith(1);
    QVERIFY(item == itemWith(QVariant::fromValue<short>(1)));
    QVERIFY(item == itemWith(1u));
    QVERIFY(item != itemWith(QVariant::fromValue<short>(2)));
}

void TestPropertyTovikIotDataItem::emptyTextIsNotNoValue()
{
    Item item;
    QVERIFY(item != itemWith(QVariant()));
    Item without_value = itemWith(QVariant());
    QVERIFY(without_value != Item());
    QVERIFY(item == itemWith(QString()));
}

void TestPropertyTovikIotDataItem::initialIsTheFirstVirtual()
{
    QCOMPARE(vtableSlot(&Item::Initial), 0);
    QCOMPARE(vtableSlot(&Item::RenewAllmemeber), -1);
    QCOMPARE(vtableSlot(&Item::operator==), -1);
}

// Hosts compile the class for themselves: its members stay where they are.
void TestPropertyTovikIotDataItem::layout()
{
    struct Model
    {
        void* table;
        QString name, dataitem_id, type;
        int length;
        QVariant value;
        int cloud_status;
        bool alert;
        int update_time;
        bool marked;
    };
    QCOMPARE(sizeof(Item), sizeof(Model));
    const Item item;
    const auto offset = [&item](const void* member) {
        return size_t(static_cast<const char*>(member) - reinterpret_cast<const char*>(&item));
    };
    QCOMPARE(offset(&item.name), offsetof(Model, name));
    QCOMPARE(offset(&item.dataitem_id), offsetof(Model, dataitem_id));
    QCOMPARE(offset(&item.type), offsetof(Model, type));
    QCOMPARE(offset(&item.length), offsetof(Model, length));
    QCOMPARE(offset(&item.value), offsetof(Model, value));
    QCOMPARE(offset(&item.cloud_status), offsetof(Model, cloud_status));
    QCOMPARE(offset(&item.alert), offsetof(Model, alert));
    QCOMPARE(offset(&item.update_time), offsetof(Model, update_time));
    QCOMPARE(offset(&item.marked), offsetof(Model, marked));
}

QTEST_GUILESS_MAIN(TestPropertyTovikIotDataItem)
#include "tst_property_tovik_iot_dataitem.moc"
