#include "interface/drv_interface.h"
#include "tests/interface/vtable_slot.h"
#include "tests/support/meta_methods.h"

#include <QMetaMethod>
#include <QTest>

#include <functional>

namespace {

/// Counts emissions.
class EmissionCounter : public QObject
{
    Q_OBJECT

public:
    /// Counts those of every signal of \a sender, of its bases too.
    /// \return the number of signals.
    int watchAll(QObject* sender)
    {
        const QMetaObject* senders = sender->metaObject();
        const QMetaMethod slot = metaObject()->method(metaObject()->indexOfSlot("count()"));
        int connections = 0;
        for (int i = 0; i < senders->methodCount(); ++i) {
            if (senders->method(i).methodType() == QMetaMethod::Signal)
                connections += connect(sender, senders->method(i), this, slot) ? 1 : 0;
        }
        return connections;
    }

    int emissions = 0;

public Q_SLOTS:
    void count() { ++emissions; }
};

/// Shows QObject's protected virtual functions, and overrides the driver's own two.
class Probe : public DrvInterface
{
public:
    using QObject::childEvent;
    using QObject::connectNotify;
    using QObject::customEvent;
    using QObject::disconnectNotify;
    using QObject::timerEvent;

    bool IsTransparentModeSupported() override { return true; }
    void RunTransparentRequest(const QByteArray& request) override { received = request; }

    QByteArray received;
};

} // namespace

class TestDrvInterface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaults();
    void transparentModeDoesNothing();
    void ownMethodsAre();
    void signalIndices_data();
    void signalIndices();
    void everySignalReachesAStringConnection_data();
    void everySignalReachesAStringConnection();
    void virtualOrder_data();
    void virtualOrder();
    void callsThroughTheTable();
    void layout();
};

void TestDrvInterface::defaults()
{
    QObject parent;
    const auto* driver = new DrvInterface(&parent);
    QCOMPARE(driver->parent(), &parent);
    QVERIFY(!driver->unit_list);
    QVERIFY(driver->current_unit_name.isEmpty());
    QCOMPARE(driver->stop_flag, quintptr(0));
    QVERIFY(!DrvInterface().parent());
}

void TestDrvInterface::transparentModeDoesNothing()
{
    DrvInterface driver;
    QStringList units(QLatin1String("unit"));
    driver.unit_list = &units;
    driver.current_unit_name = QLatin1String("unit");
    driver.stop_flag = 1;
    EmissionCounter counter;
    QCOMPARE(counter.watchAll(&driver), 13); // ten of its own, three of QObject

    QVERIFY(!driver.IsTransparentModeSupported());
    for (const QByteArray& request : {QByteArray(), QByteArray("\x01\x03\0", 3)})
        driver.RunTransparentRequest(request);
    QCoreApplication::processEvents();

    QCOMPARE(counter.emissions, 0);
    QCOMPARE(driver.unit_list, &units);
    QCOMPARE(units, QStringList(QLatin1String("unit")));
    QCOMPARE(driver.current_unit_name, QString::fromLatin1("unit"));
    QCOMPARE(driver.stop_flag, quintptr(1));
    QVERIFY(driver.children().isEmpty());
}

// Hosts connect by these texts, and some by the indices.
static const char* const own_methods[] = {
    "signal SigResponse(QString,QString,QByteArray,int) unit_name,link_name,ba,status",
    "signal SigEventResponse(QString,QMap<QString,QByteArray>,int) link_name,type_data,result",
    "signal SigSetValuesByteArray(QString,QString,int,QByteArray,QSharedPointer<AddrData>) "
    "unit_name,link_name,station_no,ba,addr",
    "signal SigGetValuesByteArray(QString,QString,int,QSharedPointer<AddrData>) "
    "unit_name,link_name,station_no,addr",
    "signal SigUpdateDrvSerial()",
    "signal SigUpdateDrvEthernet()",
    "signal SigGetValuesByteArrayMix(QString,QString,int,QList<DataElementGroup>) "
    "unit_name,link_name,station_no,map",
    "signal SigTovikResponse(uchar,QByteArray,int) cmd,ba,status",
    "signal SigTovikInternalCmd(uchar,int,ushort,QByteArray) cmd,station_no,key_code,i_ba",
    "signal SigTransparentResponse(QByteArray,int) ba,status",
};

void TestDrvInterface::ownMethodsAre()
{
    const QMetaObject& meta_object = DrvInterface::staticMetaObject;
    QCOMPARE(QByteArray(meta_object.className()), QByteArray("DrvInterface"));
    QCOMPARE(meta_object.superClass(), &QObject::staticMetaObject);
    QStringList expected;
    for (const char* method : own_methods)
        expected.append(QLatin1String(method));
    QCOMPARE(ownMethods(meta_object), expected);
    QCOMPARE(meta_object.propertyCount(), meta_object.propertyOffset());
    QCOMPARE(meta_object.enumeratorCount(), meta_object.enumeratorOffset());
    QCOMPARE(meta_object.constructorCount(), 0);
}

static void addSignalRows()
{
    QTest::addColumn<QByteArray>("signature");
    QTest::addColumn<int>("index");
    int index = 0;
    for (const char* method : own_methods) {
        const QByteArray signature = QByteArray(method).split(' ').at(1);
        QTest::newRow(signature.constData()) << signature << index++;
    }
}

void TestDrvInterface::signalIndices_data()
{
    addSignalRows();
}

void TestDrvInterface::signalIndices()
{
    QFETCH(QByteArray, signature);
    QFETCH(int, index);
    const QMetaObject& meta_object = DrvInterface::staticMetaObject;
    const int absolute = meta_object.indexOfSignal(signature.constData());
    QCOMPARE(absolute - meta_object.methodOffset(), index);
    const QMetaMethod method = meta_object.method(absolute);
    QCOMPARE(QByteArray(method.typeName()), QByteArray("void"));
    QCOMPARE(method.access(), QMetaMethod::Public);
    QCOMPARE(method.attributes(), 0);
    QVERIFY(QByteArray(method.tag()).isEmpty());
}

void TestDrvInterface::everySignalReachesAStringConnection_data()
{
    addSignalRows();
}

// The arguments' values do not matter here; any of the right types do.
static void emitSignal(DrvInterface* driver, int index)
{
    const QString text;
    const QByteArray bytes;
    const QSharedPointer<AddrData> addr;
    const std::function<void()> emissions[] = {
        [&] { driver->SigResponse(text, text, bytes, 0); },
        [&] { driver->SigEventResponse(text, QMap<QString, QByteArray>(), 0); },
        [&] { driver->SigSetValuesByteArray(text, text, 0, bytes, addr); },
        [&] { driver->SigGetValuesByteArray(text, text, 0, addr); },
        [&] { driver->SigUpdateDrvSerial(); },
        [&] { driver->SigUpdateDrvEthernet(); },
        [&] { driver->SigGetValuesByteArrayMix(text, text, 0, QList<DataElementGroup>()); },
        [&] { driver->SigTovikResponse(0, bytes, 0); },
        [&] { driver->SigTovikInternalCmd(0, 0, 0, bytes); },
        [&] { driver->SigTransparentResponse(bytes, 0); },
    };
    emissions[index]();
}

void TestDrvInterface::everySignalReachesAStringConnection()
{
    QFETCH(QByteArray, signature);
    QFETCH(int, index);
    DrvInterface driver;
    EmissionCounter counter;
    const QByteArray signal = '2' + signature; // what SIGNAL() makes of it
    QVERIFY(connect(&driver, signal.constData(), &counter, SLOT(count())));
    for (int i = 0; i < 10; ++i) {
        emitSignal(&driver, i);
        QCOMPARE(counter.emissions, i < index ? 0 : 1);
    }
}

void TestDrvInterface::virtualOrder_data()
{
    QTest::addColumn<int>("slot");
    QTest::addColumn<int>("expected");
    // QObject's own places, with the two of its destructor at 3 and 4: the count is right.
    QTest::newRow("metaObject") << vtableSlot(&DrvInterface::metaObject) << 0;
    QTest::newRow("qt_metacast") << vtableSlot(&DrvInterface::qt_metacast) << 1;
    QTest::newRow("qt_metacall") << vtableSlot(&DrvInterface::qt_metacall) << 2;
    QTest::newRow("event") << vtableSlot(&Probe::event) << 5;
    QTest::newRow("eventFilter") << vtableSlot(&Probe::eventFilter) << 6;
    QTest::newRow("timerEvent") << vtableSlot(&Probe::timerEvent) << 7;
    QTest::newRow("childEvent") << vtableSlot(&Probe::childEvent) << 8;
    QTest::newRow("customEvent") << vtableSlot(&Probe::customEvent) << 9;
    QTest::newRow("connectNotify") << vtableSlot(&Probe::connectNotify) << 10;
    QTest::newRow("disconnectNotify") << vtableSlot(&Probe::disconnectNotify) << 11;
    // The driver's follow at once.
    QTest::newRow("IsTransparentModeSupported")
        << vtableSlot(&DrvInterface::IsTransparentModeSupported) << 12;
    QTest::newRow("RunTransparentRequest")
        << vtableSlot(&DrvInterface::RunTransparentRequest) << 13;
    QTest::newRow("signals are not virtual") << vtableSlot(&DrvInterface::SigResponse) << -1;
}

void TestDrvInterface::virtualOrder()
{
    QFETCH(int, slot);
    QFETCH(int, expected);
    QCOMPARE(slot, expected);
}

// As a host does that was compiled against other headers of the same shape.
void TestDrvInterface::callsThroughTheTable()
{
    using IsSupported = bool (*)(DrvInterface*);
    using RunRequest = void (*)(DrvInterface*, const QByteArray&);
    DrvInterface plain;
    Probe probe;
    const auto is_supported = [](DrvInterface* driver) {
        return reinterpret_cast<IsSupported>(vtableEntry(driver, 12))(driver);
    };
    QVERIFY(!is_supported(&plain));
    QVERIFY(is_supported(&probe));
    reinterpret_cast<RunRequest>(vtableEntry(&probe, 13))(&probe, QByteArray("request"));
    QCOMPARE(probe.received, QByteArray("request"));
}

void TestDrvInterface::layout()
{
    struct Model : QObject
    {
        QStringList* unit_list;
        QString current_unit_name;
        quintptr stop_flag;
    };
    QCOMPARE(sizeof(DrvInterface), sizeof(Model));
    const DrvInterface driver;
    const auto offset = [&driver](const void* member) {
        return size_t(static_cast<const char*>(member) - reinterpret_cast<const char*>(&driver));
    };
    QCOMPARE(offset(&driver.unit_list), sizeof(QObject));
    QCOMPARE(offset(&driver.current_unit_name), sizeof(QObject) + sizeof(void*));
    QCOMPARE(offset(&driver.stop_flag), sizeof(QObject) + 2 * sizeof(void*));
}

QTEST_GUILESS_MAIN(TestDrvInterface)
#include "tst_drv_interface.moc"
