#include "tests/interface/vtable_slot.h"
#include "tests/property/records.h"

#include <QTest>

namespace {

using Group = PropertyTovikIotGroup;

/// A way to make one member differ from that of filledGroup().
struct Change
{
    const char* name;
    void (*apply)(Group* group);
};

const Change changes[] = {
    {"group_id", [](Group* group) { group->group_id = QLatin1String("G 1"); }},
    {"name", [](Group* group) { group->name.clear(); }},
    {"location", [](Group* group) { group->location = QLatin1String("hall 2"); }},
    {"ddLocation", [](Group* group) { group->ddLocation = QLatin1String("hall 1"); }},
    {"alert", [](Group* group) { group->alert = false; }},
    {"permission", [](Group* group) { group->permission = QLatin1String("RW"); }},
    {"marked", [](Group* group) { group->marked = false; }},
    {"dataitems: one less", [](Group* group) { group->dataitems.removeLast(); }},
    {"dataitems: one more", [](Group* group) { group->dataitems.append(filledItem(3)); }},
    {"dataitems: order", [](Group* group) { group->dataitems.swapItemsAt(0, 1); }},
    {"dataitems: a flag in the last", [](Group* group) { group->dataitems[1].marked = false; }},
};

void addChangeRows()
{
    QTest::addColumn<int>("index");
    int index = 0;
    for (const Change& change : changes)
        QTest::newRow(change.name) << index++;
}

Group changedGroup(int index)
{
    Group group = filledGroup();
    changes[index].apply(&group);
    return group;
}

} // namespace

class TestPropertyTovikIotGroup : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaults();
    void initialKeepsTheItemsAlone();
    void comparisonFinds_data() { addChangeRows(); }
    void comparisonFinds();
    void everyCopyCarries_data() { addChangeRows(); }
    void everyCopyCarries();
    void copiesShareTheItemsUntilTheyChange();
    void selfAssignmentKeepsAll();
    void initialIsTheFirstVirtual();
    void layout();
};

void TestPropertyTovikIotGroup::defaults()
{
    const Group group;
    QVERIFY(group.group_id.isEmpty());
    QVERIFY(group.name.isEmpty());
    QVERIFY(group.location.isEmpty());
    QVERIFY(group.ddLocation.isEmpty());
    QVERIFY(!group.alert);
    QCOMPARE(group.permission, QString::fromLatin1("RW"));
    QVERIFY(!group.marked);
    QVERIFY(group.dataitems.isEmpty());
}

void TestPropertyTovikIotGroup::initialKeepsTheItemsAlone()
{
    Group expected;
    expected.dataitems = filledGroup().dataitems;
    Group group = filledGroup();
    group.Initial();
    QCOMPARE(describe(group), describe(expected));
    QVERIFY(!group.alert); // also where a new one has them from Initial() alone
    QVERIFY(!group.marked);
}

void TestPropertyTovikIotGroup::comparisonFinds()
{
    QFETCH(int, index);
    Group group = filledGroup();
    Group changed = changedGroup(index);
    QVERIFY(group == filledGroup());
    QVERIFY(!(group != filledGroup()));
    QVERIFY(!(group == changed));
    QVERIFY(group != changed);
    QVERIFY(!(changed == group));
    QVERIFY(changed != group);
}

void TestPropertyTovikIotGroup::everyCopyCarries()
{
    QFETCH(int, index);
    const Group changed = changedGroup(index);
    const QStringList expected = describe(changed);
    const Group copy(changed);
    QCOMPARE(describe(copy), expected);

    Group assigned = filledGroup(2, 5);
    QCOMPARE(&(assigned = changed), &assigned);
    QCOMPARE(describe(assigned), expected);

    Group renewed = filledGroup(2, 5);
    renewed.RenewAllmemeber(changed);
    QCOMPARE(describe(renewed), expected);
}

void TestPropertyTovikIotGroup::copiesShareTheItemsUntilTheyChange()
{
    const Group group = filledGroup();
    Group copy(group);
    QVERIFY(copy.dataitems.isSharedWith(group.dataitems));
    copy.dataitems[0].name = QLatin1String("changed");
    QVERIFY(!copy.dataitems.isSharedWith(group.dataitems));
    QCOMPARE(describe(group), describe(filledGroup()));
}

void TestPropertyTovikIotGroup::selfAssignmentKeepsAll()
{
    Group group = filledGroup();
    const Group& same = group;
    group = same;
    QCOMPARE(describe(group), describe(filledGroup()));
    group.RenewAllmemeber(same);
    QCOMPARE(describe(group), describe(filledGroup()));
    QVERIFY(group == same);
    QVERIFY(!(group != same));
}

void TestPropertyTovikIotGroup::initialIsTheFirstVirtual()
{
    QCOMPARE(vtableSlot(&Group::Initial), 0);
    QCOMPARE(vtableSlot(&Group::RenewAllmemeber), -1);
    QCOMPARE(vtableSlot(&Group::operator==), -1);
}

// Hosts compile the class for themselves: its members stay where they are.
void TestPropertyTovikIotGroup::layout()
{
    struct Model
    {
        void* table;
        QString group_id, name, location, ddLocation;
        bool alert;
        QString permission;
        bool marked;
        QList<PropertyTovikIotDataItem> dataitems;
    };
    QCOMPARE(sizeof(Group), sizeof(Model));
    const Group group;
    const auto offset = [&group](const void* member) {
        return size_t(static_cast<const char*>(member) - reinterpret_cast<const char*>(&group));
    };
    QCOMPARE(offset(&group.group_id), offsetof(Model, group_id));
    QCOMPARE(offset(&group.name), offsetof(Model, name));
    QCOMPARE(offset(&group.location), offsetof(Model, location));
    QCOMPARE(offset(&group.ddLocation), offsetof(Model, ddLocation));
    QCOMPARE(offset(&group.alert), offsetof(Model, alert));
    QCOMPARE(offset(&group.permission), offsetof(Model, permission));
    QCOMPARE(offset(&group.marked), offsetof(Model, marked));
    QCOMPARE(offset(&group.dataitems), offsetof(Model, dataitems));
}

QTEST_GUILESS_MAIN(TestPropertyTovikIotGroup)
#include "tst_property_tovik_iot_group.moc"
