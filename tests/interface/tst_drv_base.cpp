#include "interface/drv_base.h"
#include "tests/interface/vtable_slot.h"

#include <QTest>

#include <type_traits>

namespace {

class Derived : public DrvBase
{
public:
    explicit Derived(bool* is_destroyed) : is_destroyed_(is_destroyed) {}
    ~Derived() override { *is_destroyed_ = true; }

private:
    bool* is_destroyed_;
};

} // namespace

class TestDrvBase : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaults();
    void lookUpFindsWhatTheHostSet_data();
    void lookUpFindsWhatTheHostSet();
    void lookUpOfAMissingKeyInsertsIt();
    void lookUpIsCaseSensitive();
    void lookUpReturnsACopy();
    void destructorIsVirtual();
    void destructorsAreTheOnlyVirtuals();
    void layout();
};

void TestDrvBase::defaults()
{
    const DrvBase base;
    QVERIFY(base.link_name.isEmpty());
    QVERIFY(base.driver_specific_data.isEmpty());
    QCOMPARE(base.request_delay, 0);
    QCOMPARE(base.response_timeout, 10);
    QCOMPARE(base.retry_count, 0);
    QCOMPARE(base.link_param_a, 0);
    QCOMPARE(base.link_param_b, 255);
}

void TestDrvBase::lookUpFindsWhatTheHostSet_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("number") << QString::fromLatin1("poll_interval") << QVariant(5);
    QTest::newRow("text") << QString::fromLatin1("name") << QVariant(QString::fromLatin1("x"));
    QTest::newRow("invalid") << QString::fromLatin1("nothing") << QVariant();
    QTest::newRow("empty key") << QString() << QVariant(true);
}

void TestDrvBase::lookUpFindsWhatTheHostSet()
{
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    DrvBase base;
    base.driver_specific_data.insert(key, value);
    const QVariant found = base.GetDriverSpecificData(key);
    QCOMPARE(found, value);
    QCOMPARE(found.userType(), value.userType());
    QCOMPARE(base.driver_specific_data.size(), 1);
}

void TestDrvBase::lookUpOfAMissingKeyInsertsIt()
{
    const QString key = QString::fromLatin1("missing");
    DrvBase base;
    base.driver_specific_data.insert(QString::fromLatin1("other"), 1);
    const QVariant value = base.GetDriverSpecificData(key);
    QVERIFY(!value.isValid());
    QCOMPARE(value.toInt(), 0);
    QVERIFY(!value.toBool());
    QCOMPARE(base.driver_specific_data.size(), 2);
    QVERIFY(base.driver_specific_data.contains(key));
    QVERIFY(!base.driver_specific_data.value(key).isValid());

    base.driver_specific_data[key] = 7; // the second look-up finds the entry, and adds none
    QCOMPARE(base.GetDriverSpecificData(key), QVariant(7));
    QCOMPARE(base.driver_specific_data.size(), 2);
}

void TestDrvBase::lookUpIsCaseSensitive()
{
    DrvBase base;
    base.driver_specific_data.insert(QString::fromLatin1("key"), 1);
    QVERIFY(!base.GetDriverSpecificData(QString::fromLatin1("Key")).isValid());
    QCOMPARE(base.driver_specific_data.size(), 2);
}

void TestDrvBase::lookUpReturnsACopy()
{
    const QString key = QString::fromLatin1("key");
    DrvBase base;
    base.driver_specific_data.insert(key, 1);
    QVariant value = base.GetDriverSpecificData(key);
    value = 2;
    QCOMPARE(base.GetDriverSpecificData(key), QVariant(1));
    static_assert(std::is_same<decltype(base.GetDriverSpecificData(key)), QVariant>::value,
                  "a reference into the map would go stale");
}

void TestDrvBase::destructorIsVirtual()
{
    bool is_destroyed = false;
    const DrvBase* base = new Derived(&is_destroyed);
    delete base;
    QVERIFY(is_destroyed);
}

void TestDrvBase::destructorsAreTheOnlyVirtuals()
{
    class Next : public DrvBase
    {
    public:
        virtual void firstBehind() {}
    };
    QCOMPARE(vtableSlot(&Next::firstBehind), 2); // a destructor takes two places
    QCOMPARE(vtableSlot(&DrvBase::GetDriverSpecificData), -1);
}

// The host fills the members by itself: they stay where they are.
void TestDrvBase::layout()
{
    struct Model
    {
        void* table;
        QString link_name;
        QMap<QString, QVariant> driver_specific_data;
        int request_delay, response_timeout, retry_count, link_param_a, link_param_b;
    };
    QCOMPARE(sizeof(DrvBase), sizeof(Model));
    const DrvBase base;
    const auto offset = [&base](const void* member) {
        return size_t(static_cast<const char*>(member) - reinterpret_cast<const char*>(&base));
    };
    QCOMPARE(offset(&base.link_name), offsetof(Model, link_name));
    QCOMPARE(offset(&base.driver_specific_data), offsetof(Model, driver_specific_data));
    QCOMPARE(offset(&base.request_delay), offsetof(Model, request_delay));
    QCOMPARE(offset(&base.response_timeout), offsetof(Model, response_timeout));
    QCOMPARE(offset(&base.retry_count), offsetof(Model, retry_count));
    QCOMPARE(offset(&base.link_param_a), offsetof(Model, link_param_a));
    QCOMPARE(offset(&base.link_param_b), offsetof(Model, link_param_b));
}

QTEST_GUILESS_MAIN(TestDrvBase)
#include "tst_drv_base.moc"
