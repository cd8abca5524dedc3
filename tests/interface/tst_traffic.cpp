#include "interface/drv_ethernet.h"
#include "interface/traffic.h"

#include <QDateTime>
#include <QTest>

namespace {

class Listener : public TrafficListener
{
public:
    void hear(const Traffic&) override {}
};

} // namespace

class TestTraffic : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isOfNow();
    void isToTheMicrosecond();
    void nobodyListensAtFirst();
    void listenerStandsAmongTheLinksData();
    void latterOfTwoListeners();
    void withoutAListenerTheDataIsAsBefore();
};

void TestTraffic::isOfNow()
{
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    const Traffic traffic(Traffic::taken, QByteArray("bytes"), 7, QLatin1String("text"));
    const qint64 after = QDateTime::currentMSecsSinceEpoch();
    QVERIFY2(traffic.time / 1000 >= before && traffic.time / 1000 <= after,
             qPrintable(QString::number(traffic.time)));
    QCOMPARE(traffic.kind, Traffic::taken);
    QCOMPARE(traffic.bytes, QByteArray("bytes"));
    QCOMPARE(traffic.code, 7);
    QCOMPARE(traffic.text, QString::fromLatin1("text"));
    QCOMPARE(traffic.number, 0);
}

// A clock of milliseconds would give a hundred readings within one.
void TestTraffic::isToTheMicrosecond()
{
    bool is_between_milliseconds = false;
    for (int i = 0; i < 100 && !is_between_milliseconds; ++i)
        is_between_milliseconds = Traffic(Traffic::sent).time % 1000 != 0;
    QVERIFY(is_between_milliseconds);
}

void TestTraffic::nobodyListensAtFirst()
{
    DrvEthernet link;
    QVERIFY(!traffic::listenerOf(link));
    QVERIFY(link.driver_specific_data.isEmpty()); // a look-up of the link itself would insert
    link.driver_specific_data.insert(QLatin1String("other"), 1);
    QVERIFY(!traffic::listenerOf(link));
    QCOMPARE(link.driver_specific_data.size(), 1);
}

void TestTraffic::listenerStandsAmongTheLinksData()
{
    DrvEthernet link;
    Listener listener;
    traffic::setListener(&link, &listener);
    QCOMPARE(traffic::listenerOf(link), &listener);
    QCOMPARE(link.driver_specific_data.keys(), QStringList(QLatin1String("traffic_listener")));
}

void TestTraffic::latterOfTwoListeners()
{
    DrvEthernet link;
    Listener first, second;
    traffic::setListener(&link, &first);
    traffic::setListener(&link, &second);
    QCOMPARE(traffic::listenerOf(link), &second);
    QCOMPARE(link.driver_specific_data.size(), 1);
}

void TestTraffic::withoutAListenerTheDataIsAsBefore()
{
    DrvEthernet link;
    link.driver_specific_data.insert(QLatin1String("other"), 1);
    const QMap<QString, QVariant> before = link.driver_specific_data;
    traffic::setListener(&link, nullptr);
    QCOMPARE(link.driver_specific_data, before);
    Listener listener;
    traffic::setListener(&link, &listener);
    traffic::setListener(&link, nullptr);
    QVERIFY(!traffic::listenerOf(link));
    QCOMPARE(link.driver_specific_data, before);
}

QTEST_GUILESS_MAIN(TestTraffic)
#include "tst_traffic.moc"
