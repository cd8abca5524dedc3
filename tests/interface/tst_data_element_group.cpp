#include "interface/data_element_group.h"

#include <QTest>

#include <type_traits>

// The host compiles the record for itself: members stand where they always stood.
class TestDataElementGroup : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaults();
    void memberOrder();
};

void TestDataElementGroup::defaults()
{
    const DataElementGroup element;
    QVERIFY(element.address.isEmpty());
    QCOMPARE(element.data_length, 0);
}

void TestDataElementGroup::memberOrder()
{
    struct Model
    {
        QString first;
        int second;
    };
    static_assert(std::is_standard_layout<DataElementGroup>::value, "offsets are not defined");
    QCOMPARE(offsetof(DataElementGroup, address), offsetof(Model, first));
    QCOMPARE(offsetof(DataElementGroup, data_length), offsetof(Model, second));
    QCOMPARE(sizeof(DataElementGroup), sizeof(Model));
}

QTEST_GUILESS_MAIN(TestDataElementGroup)
#include "tst_data_element_group.moc"
