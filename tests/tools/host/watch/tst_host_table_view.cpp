#include "tools/host/terminal/text.h"
#include "tools/host/watch/table_view.h"

#include <QTest>

using namespace tovik_host;
using namespace tovik_host::watch;

class TestHostTableView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void drawsAllThatFits();
    void marksTrouble();
    void namesTheLinkOfADevice();
    void countsItemsWithoutAValue();
    void marksStaleItems();
    void tellsWhichItemEndsTheCycle();
    void tellsTheCause();
    void neverExceedsItsSize_data();
    void neverExceedsItsSize();
    void dropsColumnsThatSayLeast();
    void saysHowManyItemsAreCut();
    void givesTheLogWhatIsLeft();
    void writesAges_data();
    void writesAges();
};

namespace {

const QDateTime start(QDate(2024, 5, 1), QTime(12, 0));
const WatchSubject subject = {QStringLiteral("lib.so"), QStringLiteral("1.2.3"),
                              QStringLiteral("https://cloud.example"), QStringLiteral("plant")};

config::ItemConfig item(const char* name, const char* type)
{
    return {QString::fromUtf8(name), QStringLiteral("id"), value::findItemType(QLatin1String(type)),
            0};
}

/// Three items with answers of three kinds.
WatchModel sample()
{
    WatchModel model(
        {item("Pump.Speed", "16Bit-BCD"), item("Außen", "String"), item("Bad", "16Bit-INT")},
        start);
    model.take(0, {true, QByteArray::fromHex("3412"), 0}, start.addSecs(55));
    model.take(1, {true, QByteArray("Gr\xfc\xdf\x1b[2J"), 0}, start);
    model.take(2, {true, QByteArray(1, '\0'), 0x400F0003}, start);
    model.endRound(start.addSecs(30));
    return model;
}

QStringList texts(const QVector<ScreenLine>& screen)
{
    QStringList lines;
    for (const ScreenLine& line : screen)
        lines << line.text;
    return lines;
}

QVector<ScreenLine> draw(int columns, int rows, const QStringList& log = {})
{
    return drawTable(subject, sample(), log, start.addSecs(60), {columns, rows});
}

} // namespace

void TestHostTableView::drawsAllThatFits()
{
    const QStringList expected = {
        QStringLiteral("Service  https://cloud.example   project plant"),
        QStringLiteral("Driver   1.2.3"),
        QStringLiteral("Status   service error 3 (0x400F0003), since 12:00:30 (30 s)"),
        QString(),
        QStringLiteral(
            "ITEM        TYPE       VALUE     BYTES                    STATUS      CHANGED"),
        QStringLiteral("Pump.Speed  16Bit-BCD  1234      34 12                    ok          5 s"),
        QStringLiteral(
            "Au\u00dfen       String     Gr\u00fc\u00df\u00b7[2J  47 72 fc df 1b 5b 32 4a  "
            "ok          1 min"),
        QStringLiteral("Bad         16Bit-INT  \u2013         00                       0x400F0003  "
                       "1 min"),
        QString(),
        QStringLiteral("LOG OF THE DRIVER"),
        QStringLiteral("one"),
        QStringLiteral("two"),
    };
    QCOMPARE(texts(draw(100, 30, {QStringLiteral("one"), QStringLiteral("two")})), expected);
}

void TestHostTableView::marksTrouble()
{
    const QVector<ScreenLine> screen = draw(100, 30);
    QCOMPARE(screen.at(2).style, LineStyle::trouble);
    QCOMPARE(screen.at(4).style, LineStyle::heading);
    QCOMPARE(screen.at(5).style, LineStyle::plain);
    QCOMPARE(screen.at(7).style, LineStyle::trouble);
}

void TestHostTableView::namesTheLinkOfADevice()
{
    const WatchSubject device = {QStringLiteral("lib.so"), QStringLiteral("1.2.3"), QString(),
                                 QString(), QStringLiteral("tcp:[::1]:502")};
    WatchModel model({item("4x1", "16Bit-INT")}, start);
    model.take(0, {true, QByteArray(), 0x400CFFFF, false, value::StatusOf::device}, start);
    model.endRound(start);
    const QStringList lines = texts(drawTable(device, model, {}, start, {100, 30}));
    QCOMPARE(lines.at(0), QStringLiteral("Device   tcp:[::1]:502"));
    QVERIFY2(lines.at(2).startsWith(QLatin1String("Status   offline: no link to the device, or not "
                                                  "supported (0x400CFFFF), since 12:00:00")),
             qPrintable(lines.at(2)));
    QCOMPARE(lines.at(5), QStringLiteral("4x1   16Bit-INT  \u2013             0x400CFFFF  0 s"));
}

void TestHostTableView::countsItemsWithoutAValue()
{
    WatchModel model({item("a", "16Bit-INT"), item("b", "16Bit-INT")}, start);
    value::DriverNumbers numbers;
    numbers.tells_ages = true;
    numbers.ages = {std::nullopt, 300};
    model.takeNumbers(numbers, 0);
    model.take(0, {true, QByteArray(2, '\0'), 0}, start);
    model.take(1, {true, QByteArray(2, '\0'), 0}, start);
    model.endRound(start);
    const QStringList lines = texts(drawTable(WatchSubject(), model, {}, start, {100, 30}));
    QCOMPARE(lines.at(3), QStringLiteral("Values   1 of 2 have not come yet"));
    QCOMPARE(lines.at(6),
             QStringLiteral("a     16Bit-INT  \u2013             no value yet  never"));
    QCOMPARE(lines.at(7), QStringLiteral("b     16Bit-INT  0      00 00  ok            0.3 s"));
    numbers.ages[0] = 0;
    model.takeNumbers(numbers, 1000);
    model.take(0, {true, QByteArray(2, '\0'), 0}, start);
    QVERIFY(texts(drawTable(WatchSubject(), model, {}, start, {100, 30}))
                .filter(QStringLiteral("Values "))
                .isEmpty());
}

void TestHostTableView::marksStaleItems()
{
    WatchModel model({item("a", "16Bit-INT"), item("b", "16Bit-INT"), item("c", "16Bit-INT")},
                     start, 3);
    value::DriverNumbers numbers;
    numbers.tells_ages = true;
    numbers.ages = {4000, 200, 5000};
    model.takeNumbers(numbers, 0);
    model.judgeAges(start);
    model.take(0, {true, QByteArray(2, '\0'), 0}, start);
    model.take(1, {true, QByteArray(2, '\0'), 0}, start);
    model.take(2, {true, QByteArray(2, '\0'), 0x400F0256}, start);
    const QVector<ScreenLine> screen = drawTable(WatchSubject(), model, {}, start, {100, 30});
    QCOMPARE(screen.at(3).text, QStringLiteral("Values   2 of 3 stale, no news for 3 s"));
    QCOMPARE(screen.at(3).style, LineStyle::stale);
    QCOMPARE(screen.at(6).text,
             QStringLiteral("a     16Bit-INT  0      00 00  stale             4.0 s"));
    QCOMPARE(screen.at(6).style, LineStyle::stale);
    QCOMPARE(screen.at(7).style, LineStyle::plain);
    QCOMPARE(screen.at(8).text,
             QStringLiteral("c     16Bit-INT  0      00 00  0x400F0256 stale  5.0 s"));
    QCOMPARE(screen.at(8).style, LineStyle::trouble);
    // On a low screen the line stands where the blank one was.
    const QStringList low = texts(drawTable(WatchSubject(), model, {}, start, {100, 6}));
    QCOMPARE(low.size(), 6);
    QVERIFY(low.at(4).startsWith(QLatin1String("ITEM")));
}

void TestHostTableView::tellsWhichItemEndsTheCycle()
{
    WatchModel model({item("a", "16Bit-INT"), item("b", "16Bit-INT"), item("c", "16Bit-INT")},
                     start, 3);
    value::DriverNumbers numbers;
    numbers.connected = true;
    numbers.tells_ages = true;
    numbers.ages = {200, std::nullopt, 5000};
    model.takeNumbers(numbers, 0);
    model.judgeAges(start);
    for (const int status : {0, 0x400F0007}) {
        for (int i = 0; i < 3; ++i)
            model.take(i, {true, QByteArray(2, '\0'), status}, start);
        model.endRound(start);
    }
    const QVector<ScreenLine> screen = drawTable(WatchSubject(), model, {}, start, {100, 30});
    QVERIFY2(screen.at(2).text.startsWith(
                 QStringLiteral("Status   service error 7 (0x400F0007): b ends the cycle, items "
                                "not reached: 1, since ")),
             qPrintable(screen.at(2).text));
    QCOMPARE(screen.at(7).style, LineStyle::trouble);
    QCOMPARE(screen.at(8).text,
             QStringLiteral("c     16Bit-INT  0      00 00  not reached  5.0 s"));
    QCOMPARE(screen.at(8).style, LineStyle::stale);
}

void TestHostTableView::tellsTheCause()
{
    WatchModel model({item("a", "16Bit-INT")}, start);
    model.take(0, {true, QByteArray(2, '\0'), 0x400F0256}, start);
    model.endRound(start);
    model.setCause(QStringLiteral("refused"));
    const QVector<ScreenLine> screen = drawTable(WatchSubject(), model, {}, start, {100, 30});
    QCOMPARE(screen.at(3).text, QStringLiteral("Cause    refused"));
    QCOMPARE(screen.at(3).style, LineStyle::trouble);
    model.take(0, {true, QByteArray(2, '\0'), 0}, start);
    model.endRound(start);
    QVERIFY(texts(drawTable(WatchSubject(), model, {}, start, {100, 30}))
                .filter(QStringLiteral("Cause"))
                .isEmpty());
}

void TestHostTableView::neverExceedsItsSize_data()
{
    QTest::addColumn<int>("columns");
    QTest::addColumn<int>("rows");
    for (const int columns : {1, 5, 10, 20, 33, 40, 60, 80, 200}) {
        for (const int rows : {6, 7, 8, 9, 12, 50})
            QTest::addRow("%d columns, %d rows", columns, rows) << columns << rows;
    }
}

void TestHostTableView::neverExceedsItsSize()
{
    QFETCH(int, columns);
    QFETCH(int, rows);
    const QVector<ScreenLine> screen =
        draw(columns, rows, {QStringLiteral("a line of the log"), QStringLiteral("b")});
    QVERIFY(screen.size() <= rows);
    for (const ScreenLine& line : screen)
        QVERIFY2(terminal::displayWidth(line.text) <= columns, qPrintable(line.text));
}

void TestHostTableView::dropsColumnsThatSayLeast()
{
    QCOMPARE(draw(65, 30).at(4).text,
             QStringLiteral("ITEM        TYPE       VALUE     BYTES        STATUS      CHANGED"));
    QCOMPARE(draw(64, 30).at(4).text,
             QStringLiteral("ITEM        TYPE       VALUE     STATUS      CHANGED"));
    QCOMPARE(draw(45, 30).at(4).text, QStringLiteral("ITEM        VALUE     STATUS      CHANGED"));
    QCOMPARE(draw(34, 30).at(4).text, QStringLiteral("ITEM        VALUE     STATUS"));
    QCOMPARE(draw(24, 30).at(5).text, QStringLiteral("Pump.\u2026  1234     ok"));
}

void TestHostTableView::saysHowManyItemsAreCut()
{
    const QStringList lines = texts(draw(80, 7));
    QCOMPARE(lines.size(), 7);
    QVERIFY(lines.at(5).startsWith(QLatin1String("Pump.Speed")));
    QCOMPARE(lines.at(6), QStringLiteral("\u2026 2 more items"));
}

void TestHostTableView::givesTheLogWhatIsLeft()
{
    const QStringList log = {QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three")};
    QCOMPARE(texts(draw(80, 12, log)).mid(9),
             QStringList({QStringLiteral("LOG OF THE DRIVER"), QStringLiteral("two"),
                          QStringLiteral("three")}));
    QCOMPARE(draw(80, 10, log).size(), 8);
}

void TestHostTableView::writesAges_data()
{
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("clock set back") << qint64(-5) << QStringLiteral("0 s");
    QTest::newRow("seconds") << qint64(59) << QStringLiteral("59 s");
    QTest::newRow("minutes") << qint64(119) << QStringLiteral("1 min");
    QTest::newRow("hours") << qint64(7200) << QStringLiteral("2 h");
    QTest::newRow("days") << qint64(200000) << QStringLiteral("2 d");
}

void TestHostTableView::writesAges()
{
    QFETCH(qint64, seconds);
    QFETCH(QString, text);
    QCOMPARE(ageText(seconds), text);
}

QTEST_APPLESS_MAIN(TestHostTableView)
#include "tst_host_table_view.moc"
