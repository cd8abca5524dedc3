#include "cloud/drv_tovik_iot.h"
#include "cloud/tovik_iot.h"
#include "tests/support/log_recorder.h"
#include "tests/support/meta_methods.h"

#include <QMetaType>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>

namespace {

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

/// The client as an object: what it declares, registers and logs when it is made.
class TestTovikIot : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void registersItsListOnce();
    void methodsInOrder();
    void driverMethodsInOrder();
    void logsHostAndProject();
    void hasNoParentAndNoChildren();
    void linkIsOnlyKept();
};

/// First: the type must not be known before a client has been made.
void TestTovikIot::registersItsListOnce()
{
    QCOMPARE(QMetaType::type("QList<MonitorDataItem>"), int(QMetaType::UnknownType));
    PropertyTovikIot property;
    const TovikIot client(&property);
    const int id = QMetaType::type("QList<MonitorDataItem>");
    QVERIFY(id >= QMetaType::User);
    const TovikIot second(&property);
    QCOMPARE(QMetaType::type("QList<MonitorDataItem>"), id);
    QCOMPARE(QMetaType::type("PropertyTovikIot"), int(QMetaType::UnknownType));
}

void TestTovikIot::methodsInOrder()
{
    QCOMPARE(ownMethods(TovikIot::staticMetaObject),
             (QStringList{latin1("signal EmitGetMonitor(QList<MonitorDataItem>) update_list"),
                          latin1("signal EmitUpdateErrCode(int) result"),
                          latin1("slot SlotInitialLater()"),
                          latin1("slot SlotWriteValue(int,QVariant) index,write_value"),
                          latin1("slot SlotReconnect()"), latin1("slot SlotMonitorTimeOut()")}));
}

void TestTovikIot::driverMethodsInOrder()
{
    QCOMPARE(
        ownMethods(DrvTovikIot::staticMetaObject),
        (QStringList{latin1("signal EmitInitialLater()"),
                     latin1("signal EmitWriteValue(int,QVariant) index,write_value"),
                     latin1("signal EmitReconnect()"), latin1("private slot SlotInitialConnect()"),
                     latin1("private slot SlotCloseConnect()"),
                     latin1("private slot SlotGetMonitor(QList<MonitorDataItem>) update_list"),
                     latin1("private slot SlotUpdateErrCode(int) result"),
                     latin1("private slot SlotGetValuesByteArray(QString,QString,int,"
                            "QSharedPointer<AddrData>) unit_name,link_name,station_no,addr"),
                     latin1("private slot SlotSetValuesByteArray(QString,QString,int,QByteArray,"
                            "QSharedPointer<AddrData>) unit_name,link_name,station_no,ba,addr")}));
    QCOMPARE(QByteArray(DrvTovikIot::staticMetaObject.superClass()->className()),
             QByteArray("DrvInterface"));
}

void TestTovikIot::logsHostAndProject()
{
    PropertyTovikIot property;
    property.host = latin1("https://plant.example");
    property.project = latin1("Plant 1");
    property.password = latin1("secret");
    LogRecorder log;
    const TovikIot client(&property);
    QCOMPARE(log.lines(), QStringList{latin1("[TOVIK IoT] Host:  \"https://plant.example\"  -> "
                                             "Project:  \"Plant 1\"")});
}

void TestTovikIot::hasNoParentAndNoChildren()
{
    PropertyTovikIot property;
    const TovikIot client(&property);
    QVERIFY(!client.parent());
    QVERIFY(client.findChildren<QObject*>().isEmpty());
}

void TestTovikIot::linkIsOnlyKept()
{
    PropertyTovikIot property;
    TovikIot client(&property);
    QTcpSocket link;
    LogRecorder log;
    client.SetDrvLink(&link);
    client.RemoveDrvLink();
    QVERIFY(log.lines().isEmpty());
    QCOMPARE(link.state(), QAbstractSocket::UnconnectedState);
}

QTEST_GUILESS_MAIN(TestTovikIot)
#include "tst_tovik_iot.moc"
