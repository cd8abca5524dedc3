#include "interface/drv_serial.h"
#include "tests/support/meta_methods.h"

#include <QTest>

class TestDrvSerial : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isAPortAndALink();
    void constructedWithAName();
    void ownMethodsAreNone();
    void isDeletedThroughEitherBase();
};

void TestDrvSerial::isAPortAndALink()
{
    QObject parent;
    auto* link = new DrvSerial(&parent);
    QCOMPARE(link->parent(), &parent);
    QextSerialPort* port = link;
    QVERIFY(!port->isOpen());
    QCOMPARE(port->baudRate(), BAUD9600);
    QCOMPARE(port->queryMode(), QextSerialPort::EventDriven);
    DrvBase* base = link;
    QCOMPARE(base->response_timeout, 10);
    QCOMPARE(base->link_param_b, 255);
    QCOMPARE(static_cast<void*>(port), static_cast<void*>(link));
    QVERIFY(!DrvSerial().parent());
}

void TestDrvSerial::constructedWithAName()
{
    QObject parent;
    const auto* link = new DrvSerial(QString::fromLatin1("/dev/ttyS9"), &parent);
    QCOMPARE(link->parent(), &parent);
    QVERIFY(link->portName().endsWith(QLatin1String("ttyS9")));
    QVERIFY(!link->isOpen());
    QCOMPARE(link->queryMode(), QextSerialPort::EventDriven);
    QVERIFY(link->link_name.isEmpty()); // the host's name for the link, not the device's
}

void TestDrvSerial::ownMethodsAreNone()
{
    const QMetaObject& meta_object = DrvSerial::staticMetaObject;
    QCOMPARE(QByteArray(meta_object.className()), QByteArray("DrvSerial"));
    QCOMPARE(meta_object.superClass(), &QextSerialPort::staticMetaObject);
    QCOMPARE(ownMethods(meta_object), QStringList());
    QCOMPARE(meta_object.propertyCount(), meta_object.propertyOffset());
}

void TestDrvSerial::isDeletedThroughEitherBase()
{
    int destroyed = 0;
    QextSerialPort* port = new DrvSerial;
    connect(port, &QObject::destroyed, [&] { ++destroyed; });
    delete port;
    QCOMPARE(destroyed, 1);

    auto* link = new DrvSerial;
    connect(link, &QObject::destroyed, [&] { ++destroyed; });
    DrvBase* base = link;
    delete base;
    QCOMPARE(destroyed, 2);
}

QTEST_GUILESS_MAIN(TestDrvSerial)
#include "tst_drv_serial.moc"
