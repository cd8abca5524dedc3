#include "compat/twos_complement.h"

#include <QTest>

#include <limits>

class TestTwosComplement : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void signed32_data();
    void signed32();
};

void TestTwosComplement::signed32_data()
{
    QTest::addColumn<quint32>("bits");
    QTest::addColumn<qint32>("number");
    QTest::newRow("0") << 0U << 0;
    QTest::newRow("largest") << 0x7FFFFFFFU << std::numeric_limits<qint32>::max();
    QTest::newRow("smallest") << 0x80000000U << std::numeric_limits<qint32>::min();
    QTest::newRow("-2") << 0xFFFFFFFEU << -2;
}

void TestTwosComplement::signed32()
{
    QFETCH(quint32, bits);
    QFETCH(qint32, number);
    QCOMPARE(twos_complement::signed32(bits), number);
}

QTEST_APPLESS_MAIN(TestTwosComplement)
#include "tst_twos_complement.moc"
