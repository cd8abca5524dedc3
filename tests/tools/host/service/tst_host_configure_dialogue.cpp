#include "tools/host/service/configure.h"

#include <QTest>

using namespace tovik_host;
using namespace tovik_host::service;

class TestHostConfigureDialogue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void chooses_data();
    void chooses();
    void explainsWhatIsWrong_data();
    void explainsWhatIsWrong();
    void showsPages();
    void searches_data();
    void searches();
    void listsTheChosenOnes();
    void showsWhatWillBe();
    void ends();
    void helps();
};

namespace {

OfferedItem offered(const char* group, const char* name, const char* id, const char* type = "Bit")
{
    return {QString::fromUtf8(id),    QString::fromUtf8(name), QString::fromUtf8(type), 8, false,
            QString::fromUtf8(group), QString::fromUtf8(group)};
}

QVector<OfferedItem> plant()
{
    return {offered("Boiler", "On", "b-on"),
            offered("Boiler", "Flow rate", "b-flow", "32Bit-FLOAT"), offered("Hall", "On", "h-on"),
            offered("Hall", "Te\nst", "h-test", "String"), offered("Hall", "On", "h-2")};
}

QString said(ConfigureDialogue& dialogue, const char* line)
{
    return dialogue.answer(QString::fromUtf8(line));
}

QString idsOf(const ConfigureDialogue& dialogue)
{
    QStringList ids;
    for (const OfferedItem& item : dialogue.chosen())
        ids << item.id;
    return ids.join(QLatin1Char(' '));
}

} // namespace

void TestHostConfigureDialogue::chooses_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QString>("ids");
    const auto row = [](const char* name, const QStringList& lines, const char* ids) {
        QTest::newRow(name) << lines << QString::fromLatin1(ids);
    };
    row("nothing", {}, "");
    row("a number", {QStringLiteral("2")}, "b-flow");
    row("numbers", {QStringLiteral("4, 1  2")}, "b-on b-flow h-test");
    row("a range", {QStringLiteral("2-4")}, "b-flow h-on h-test");
    row("a range with spaces", {QStringLiteral("2 - 3")}, "b-flow h-on");
    row("ranges", {QStringLiteral("1-2,4-5")}, "b-on b-flow h-test h-2");
    row("a pattern", {QStringLiteral("Boiler/*")}, "b-on b-flow");
    row("a pattern with a space", {QStringLiteral("Boiler/Flow r*")}, "b-flow");
    row("an id with a minus sign", {QStringLiteral("h-2")}, "h-2");
    row("all", {QStringLiteral("*")}, "b-on b-flow h-on h-test h-2");
    row("one after the other", {QStringLiteral("3"), QStringLiteral("1")}, "b-on h-on");
    row("taken back", {QStringLiteral("*"), QStringLiteral("-2-4")}, "b-on h-2");
    row("taken back by a pattern", {QStringLiteral("*"), QStringLiteral("- Hall/*")},
        "b-on b-flow");
    row("spaces around", {QStringLiteral("  3 ")}, "h-on");
    row("a wrong number spoils the line", {QStringLiteral("1 9")}, "");
}

void TestHostConfigureDialogue::chooses()
{
    QFETCH(QStringList, lines);
    QFETCH(QString, ids);
    ConfigureDialogue dialogue(plant(), 20);
    for (const QString& line : lines)
        dialogue.answer(line);
    QCOMPARE(idsOf(dialogue), ids);
    QCOMPARE(dialogue.prompt(),
             QStringLiteral("%1 of 5 items chosen> ").arg(dialogue.chosen().size()));
    QVERIFY(dialogue.state() == ConfigureDialogue::State::open);
}

void TestHostConfigureDialogue::explainsWhatIsWrong_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("answer");
    const auto row = [](const char* name, const char* line, const char* answer) {
        QTest::newRow(name) << QString::fromLatin1(line) << QString::fromLatin1(answer);
    };
    row("zero", "0", "\"0\" is not within 1-5\n");
    row("too large", "6", "\"6\" is not within 1-5\n");
    row("range beyond the end", "4-6", "\"4-6\" is not within 1-5\n");
    row("range backwards", "4-2", "\"4-2\" is not within 1-5\n");
    row("larger than any number", "99999999999999999999",
        "\"99999999999999999999\" is not within 1-5\n");
    row("pattern without a match", "Pump/*", "no item matches \"Pump/*\"; h is for help\n");
    row("unknown word", "frobnicate", "no item matches \"frobnicate\"; h is for help\n");
    row("empty pattern", "-", "a pattern must not be empty\n");
    row("search for nothing", "s", "Search for what? s TEXT\n");
    row("search without a find", "s zzz", "none\n");
    row("nothing to preview", "p", "Nothing is chosen yet.\n");
    row("nothing chosen to be done with", "d",
        "Nothing is chosen yet; q leaves without a configuration.\n");
    row("none chosen to list", "c", "none\n");
}

void TestHostConfigureDialogue::explainsWhatIsWrong()
{
    QFETCH(QString, line);
    QFETCH(QString, answer);
    ConfigureDialogue dialogue(plant(), 20);
    QCOMPARE(dialogue.answer(line), answer);
    QVERIFY(dialogue.state() == ConfigureDialogue::State::open);
    QCOMPARE(idsOf(dialogue), QString());
}

void TestHostConfigureDialogue::showsPages()
{
    ConfigureDialogue dialogue(plant(), 2);
    QCOMPARE(dialogue.opening(),
             QStringLiteral("  1  Boiler/On  Bit\n"
                            "  2  Boiler/Flow rate  32Bit-FLOAT\n"
                            "-- 3 more: press Enter --\n"
                            "Choose by number, range or pattern, then d for done; h is for "
                            "help.\n"));
    QCOMPARE(said(dialogue, "3"), QStringLiteral("* 3  Hall/On  Bit\n"));
    QCOMPARE(said(dialogue, ""), QStringLiteral("* 3  Hall/On  Bit\n"
                                                "  4  Hall/Te\u00b7st  String(8)\n"
                                                "-- 1 more: press Enter --\n"));
    QCOMPARE(said(dialogue, ""), QStringLiteral("  5  Hall/On  Bit\n"));
    QCOMPARE(said(dialogue, ""), QStringLiteral("That was all; l lists from the start.\n"));
    QVERIFY(said(dialogue, "list").startsWith(QLatin1String("  1  Boiler/On")));
}

void TestHostConfigureDialogue::searches_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("numbers");
    QTest::newRow("in names") << QStringLiteral("s flow") << QStringLiteral("2");
    QTest::newRow("in groups") << QStringLiteral("search HALL") << QStringLiteral("3 4 5");
    QTest::newRow("in ids") << QStringLiteral("s h-2") << QStringLiteral("5");
    QTest::newRow("in types") << QStringLiteral("s float") << QStringLiteral("2");
    QTest::newRow("with spaces") << QStringLiteral("s flow rate") << QStringLiteral("2");
    QTest::newRow("over the slash") << QStringLiteral("s ler/o") << QStringLiteral("1");
}

void TestHostConfigureDialogue::searches()
{
    QFETCH(QString, line);
    QFETCH(QString, numbers);
    ConfigureDialogue dialogue(plant(), 20);
    QStringList found;
    for (const QString& shown : dialogue.answer(line).split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        found << shown.mid(2, 1);
    QCOMPARE(found.join(QLatin1Char(' ')), numbers);
}

void TestHostConfigureDialogue::listsTheChosenOnes()
{
    ConfigureDialogue dialogue(plant(), 20);
    QCOMPARE(said(dialogue, "1 3"), QStringLiteral("2 items chosen, 2 of them new\n"));
    QCOMPARE(said(dialogue, "1-2"), QStringLiteral("2 items chosen, 1 of them new\n"));
    QCOMPARE(said(dialogue, "1-2 2"), QStringLiteral("2 items chosen, 0 of them new\n"));
    QCOMPARE(said(dialogue, "-1-2"), QStringLiteral("2 of 2 items taken back\n"));
    QCOMPARE(said(dialogue, "-2-3"),
             QStringLiteral("1 of 2 items taken back, the others were not chosen\n"));
    said(dialogue, "3");
    QCOMPARE(said(dialogue, "c"), QStringLiteral("* 3  Hall/On  Bit\n"));
}

void TestHostConfigureDialogue::showsWhatWillBe()
{
    ConfigureDialogue dialogue(plant(), 3);
    said(dialogue, "3-5");
    QCOMPARE(said(dialogue, "p"),
             QStringLiteral("warning: \"Hall.On\" is the name of another item already; the one "
                            "with the id \"h-2\" is called \"Hall.On (2)\"\n"
                            "  Hall.On  h-on  Bit\n"
                            "  Hall.Te_st  h-test  String\n"
                            "  Hall.On (2)  h-2  Bit\n"));
    said(dialogue, "*");
    QVERIFY(said(dialogue, "preview").endsWith(QLatin1String("  and 2 more\n")));
}

void TestHostConfigureDialogue::ends()
{
    ConfigureDialogue done(plant(), 20);
    said(done, "1");
    QCOMPARE(said(done, "done"), QString());
    QVERIFY(done.state() == ConfigureDialogue::State::done);
    ConfigureDialogue quit(plant(), 20);
    QCOMPARE(said(quit, "q"), QString());
    QVERIFY(quit.state() == ConfigureDialogue::State::quit);
}

void TestHostConfigureDialogue::helps()
{
    ConfigureDialogue dialogue(plant(), 20);
    const QString help = said(dialogue, "h");
    QCOMPARE(said(dialogue, "?"), help);
    for (const char* word : {"Boiler/*", "  s TEXT", "  l ", "  c ", "  p ", "  d ", "  q "})
        QVERIFY2(help.contains(QLatin1String(word)), word);
}

QTEST_GUILESS_MAIN(TestHostConfigureDialogue)
#include "tst_host_configure_dialogue.moc"
