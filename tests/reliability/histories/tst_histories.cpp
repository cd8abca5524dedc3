#include "tests/reliability/histories/exchange_play.h"
#include "tests/reliability/histories/play.h"

#include <QTest>

/// Histories that have shown something once: library and model have to agree. scripts/histories
/// prints what it finds as a row of this test.
class TestHistories : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ofTheClient_data();
    void ofTheClient();
    void ofAnExchange_data();
    void ofAnExchange();
    void theirTextReadsBack();
    void whatIsNoHistoryIsNamed_data();
    void whatIsNoHistoryIsNamed();
};

void TestHistories::ofTheClient_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("a write fails during an attempt that a shot of the timer has met")
        << "type=0 time=5 by-time=0 restore=0 items=0,0 client reply:0:bad-code:0 timer "
           "write:3:0:1 client timer reply:1:broken:0";
    QTest::newRow("a write fails after an attempt that a shot of the timer has met")
        << "type=1 time=1 by-time=1 restore=1 items=0 client reply:0:code:0 timer timer "
           "reply:0:bad-code:0 write:4:0:1 client reply:0:bad-code:0";
    QTest::newRow("closed inside the first login, a write being queued")
        << "type=2 time=2 by-time=1 restore=1 items=0,0 client write:1:0:1 close";
    QTest::newRow("a reconnect succeeds inside the first login, which then fails")
        << "type=3 time=1 by-time=1 restore=1 items=0 client write:0:0:1 client reply:1:code:0 "
           "host "
           "read:0:0 read:0:0 client reply:1:good:0 reply:1:good:2 reply:0:code:0 timer";
    QTest::newRow("twelve cycles that the host takes at once")
        << "type=0 time=1 by-time=0 restore=0 items=0,13 client reply:0:good:0 reply:0:good:2 "
           "timer reply:0:good:0 reply:0:good:0 timer reply:0:good:3 reply:0:good:3 "
           "timer reply:0:good:0 reply:0:good:0 timer reply:0:good:3 reply:0:good:3 "
           "timer reply:0:good:0 reply:0:good:0 timer reply:0:good:3 reply:0:good:3 "
           "timer reply:0:good:0 reply:0:good:0 timer reply:0:good:3 reply:0:good:3 "
           "timer reply:0:good:6 reply:0:good:7 timer reply:0:good:13 reply:0:code:0 timer "
           "host read:0:0 read:1:0";
}

void TestHistories::ofTheClient()
{
    QFETCH(QString, text);
    QString problem;
    const History history = History::fromText(text, &problem);
    QCOMPARE(problem, QString());
    QCOMPARE(play::difference(history), QString());
}

void TestHistories::ofAnExchange_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("an answer of any length comes with the end of a turn")
        << "retries=3 delay=5 timeout=60 state=1 behave:21:50 read:4";
    QTest::newRow("a late answer is stale for the next attempt")
        << "retries=1 delay=0 timeout=10 state=0 behave:0:10 behave:0:10 read:0 read:0";
    QTest::newRow("stopped within an answer")
        << "retries=1 delay=5 timeout=120 state=1 behave:13:3 read:1 write:0";
}

void TestHistories::ofAnExchange()
{
    QFETCH(QString, text);
    QString problem;
    const ExchangeHistory history = ExchangeHistory::fromText(text, &problem);
    QCOMPARE(problem, QString());
    QCOMPARE(exchange_play::difference(history), QString());
}

void TestHistories::theirTextReadsBack()
{
    std::mt19937_64 random(1);
    QString problem;
    for (int i = 0; i < 20; ++i) {
        History drawn;
        QCOMPARE(play::drawnDifference(&random, &drawn, nullptr), QString());
        QCOMPARE(History::fromText(drawn.text(), &problem).text(), drawn.text());
        ExchangeHistory exchange;
        QCOMPARE(exchange_play::drawnDifference(&random, &exchange, nullptr), QString());
        QCOMPARE(ExchangeHistory::fromText(exchange.text(), &problem).text(), exchange.text());
    }
    QCOMPARE(problem, QString());
}

void TestHistories::whatIsNoHistoryIsNamed_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("part");
    QTest::newRow("an event that there is not") << "type=1 jump"
                                                << "jump";
    QTest::newRow("an argument too few") << "read:1"
                                         << "read:1";
    QTest::newRow("a reply of a kind that there is not") << "reply:0:fine:0"
                                                         << "reply:0:fine:0";
    QTest::newRow("a setting that is no number") << "type=x"
                                                 << "type=x";
    QTest::newRow("an item of no type") << "items=0,99"
                                        << "items=0,99";
}

void TestHistories::whatIsNoHistoryIsNamed()
{
    QFETCH(QString, text);
    QFETCH(QString, part);
    QString problem;
    History::fromText(text, &problem);
    QCOMPARE(problem, QStringLiteral("'%1' is no part of a history").arg(part));
}

QTEST_GUILESS_MAIN(TestHistories)
#include "tst_histories.moc"
