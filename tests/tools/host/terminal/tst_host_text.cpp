#include "tools/host/terminal/text.h"

#include <QTest>

using namespace tovik_host;
using namespace tovik_host::terminal;

class TestHostText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fits_data();
    void fits();
    void hidesControlCharacters();
    void suggestsTheNearestName();
};

void TestHostText::fits_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("width");
    QTest::addColumn<QString>("in_five");
    const auto row = [](const char* name, const char* text, int width, const char* in_five) {
        QTest::newRow(name) << QString::fromUtf8(text) << width << QString::fromUtf8(in_five);
    };
    row("empty", "", 0, "     ");
    row("short", "ab", 2, "ab   ");
    row("exact", "abcde", 5, "abcde");
    row("long", "abcdef", 6, "abcd…");
    row("umlauts", "äöüßé!", 6, "äöüß…");
    row("combining mark", "e\u0301abcd", 5, "e\u0301abcd");
    row("wide characters", "東京駅", 6, "東京…");
    row("wide character on the edge", "a東京駅", 7, "a東… ");
    row("beyond the first plane", "😀😀😀", 6, "😀😀…");
}

void TestHostText::fits()
{
    QFETCH(QString, text);
    QFETCH(int, width);
    QFETCH(QString, in_five);
    QCOMPARE(displayWidth(text), width);
    QCOMPARE(fitted(text, 5), in_five);
    QCOMPARE(displayWidth(fitted(text, 5)), 5);
    QCOMPARE(clipped(text, 0), QString());
}

void TestHostText::hidesControlCharacters()
{
    QCOMPARE(printable(QStringLiteral("a\033[2J\nb\u009bc")),
             QStringLiteral("a\u00b7[2J\u00b7b\u00b7c"));
    QCOMPARE(printable(QStringLiteral("Gr\u00fc\u00dfe")), QStringLiteral("Gr\u00fc\u00dfe"));
}

void TestHostText::suggestsTheNearestName()
{
    const QStringList names = {QStringLiteral("Boiler.Low"), QStringLiteral("Boiler.Flow")};
    QCOMPARE(nearText(QStringLiteral("boiler.flow"), names), QStringLiteral("; Boiler.Flow?"));
    QCOMPARE(nearText(QStringLiteral("boiler.lw"), names), QStringLiteral("; Boiler.Low?"));
    QCOMPARE(nearText(QStringLiteral("Pump"), names), QString());
}

QTEST_APPLESS_MAIN(TestHostText)
#include "tst_host_text.moc"
