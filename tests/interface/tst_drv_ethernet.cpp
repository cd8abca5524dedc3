#include "interface/drv_ethernet.h"
#include "tests/support/meta_methods.h"

#include <QTest>
#include <QThread>

class TestDrvEthernet : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isASocketAndALink();
    void ownMethodsAre();
    void emissionIsDeliveredBeforeItReturns();
    void emissionIsDeliveredInTheEmittingThread();
    void isDeletedThroughEitherBase();
};

void TestDrvEthernet::isASocketAndALink()
{
    QObject parent;
    auto* link = new DrvEthernet(&parent);
    QCOMPARE(link->parent(), &parent);
    QTcpSocket* socket = link;
    QCOMPARE(socket->state(), QAbstractSocket::UnconnectedState);
    DrvBase* base = link;
    QCOMPARE(base->response_timeout, 10);
    QCOMPARE(base->link_param_b, 255);
    // The socket comes first: a pointer to the one is a pointer to the other.
    QCOMPARE(static_cast<void*>(socket), static_cast<void*>(link));
    QCOMPARE(reinterpret_cast<char*>(base) - reinterpret_cast<char*>(link),
             std::ptrdiff_t(sizeof(QTcpSocket)));
    QVERIFY(!DrvEthernet().parent());
}

void TestDrvEthernet::ownMethodsAre()
{
    const QMetaObject& meta_object = DrvEthernet::staticMetaObject;
    QCOMPARE(QByteArray(meta_object.className()), QByteArray("DrvEthernet"));
    QCOMPARE(meta_object.superClass(), &QTcpSocket::staticMetaObject);
    QCOMPARE(ownMethods(meta_object),
             QStringList(QLatin1String("signal EmitNotifyBeforeRelease()")));
    QCOMPARE(meta_object.propertyCount(), meta_object.propertyOffset());
}

void TestDrvEthernet::emissionIsDeliveredBeforeItReturns()
{
    DrvEthernet link;
    int calls = 0;
    connect(&link, &DrvEthernet::EmitNotifyBeforeRelease, [&] { ++calls; });
    Q_EMIT link.EmitNotifyBeforeRelease();
    QCOMPARE(calls, 1);
    Q_EMIT link.EmitNotifyBeforeRelease();
    QCOMPARE(calls, 2);
}

// Whoever releases the link may do so in any thread; a driver's direct connection runs there.
void TestDrvEthernet::emissionIsDeliveredInTheEmittingThread()
{
    DrvEthernet link;
    QThread* seen = nullptr;
    connect(
        &link, &DrvEthernet::EmitNotifyBeforeRelease, this,
        [&] { seen = QThread::currentThread(); }, Qt::DirectConnection);
    QScopedPointer<QThread> thread(QThread::create([&] { link.EmitNotifyBeforeRelease(); }));
    thread->start();
    QVERIFY(thread->wait());
    QCOMPARE(seen, thread.data());
}

void TestDrvEthernet::isDeletedThroughEitherBase()
{
    int destroyed = 0;
    QTcpSocket* socket = new DrvEthernet;
    connect(socket, &QObject::destroyed, [&] { ++destroyed; });
    delete socket;
    QCOMPARE(destroyed, 1);

    auto* link = new DrvEthernet;
    connect(link, &QObject::destroyed, [&] { ++destroyed; });
    DrvBase* base = link;
    delete base;
    QCOMPARE(destroyed, 2);
}

QTEST_GUILESS_MAIN(TestDrvEthernet)
#include "tst_drv_ethernet.moc"
