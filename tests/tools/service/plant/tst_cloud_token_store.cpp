#include "tools/service/plant/token_store.h"

#include <QTest>

using namespace tovik_service::plant;

class TestCloudTokenStore : public QObject
{
    Q_OBJECT

private slots:
    void tokensDiffer();
    void tokensLiveForEver();
    void tokensExpire();
    void allExpireOnDemand();
    void doesNotGrowWithoutEnd();
    void tellsWhoHasWhich();
};

void TestCloudTokenStore::tokensDiffer()
{
    TokenStore store({});
    const std::string first = store.create();
    QCOMPARE(first.size(), std::size_t(32));
    QVERIFY(first != store.create());
    QVERIFY(!store.isKnown(""));
}

void TestCloudTokenStore::tokensLiveForEver()
{
    double now = 0;
    TokenStore store({}, [&now] { return now; });
    const std::string token = store.create();
    now = 1e9;
    QVERIFY(store.isKnown(token));
}

void TestCloudTokenStore::tokensExpire()
{
    double now = 0;
    TokenStore store(10, [&now] { return now; });
    const std::string early = store.create();
    now = 5;
    const std::string late = store.create();
    now = 9.9;
    QVERIFY(store.isKnown(early));
    now = 10;
    QVERIFY(!store.isKnown(early));
    QVERIFY(store.isKnown(late));
    QCOMPARE(store.activeCount(), std::size_t(1));
}

void TestCloudTokenStore::allExpireOnDemand()
{
    TokenStore store({});
    const std::string token = store.create();
    store.create();
    QCOMPARE(store.expireAll(), std::size_t(2));
    QVERIFY(!store.isKnown(token));
    QVERIFY(store.isKnown(store.create()));
}

void TestCloudTokenStore::doesNotGrowWithoutEnd()
{
    TokenStore store({});
    for (int i = 0; i < 10050; ++i)
        store.create();
    QCOMPARE(store.activeCount(), std::size_t(10000));
}

void TestCloudTokenStore::tellsWhoHasWhich()
{
    double now = 100;
    TokenStore store(50, [&now] { return now; });
    const std::string first = store.create({"a@example.com", "127.0.0.1:1"});
    now = 110;
    const std::string second = store.create({"b@example.com", "127.0.0.1:2"});
    now = 120;
    QVERIFY(store.isKnown(first) && store.isKnown(first));
    now = 125;
    const auto list = store.list(10);
    QCOMPARE(list.size(), std::size_t(2));
    QCOMPARE(list.at(0).short_token, first.substr(0, 6) + "...");
    QCOMPARE(list.at(0).owner.account, std::string("a@example.com"));
    QCOMPARE(list.at(0).owner.address, std::string("127.0.0.1:1"));
    QCOMPARE(list.at(0).uses, std::uint64_t(2));
    QCOMPARE(list.at(0).age, 25.0);
    QCOMPARE(list.at(0).idle, 5.0);
    QCOMPARE(list.at(1).owner.account, std::string("b@example.com"));
    QCOMPARE(list.at(1).idle, 15.0);
    QCOMPARE(store.list(1).size(), std::size_t(1));
    now = 155;
    QCOMPARE(store.list(10).size(), std::size_t(1));
}

QTEST_APPLESS_MAIN(TestCloudTokenStore)
#include "tst_cloud_token_store.moc"
