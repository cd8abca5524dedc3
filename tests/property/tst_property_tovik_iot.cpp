#include "tests/interface/vtable_slot.h"
#include "tests/property/records.h"

#include <QTest>
#include <QUrl>

namespace {

using Root = PropertyTovikIot;

/// A way to make one member differ from that of filledRoot().
struct Change
{
    const char* name;
    void (*apply)(Root* root);
};

const Change changes[] = {
    {"aux_flag", [](Root* root) { root->aux_flag = false; }},
    {"host", [](Root* root) { root->host = QLatin1String("http://other.example"); }},
    {"aux_value", [](Root* root) { root->aux_value = 7; }},
    {"project", [](Root* root) { root->project = QLatin1String("Plant"); }},
    {"email", [](Root* root) { root->email.clear(); }},
    {"password", [](Root* root) { root->password = QLatin1String("secret "); }},
    {"groups: one less", [](Root* root) { root->groups.removeFirst(); }},
    {"groups: one more", [](Root* root) { root->groups.append(filledGroup(3)); }},
    {"groups: a flag in the last", [](Root* root) { root->groups[1].marked = false; }},
    {"groups: a flag in an item", [](Root* root) { root->groups[1].dataitems[0].alert = false; }},
    {"dataitems: one less", [](Root* root) { root->dataitems.removeLast(); }},
    {"dataitems: one more", [](Root* root) { root->dataitems.append(filledItem()); }},
    {"dataitems: order", [](Root* root) { root->dataitems.swapItemsAt(0, 1); }},
    {"dataitems: a flag in the last", [](Root* root) { root->dataitems[1].marked = false; }},
};

void addChangeRows()
{
    QTest::addColumn<int>("index");
    int index = 0;
    for (const Change& change : changes)
        QTest::newRow(change.name) << index++;
}

Root changedRoot(int index)
{
    Root root = filledRoot();
    changes[index].apply(&root);
    return root;
}

} // namespace

class TestPropertyTovikIot : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaults();
    void initialKeepsTheListsAlone();
    void comparisonFinds_data() { addChangeRows(); }
    void comparisonFinds();
    void everyCopyCarries_data() { addChangeRows(); }
    void everyCopyCarries();
    void copiesShareTheListsUntilTheyChange();
    void selfAssignmentKeepsAll();
    void initialIsTheFirstVirtual();
    void layout();
};

void TestPropertyTovikIot::defaults()
{
    const Root root;
    QVERIFY(!root.aux_flag);
    QCOMPARE(root.host, QString::fromLatin1("https://cloud.example"));
    QCOMPARE(QUrl(root.host, QUrl::StrictMode).scheme(), QString::fromLatin1("https"));
    QCOMPARE(root.aux_value, 0);
    QVERIFY(root.project.isEmpty());
    QVERIFY(root.email.isEmpty());
    QVERIFY(root.password.isEmpty());
    QVERIFY(root.groups.isEmpty());
    QVERIFY(root.dataitems.isEmpty());
}

void TestPropertyTovikIot::initialKeepsTheListsAlone()
{
    Root expected;
    expected.groups = filledRoot().groups;
    expected.dataitems = filledRoot().dataitems;
    Root root = filledRoot();
    root.Initial();
    QCOMPARE(describe(root), describe(expected));
}

void TestPropertyTovikIot::comparisonFinds()
{
    QFETCH(int, index);
    Root root = filledRoot();
    Root changed = changedRoot(index);
    QVERIFY(root == filledRoot());
    QVERIFY(!(root != filledRoot()));
    QVERIFY(!(root == changed));
    QVERIFY(root != changed);
    QVERIFY(!(changed == root));
    QVERIFY(changed != root);
}

void TestPropertyTovikIot::everyCopyCarries()
{
    QFETCH(int, index);
    const Root changed = changedRoot(index);
    const QStringList expected = describe(changed);
    const Root copy(changed);
    QCOMPARE(describe(copy), expected);

    Root assigned = filledRoot(4, 4);
    QCOMPARE(&(assigned = changed), &assigned);
    QCOMPARE(describe(assigned), expected);

    Root renewed = filledRoot(4, 4);
    renewed.RenewAllmemeber(changed);
    QCOMPARE(describe(renewed), expected);
}

void TestPropertyTovikIot::copiesShareTheListsUntilTheyChange()
{
    const Root root = filledRoot();
    Root copy(root);
    QVERIFY(copy.groups.isSharedWith(root.groups));
    QVERIFY(copy.dataitems.isSharedWith(root.dataitems));
    copy.groups[1].dataitems[0].value = 99;
    copy.dataitems[0].value = 99;
    QVERIFY(!copy.groups.isSharedWith(root.groups));
    QVERIFY(!copy.dataitems.isSharedWith(root.dataitems));
    QCOMPARE(describe(root), describe(filledRoot()));
}

void TestPropertyTovikIot::selfAssignmentKeepsAll()
{
    Root root = filledRoot();
    const Root& same = root;
    root = same;
    QCOMPARE(describe(root), describe(filledRoot()));
    root.RenewAllmemeber(same);
    QCOMPARE(describe(root), describe(filledRoot()));
    QVERIFY(root == same);
    QVERIFY(!(root != same));
}

void TestPropertyTovikIot::initialIsTheFirstVirtual()
{
    QCOMPARE(vtableSlot(&Root::Initial), 0);
    QCOMPARE(vtableSlot(&Root::RenewAllmemeber), -1);
    QCOMPARE(vtableSlot(&Root::operator==), -1);
}

// Hosts compile the class for themselves: its members stay where they are.
void TestPropertyTovikIot::layout()
{
    struct Model
    {
        void* table;
        bool aux_flag;
        QString host;
        int aux_value;
        QString project, email, password;
        QList<PropertyTovikIotGroup> groups;
        QList<PropertyTovikIotDataItem> dataitems;
    };
    QCOMPARE(sizeof(Root), sizeof(Model));
    const Root root;
    const auto offset = [&root](const void* member) {
        return size_t(static_cast<const char*>(member) - reinterpret_cast<const char*>(&root));
    };
    QCOMPARE(offset(&root.aux_flag), offsetof(Model, aux_flag));
    QCOMPARE(offset(&root.host), offsetof(Model, host));
    QCOMPARE(offset(&root.aux_value), offsetof(Model, aux_value));
    QCOMPARE(offset(&root.project), offsetof(Model, project));
    QCOMPARE(offset(&root.email), offsetof(Model, email));
    QCOMPARE(offset(&root.password), offsetof(Model, password));
    QCOMPARE(offset(&root.groups), offsetof(Model, groups));
    QCOMPARE(offset(&root.dataitems), offsetof(Model, dataitems));
}

QTEST_GUILESS_MAIN(TestPropertyTovikIot)
#include "tst_property_tovik_iot.moc"
