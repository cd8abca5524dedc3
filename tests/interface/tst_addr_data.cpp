#include "interface/addr_data.h"

#include <QTest>

#include <type_traits>

// The host compiles the record for itself: members stand where they always stood.
class TestAddrData : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaults();
    void memberOrder();
};

void TestAddrData::defaults()
{
    const AddrData addr;
    QCOMPARE(addr.field1, 0);
    QVERIFY(addr.address.isEmpty());
    QCOMPARE(addr.data_length, 0);
    QCOMPARE(addr.extra1, 0);
    QCOMPARE(addr.extra2, 0);
}

void TestAddrData::memberOrder()
{
    struct Model
    {
        int first;
        QString second;
        int third, fourth, fifth;
    };
    static_assert(std::is_standard_layout<AddrData>::value, "offsets are not defined");
    QCOMPARE(offsetof(AddrData, field1), offsetof(Model, first));
    QCOMPARE(offsetof(AddrData, address), offsetof(Model, second));
    QCOMPARE(offsetof(AddrData, data_length), offsetof(Model, third));
    QCOMPARE(offsetof(AddrData, extra1), offsetof(Model, fourth));
    QCOMPARE(offsetof(AddrData, extra2), offsetof(Model, fifth));
    QCOMPARE(sizeof(AddrData), sizeof(Model));
}

QTEST_GUILESS_MAIN(TestAddrData)
#include "tst_addr_data.moc"
