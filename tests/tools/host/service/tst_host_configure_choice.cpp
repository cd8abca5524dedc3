#include "tools/host/service/configure.h"
#include "tools/host/terminal/exit_code.h"

#include <QTest>

using namespace tovik_host;
using namespace tovik_host::service;

class TestHostConfigureChoice : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void matches_data();
    void matches();
    void refusesWhatIsNoPattern_data();
    void refusesWhatIsNoPattern();
    void filters_data();
    void filters();
    void choosesByTheWholeNameAlone();
    void refusesUnknownTypes();
};

namespace {

OfferedItem offered(const QString& group, const QString& name, const QString& id,
                    const QString& type = QStringLiteral("Bit"))
{
    return {id, name, type, 0, false, group, group};
}

QVector<OfferedItem> plant()
{
    return {offered(QStringLiteral("Boiler"), QStringLiteral("On"), QStringLiteral("b-on")),
            offered(QStringLiteral("Boiler"), QStringLiteral("Flow"), QStringLiteral("b-flow"),
                    QStringLiteral("32Bit-FLOAT")),
            offered(QStringLiteral("Hall"), QStringLiteral("On"), QStringLiteral("h-on")),
            offered(QStringLiteral("Hall"), QStringLiteral("Test"), QStringLiteral("h-test"),
                    QStringLiteral("16Bit-INT"))};
}

} // namespace

void TestHostConfigureChoice::matches_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("expected");
    const auto row = [](const char* title, const char* pattern, const char* group, const char* name,
                        bool expected) {
        QTest::newRow(title) << QString::fromUtf8(pattern) << QString::fromUtf8(group)
                             << QString::fromUtf8(name) << expected;
    };
    row("group and item", "Boiler/Flow", "Boiler", "Flow", true);
    row("all of a group", "Boiler/*", "Boiler", "Flow", true);
    row("another group", "Boiler/*", "Hall", "Flow", false);
    row("case counts", "boiler/*", "Boiler", "Flow", false);
    row("no beginning of a group", "Boil/*", "Boiler", "Flow", false);
    row("not a group below", "Boiler/*", "Boiler/2", "Flow", false);
    row("a group with a slash", "A/B/*", "A/B", "Flow", true);
    row("an item with a slash", "A/*", "A", "Supply/Return", true);
    row("slashes everywhere", "A/B/C/D", "A/B", "C/D", true);
    row("star over a slash", "*/C*", "A/B", "C/D", true);
    row("item alone", "Flow", "Boiler", "Flow", true);
    row("item alone, all of it", "Flo", "Boiler", "Flow", false);
    row("item with a slash alone", "C/D", "Boiler", "C/D", true);
    row("id", "id-1", "Boiler", "Flow", true);
    row("id with a wildcard", "id-*", "Boiler", "Flow", false);
    row("one character", "Fl?w", "Boiler", "Flow", true);
    row("one emoji", "?", "Boiler", "\xF0\x9F\x9A\x80", true);
    row("one of several", "[EF]low", "Boiler", "Flow", true);
    row("none of several", "[!EF]low", "Boiler", "Flow", false);
    row("star over a line break", "A*B", "Boiler", "A\nB", true);
    row("a dot is a dot", "F.ow", "Boiler", "Flow", false);
    row("brackets of a name", "Mehl (g)", "Boiler", "Mehl (g)", true);
    row("an opening bracket", "T[[]1]", "Boiler", "T[1]", true);
    row("a slash within brackets", "A[/x]B", "Boiler", "A/B", true);
    row("a slash within brackets and one without", "B*/A[/x]*", "Boiler", "A/B", true);
    row("a name that would be another pattern", "T [1]", "Boiler", "T [1]", true);
    row("a path that would be another pattern", "B [1]/T [1]", "B [1]", "T [1]", true);
    row("a name that is no pattern", "[z-a]", "Boiler", "[z-a]", true);
    row("a bracket of a name that does not close", "T [1", "Boiler", "T [1", true);
    row("everything", "*", "Boiler", "Flow", true);
}

void TestHostConfigureChoice::matches()
{
    QFETCH(QString, pattern);
    QFETCH(QString, group);
    QFETCH(QString, name);
    QFETCH(bool, expected);
    const QVector<OfferedItem> items = {offered(group, name, QStringLiteral("id-1"))};
    QCOMPARE(itemPattern(pattern, items)(items.first()), expected);
}

void TestHostConfigureChoice::refusesWhatIsNoPattern_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::newRow("nothing") << QString();
    QTest::newRow("range from high to low") << QStringLiteral("[z-a]");
}

void TestHostConfigureChoice::refusesWhatIsNoPattern()
{
    QFETCH(QString, pattern);
    QVERIFY_EXCEPTION_THROWN(itemPattern(pattern, plant()), terminal::UsageError);
}

void TestHostConfigureChoice::filters_data()
{
    QTest::addColumn<QStringList>("patterns");
    QTest::addColumn<QStringList>("excluded");
    QTest::addColumn<QStringList>("types");
    QTest::addColumn<QString>("ids");
    QTest::addColumn<QString>("without_match");
    const auto row = [](const char* name, const char* patterns, const char* excluded,
                        const char* types, const char* ids, const char* without_match) {
        const auto list = [](const char* words) {
            return QString::fromLatin1(words).split(QLatin1Char(' '), Qt::SkipEmptyParts);
        };
        QTest::newRow(name) << list(patterns) << list(excluded) << list(types)
                            << QString::fromLatin1(ids) << QString::fromLatin1(without_match);
    };
    row("no condition", "", "", "", "b-on b-flow h-on h-test", "");
    row("pattern", "Boiler/*", "", "", "b-on b-flow", "");
    row("several patterns, catalogue's order", "Hall/* Flow", "", "", "b-flow h-on h-test", "");
    row("overlapping patterns, each item once", "On Boiler/*", "", "", "b-on b-flow h-on", "");
    row("exclusion", "*", "*est Boiler/On", "", "b-flow h-on", "");
    row("exclusion alone", "", "Boiler/*", "", "h-on h-test", "");
    row("type", "", "", "Bit", "b-on h-on", "");
    row("several types", "", "", "16Bit-INT 32Bit-FLOAT", "b-flow h-test", "");
    row("pattern and type", "Hall/*", "", "Bit", "h-on", "");
    row("some match nothing", "Hall/On Pump/* x", "y", "String", "",
        "\"Pump/*\" \"x\" --exclude \"y\" --type \"String\"");
    row("matched, but excluded", "Hall/On", "On", "", "", "");
}

void TestHostConfigureChoice::filters()
{
    QFETCH(QStringList, patterns);
    QFETCH(QStringList, excluded);
    QFETCH(QStringList, types);
    QFETCH(QString, ids);
    QFETCH(QString, without_match);
    const FilteredItems filtered = filterItems(plant(), {patterns, excluded, types});
    QStringList found;
    for (const OfferedItem& item : filtered.items)
        found << item.id;
    QCOMPARE(found.join(QLatin1Char(' ')), ids);
    QCOMPARE(filtered.without_match.join(QLatin1Char(' ')), without_match);
}

void TestHostConfigureChoice::choosesByTheWholeNameAlone()
{
    const QVector<OfferedItem> items = {
        offered(QStringLiteral("G"), QStringLiteral("Temp 1"), QStringLiteral("a")),
        offered(QStringLiteral("G"), QStringLiteral("Temp [1]"), QStringLiteral("b"))};
    const FilteredItems filtered = filterItems(items, {{QStringLiteral("Temp [1]")}, {}, {}});
    QCOMPARE(filtered.items.size(), 1);
    QCOMPARE(filtered.items.first().id, QStringLiteral("b"));
}

void TestHostConfigureChoice::refusesUnknownTypes()
{
    try {
        filterItems({}, {{}, {}, {QStringLiteral("16bit-INT")}});
    } catch (const terminal::UsageError& error) {
        QVERIFY(error.message().startsWith(
            QLatin1String("--type: \"16bit-INT\" is no type; the types are: Bit, ")));
        return;
    }
    QFAIL("no error");
}

QTEST_GUILESS_MAIN(TestHostConfigureChoice)
#include "tst_host_configure_choice.moc"
