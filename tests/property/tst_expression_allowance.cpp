#include "property/checked_value.h"

#include <QTest>

/// What a pattern costs decides which configurations can be read again.
class TestExpressionAllowance : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cost_data();
    void cost();
    void dearest_data();
    void dearest();
    void lastOfTheAllowance();
};

void TestExpressionAllowance::cost_data()
{
    QTest::addColumn<QByteArray>("pattern");
    QTest::addColumn<int>("expected");
    QTest::newRow("none") << QByteArray("") << 16;
    QTest::newRow("one a character") << QByteArray("abc") << 16 + 3;
    for (const char sign : {'*', '+', '?', '|', '('}) {
        QTest::addRow("20 more for %c", sign) << QByteArray("a") + sign << 16 + 2 + 20;
        QTest::addRow("20 more for %c alone", sign) << QByteArray(1, sign) << 16 + 1 + 20;
    }
    QTest::newRow("twice for a look ahead") << QByteArray("(?=a)") << 16 + (5 + 40) * 2;
    QTest::newRow("twice for a look ahead later on") << QByteArray("a(?=b)") << 16 + (6 + 40) * 2;
    QTest::newRow("four times for two of them")
        << QByteArray("(?=a)(?!b)") << 16 + (10 + 80) * 2 * 2;
    QTest::newRow("a group that may be left out") << QByteArray("(a)?") << 16 + 4 + 40;
    QTest::newRow("copies of a character") << QByteArray("a{3}") << 16 + 4 * (1 + 3);
    QTest::newRow("copies, two digits") << QByteArray("a{12}") << 16 + 5 * (1 + 12);
    QTest::newRow("the larger count, last") << QByteArray("a{2,5}") << 16 + 6 * (1 + 5);
    QTest::newRow("the larger count, first") << QByteArray("a{5,2}") << 16 + 6 * (1 + 5);
    QTest::newRow("at least so many") << QByteArray("a{3,}") << 16 + 5 * (1 + 3);
    QTest::newRow("at most so many") << QByteArray("a{,3}") << 16 + 5 * (1 + 3);
    QTest::newRow("no count is one") << QByteArray("a{}") << 16 + 3 * (1 + 1);
    QTest::newRow("what is no count is one") << QByteArray("a{b9}") << 16 + 5 * (1 + 1);
    QTest::newRow("count that does not end") << QByteArray("a{4") << 16 + 3 * (1 + 4);
    QTest::newRow("copies of two characters") << QByteArray("a{3}b{4}") << 16 + 8 * (1 + 3 + 4);
    QTest::newRow("copies of a group") << QByteArray("(a){3}") << 16 + (6 + 20) * 3;
    QTest::newRow("copies of a group in a group")
        << QByteArray("((a){2}){3}") << 16 + (11 + 40) * 2 * 3;
    QTest::newRow("copies in a group of copies")
        << QByteArray("(a{2}){3}") << 16 + (9 + 20) * (1 + 2) * 3;
    QTest::newRow("copies of nothing") << QByteArray("{3}") << 16 + 3 * (1 + 3);
    QTest::newRow("copies of an end alone") << QByteArray("){3}") << 16 + 4 * 3;
}

void TestExpressionAllowance::cost()
{
    QFETCH(QByteArray, pattern);
    QFETCH(int, expected);
    ExpressionAllowance allowance;
    const int before = allowance.left;
    QVERIFY(allowance.spend(QString::fromLatin1(pattern)));
    QCOMPARE(before - allowance.left, expected);
}

void TestExpressionAllowance::dearest_data()
{
    QTest::addColumn<QByteArray>("pattern");
    QTest::addColumn<bool>("is_affordable");
    QTest::newRow("4,000 characters with what each costs") << QByteArray(3984, 'a') << true;
    QTest::newRow("one more") << QByteArray(3985, 'a') << false;
    QTest::newRow("count") << QByteArray("abcd{496}") << false;        // 16 + 9 * 497 = 4,489
    QTest::newRow("smaller count") << QByteArray("abcd{441}") << true; // 3,994
    QTest::newRow("count beyond every number") << "a{" + QByteArray(400, '9') + '}' << false;
}

void TestExpressionAllowance::dearest()
{
    QFETCH(QByteArray, pattern);
    QFETCH(bool, is_affordable);
    ExpressionAllowance allowance;
    const int before = allowance.left;
    QCOMPARE(allowance.spend(QString::fromLatin1(pattern)), is_affordable);
    QCOMPARE(allowance.left != before, is_affordable);
}

void TestExpressionAllowance::lastOfTheAllowance()
{
    ExpressionAllowance allowance;
    for (int i = 0; i < 5; ++i)
        QVERIFY(allowance.spend(QString(3984, QLatin1Char('a'))));
    QCOMPARE(allowance.left, 0);
    QVERIFY(!allowance.spend(QString()));
    allowance.left = 19;
    QVERIFY(!allowance.spend(QLatin1String("abcd")));
    QCOMPARE(allowance.left, 19);
    QVERIFY(allowance.spend(QLatin1String("abc")));
    QCOMPARE(allowance.left, 0);
}

QTEST_GUILESS_MAIN(TestExpressionAllowance)
#include "tst_expression_allowance.moc"
