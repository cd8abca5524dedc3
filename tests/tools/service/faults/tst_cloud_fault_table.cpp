#include "tools/service/faults/fault_table.h"

#include <QTest>

using namespace tovik_service::plant;
using namespace tovik_service::faults;

class TestCloudFaultTable : public QObject
{
    Q_OBJECT

private slots:
    void strikesCountTimes();
    void letsTheFirstPass();
    void endsWithItsTime();
    void choosesRequests_data();
    void choosesRequests();
    void firstAddedWins();
    void removalEndsWhatIsGoingOn();
    void refusesWhileActive();
    void handshakesAreCountedApart();
    void someWaitForAResumption();
};

namespace {

const RequestFacts value_of_a{ApiPath::Value, "a", "g"};

} // namespace

void TestCloudFaultTable::strikesCountTimes()
{
    FaultTable table;
    table.add(parseFault("hang:count=2"));
    QVERIFY(table.takeForRequest(value_of_a));
    QVERIFY(table.takeForRequest(value_of_a));
    QVERIFY(!table.takeForRequest(value_of_a));
    const FaultStatus status = table.list().at(0);
    QVERIFY(!status.active);
    QCOMPARE(status.applied, 2);
}

void TestCloudFaultTable::letsTheFirstPass()
{
    FaultTable table;
    table.add(parseFault("hang:after=2,path=value"));
    QVERIFY(!table.takeForRequest(value_of_a));
    QVERIFY(!table.takeForRequest({ApiPath::Login, "", ""}));
    QVERIFY(!table.takeForRequest(value_of_a));
    QVERIFY(table.takeForRequest(value_of_a));
}

void TestCloudFaultTable::endsWithItsTime()
{
    double now = 100;
    FaultTable table([&now] { return now; });
    table.add(parseFault("hang:seconds=5"));
    now = 104.9;
    const FaultPointer fault = table.takeForRequest(value_of_a);
    QVERIFY(fault && table.isInForce(*fault));
    now = 105;
    QVERIFY(!table.isInForce(*fault));
    QVERIFY(!table.takeForRequest(value_of_a));
}

void TestCloudFaultTable::choosesRequests_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<bool>("strikes");
    QTest::newRow("all paths") << QByteArray("hang") << true;
    QTest::newRow("its path") << QByteArray("hang:path=value") << true;
    QTest::newRow("another path") << QByteArray("hang:path=write") << false;
    QTest::newRow("its item") << QByteArray("hang:item=a") << true;
    QTest::newRow("another item") << QByteArray("hang:item=b") << false;
    QTest::newRow("its group") << QByteArray("hang:group=g") << true;
    QTest::newRow("another group") << QByteArray("hang:group=h") << false;
}

void TestCloudFaultTable::choosesRequests()
{
    QFETCH(QByteArray, fault);
    QFETCH(bool, strikes);
    FaultTable table;
    table.add(parseFault(fault.toStdString()));
    QCOMPARE(table.takeForRequest(value_of_a) != nullptr, strikes);
}

void TestCloudFaultTable::firstAddedWins()
{
    FaultTable table;
    table.add(parseFault("empty:count=1"));
    table.add(parseFault("reset"));
    QVERIFY(table.takeForRequest(value_of_a)->spec.kind() == FaultKind::Empty);
    QVERIFY(table.takeForRequest(value_of_a)->spec.kind() == FaultKind::Reset);
}

void TestCloudFaultTable::removalEndsWhatIsGoingOn()
{
    FaultTable table;
    const int id = table.add(parseFault("hang:count=1"));
    const FaultPointer fault = table.takeForRequest(value_of_a);
    QVERIFY(table.isInForce(*fault));
    QVERIFY(table.remove(id));
    QVERIFY(!table.remove(id));
    QVERIFY(!table.isInForce(*fault));
    table.add(parseFault("hang"));
    const FaultPointer other = table.takeForRequest(value_of_a);
    table.clear();
    QVERIFY(!table.isInForce(*other));
    QVERIFY(table.list().empty());
}

void TestCloudFaultTable::refusesWhileActive()
{
    double now = 0;
    FaultTable table([&now] { return now; });
    QVERIFY(!table.isRefusing());
    table.add(parseFault("refuse:seconds=1"));
    QVERIFY(table.isRefusing());
    QVERIFY(!table.takeForRequest(value_of_a));
    now = 1;
    QVERIFY(!table.isRefusing());
}

void TestCloudFaultTable::handshakesAreCountedApart()
{
    FaultTable table;
    table.add(parseFault("expired:count=1,after=1"));
    QVERIFY(!table.takeForRequest(value_of_a));
    QVERIFY(!table.takeForHandshake({}));
    QVERIFY(table.takeForHandshake({}));
    QVERIFY(!table.takeForHandshake({}));
}

void TestCloudFaultTable::someWaitForAResumption()
{
    FaultTable table;
    table.add(parseFault("resume-close:count=1"));
    table.add(parseFault("resume-reset"));
    QVERIFY(!table.takeForHandshake({}));
    QVERIFY(table.takeForHandshake({true})->spec.kind() == FaultKind::ResumeClose);
    QVERIFY(table.takeForHandshake({true})->spec.kind() == FaultKind::ResumeReset);
}

QTEST_APPLESS_MAIN(TestCloudFaultTable)
#include "tst_cloud_fault_table.moc"
