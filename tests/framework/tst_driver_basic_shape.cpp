#include "framework/driver_basic.h"
#include "tests/framework/test_driver.h"
#include "tests/interface/vtable_slot.h"
#include "tests/support/meta_methods.h"

#include <QMetaMethod>
#include <QTest>

namespace {

/// Shows the protected slots.
class Probe : public TestDriver
{
public:
    using DriverBasic::SlotGetValuesByteArray;
    using DriverBasic::SlotSetValuesByteArray;
    using DriverBasic::SlotUpdateDrvEthernet;
    using DriverBasic::SlotUpdateDrvSerial;

    Probe() : TestDriver(nullptr) {}

    int GetCmdCode(int selector, const QString& key) override { return selector + key.size(); }
};

} // namespace

/// What hosts and derived drivers that were compiled elsewhere rely on.
class TestDriverBasicShape : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void virtualOrder_data();
    void virtualOrder();
    void callsThroughTheTable();
    void ownMethodsAre();
    void slotsAreProtected();
    void directions();
};

void TestDriverBasicShape::virtualOrder_data()
{
    QTest::addColumn<int>("slot");
    QTest::addColumn<int>("expected");
    // Those of the interface keep their places.
    QTest::newRow("IsTransparentModeSupported")
        << vtableSlot(&DriverBasic::IsTransparentModeSupported) << 12;
    QTest::newRow("RunTransparentRequest") << vtableSlot(&DriverBasic::RunTransparentRequest) << 13;
    // The driver's own follow at once.
    QTest::newRow("request_build") << vtableSlot(&DriverBasic::request_build) << 14;
    QTest::newRow("response_parse") << vtableSlot(&DriverBasic::response_parse) << 15;
    QTest::newRow("doCmdSM") << vtableSlot(&DriverBasic::doCmdSM) << 16;
    QTest::newRow("doCmdSM_Offline") << vtableSlot(&DriverBasic::doCmdSM_Offline) << 17;
    QTest::newRow("GetCmdCode") << vtableSlot(&DriverBasic::GetCmdCode) << 18;
    QTest::newRow("GetOffLineRawData") << vtableSlot(&DriverBasic::GetOffLineRawData) << 19;
    QTest::newRow("recv_abnormal_handler") << vtableSlot(&DriverBasic::recv_abnormal_handler) << 20;
    QTest::newRow("request_send_wait") << vtableSlot(&DriverBasic::request_send_wait) << 21;
    QTest::newRow("UpdateSerialParameter") << vtableSlot(&DriverBasic::UpdateSerialParameter) << 22;
    QTest::newRow("SlotSetValuesByteArray") << vtableSlot(&Probe::SlotSetValuesByteArray) << 23;
    QTest::newRow("SlotGetValuesByteArray") << vtableSlot(&Probe::SlotGetValuesByteArray) << 24;
    QTest::newRow("SlotUpdateDrvSerial") << vtableSlot(&Probe::SlotUpdateDrvSerial) << 25;
    QTest::newRow("SlotUpdateDrvEthernet") << vtableSlot(&Probe::SlotUpdateDrvEthernet) << 26;
}

void TestDriverBasicShape::virtualOrder()
{
    QFETCH(int, slot);
    QFETCH(int, expected);
    QCOMPARE(slot, expected);
}

// As a host does that was compiled against other headers of the same shape.
void TestDriverBasicShape::callsThroughTheTable()
{
    using CommandCode = int (*)(DriverBasic*, int, const QString&);
    Probe probe;
    const auto command_code = reinterpret_cast<CommandCode>(vtableEntry(&probe, 18));
    QCOMPARE(command_code(&probe, 40, QLatin1String("ab")), 42);
}

void TestDriverBasicShape::ownMethodsAre()
{
    const QMetaObject& meta_object = DriverBasic::staticMetaObject;
    QCOMPARE(QByteArray(meta_object.className()), QByteArray("DriverBasic"));
    QCOMPARE(meta_object.superClass(), &DrvInterface::staticMetaObject);
    const QStringList expected{
        QLatin1String(
            "slot SlotSetValuesByteArray(QString,QString,int,QByteArray,QSharedPointer<AddrData>) "
            "unit_name,link_name,station_no,ba,addr"),
        QLatin1String("slot SlotGetValuesByteArray(QString,QString,int,QSharedPointer<AddrData>) "
                      "unit_name,link_name,station_no,addr"),
        QLatin1String("slot SlotUpdateDrvSerial()"),
        QLatin1String("slot SlotUpdateDrvEthernet()"),
    };
    QCOMPARE(ownMethods(meta_object), expected);
    QCOMPARE(meta_object.propertyCount(), meta_object.propertyOffset());
    QCOMPARE(meta_object.enumeratorCount(), meta_object.enumeratorOffset());
    QCOMPARE(meta_object.constructorCount(), 0);
}

void TestDriverBasicShape::slotsAreProtected()
{
    const QMetaObject& meta_object = DriverBasic::staticMetaObject;
    for (int i = meta_object.methodOffset(); i < meta_object.methodCount(); ++i) {
        QCOMPARE(meta_object.method(i).access(), QMetaMethod::Protected);
        QCOMPARE(QByteArray(meta_object.method(i).typeName()), QByteArray("void"));
    }
}

void TestDriverBasicShape::directions()
{
    QCOMPARE(int(CMD_READ), 0);
    QCOMPARE(int(CMD_WRITE), 1);
}

QTEST_GUILESS_MAIN(TestDriverBasicShape)
#include "tst_driver_basic_shape.moc"
