#include "tools/cloud/token_store.h"

#include <QtTest>

using namespace tovik_cloud;

class TestCloudTokenStore : public QObject
{
    Q_OBJECT

private slots:
    void tokensDiffer();
    void tokensLiveForEver();
    void tokensExpire();
    void allExpireOnDemand();
    void doesNotGrowWithoutEnd();
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
    for (int i = 0; i < 10050; ++i) {
        store.create();
    }
    QCOMPARE(store.activeCount(), std::size_t(10000));
}

QTEST_APPLESS_MAIN(TestCloudTokenStore)
#include "tst_cloud_token_store.moc"
