#include "tools/host/service/diff_items.h"

#include <QTest>

using namespace tovik_host;
using namespace tovik_host::service;

class TestHostDiffItems : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void comparesCatalogues_data();
    void comparesCatalogues();
    void comparesConfigurations_data();
    void comparesConfigurations();
    void makesSides();
    void comparesLargeCatalogues();
};

namespace {

/// Items as "id group_id/group/name/type/length", separated by bars; of a configuration
/// "id name/type".
DiffSide side(const QString& text, bool is_config = false)
{
    DiffSide side;
    side.is_config = is_config;
    for (const QString& entry : text.split(QLatin1Char('|'), Qt::SkipEmptyParts)) {
        const QStringList words = entry.section(QLatin1Char(' '), 1).split(QLatin1Char('/'));
        OfferedItem item;
        item.id = entry.section(QLatin1Char(' '), 0, 0);
        if (is_config) {
            item.name = words.at(0);
            item.type = words.at(1);
        } else {
            item.group_id = words.at(0);
            item.group = words.at(1);
            item.name = words.at(2);
            item.type = words.at(3);
            item.length = words.at(4).toInt();
            PropertyTovikIotGroup group;
            group.group_id = item.group_id;
            group.name = item.group;
            group.permission = words.value(5);
            side.groups << group;
        }
        side.items << item;
    }
    return side;
}

QString linesOf(const QVector<Difference>& differences)
{
    QStringList lines;
    for (const Difference& difference : differences)
        lines << differenceLine(difference);
    return lines.join(QLatin1Char('\n'));
}

} // namespace

void TestHostDiffItems::comparesCatalogues_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::addColumn<QString>("lines");
    const auto row = [](const char* name, const char* before, const char* after,
                        const char* lines) {
        QTest::newRow(name) << QString::fromUtf8(before) << QString::fromUtf8(after)
                            << QString::fromUtf8(lines);
    };
    row("nothing", "", "", "");
    row("the same", "a g/G/A/Bit/1", "a g/G/A/Bit/1", "");
    row("another order", "a g/G/A/Bit/1|b g/G/B/Bit/1", "b g/G/B/Bit/1|a g/G/A/Bit/1", "");
    row("gone", "a g/G/A/Bit/1|b g/G/B/Bit/1", "b g/G/B/Bit/1", "- G/A (a): gone");
    row("added", "", "a g/G/A/Bit/1", "+ G/A (a): added, Bit");
    row("renamed", "a g/G/A/Bit/1", "a g/G/B/Bit/1", "~ G/A (a): renamed from \"A\" to \"B\"");
    row("of another type", "a g/G/A/Bit/1", "a g/G/A/16Bit-INT/1",
        "~ G/A (a): type 16Bit-INT, was Bit");
    row("moved", "a g/G/A/Bit/1", "a h/H/A/Bit/1", "~ G/A (a): moved from group \"G\" to \"H\"");
    row("moved to a group of the same name", "a g/G/A/Bit/1", "a h/G/A/Bit/1",
        "~ G/A (a): moved from group \"G\" to \"G\"");
    row("group renamed", "a g/G/A/Bit/1", "a g/H/A/Bit/1",
        "~ G (g): group renamed from \"G\" to \"H\"");
    row("group of two items renamed", "a g/G/A/Bit/1|b g/G/B/Bit/1", "a g/H/A/Bit/1|b g/H/B/Bit/1",
        "~ G (g): group renamed from \"G\" to \"H\"");
    row("other access", "a g/G/A/Bit/1/RW", "a g/G/A/Bit/1/R", "~ G (g): access \"R\", was \"RW\"");
    row("another length", "a g/G/A/String/8", "a g/G/A/String/16", "~ G/A (a): length 16, was 8");
    row("all at once", "a g/G/A/Bit/1", "a h/H/B/String/8",
        "~ G/A (a): renamed from \"A\" to \"B\"\n~ G/A (a): type String, was Bit\n"
        "~ G/A (a): moved from group \"G\" to \"H\"\n~ G/A (a): length 8, was 1");
    row("another id", "a g/G/A/Bit/1", "b g/G/A/Bit/1",
        "- G/A (a): gone; an item of this name has the id \"b\"\n+ G/A (b): added, Bit");
    row("one id in two groups", "a g/G/A/Bit/1|a h/H/A/Bit/1", "a h/H/A/Bit/1|a g/G/A/Bit/1", "");
    row("one id in two groups, one gone", "a g/G/A/Bit/1|a h/H/A/Bit/1", "a h/H/A/Bit/1",
        "- G/A (a): gone");
    row("control characters", "a\t g/G\n/A/Bit/1", "", "- G\u00b7/A (a\u00b7): gone");
}

void TestHostDiffItems::comparesCatalogues()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    QFETCH(QString, lines);
    QCOMPARE(linesOf(findDifferences(side(before), side(after))), lines);
}

void TestHostDiffItems::comparesConfigurations_data()
{
    QTest::addColumn<QString>("config");
    QTest::addColumn<QString>("other");
    QTest::addColumn<bool>("other_is_config");
    QTest::addColumn<QString>("forth");
    QTest::addColumn<QString>("back");
    const auto row = [](const char* name, const char* config, const char* other, bool is_config,
                        const char* forth, const char* back) {
        QTest::newRow(name) << QString::fromUtf8(config) << QString::fromUtf8(other) << is_config
                            << QString::fromUtf8(forth) << QString::fromUtf8(back);
    };
    row("natural name, other items do not count", "a G.A/Bit", "a g/G/A/Bit/1|b g/G/B/Bit/1", false,
        "", "");
    row("numbered name", "a G.A (2)/Bit", "a g/G/A/Bit/1", false, "", "");
    row("name that never was a number", "a G.A (x)/Bit", "a g/G/A/Bit/1", false,
        "~ G.A (x) (a): renamed from \"G.A (x)\" to \"G.A\"",
        "~ G/A (a): renamed from \"G.A\" to \"G.A (x)\"");
    row("one item under two names", "a G.A/Bit|a G.A (2)/Bit", "a g/G/A/Bit/1", false, "", "");
    row("one id in two groups, one of them used", "a H.A/Bit", "a g/G/A/Bit/1|a h/H/A/Bit/1", false,
        "", "");
    row("lengths do not count", "a G.A/String", "a g/G/A/String/8", false, "", "");
    row("gone", "a G.A/Bit", "", false, "- G.A (a): gone", "+ G.A (a): added, Bit");
    row("of another type", "a G.A/Bit", "a g/G/A/16Bit-INT/1", false,
        "~ G.A (a): type 16Bit-INT, was Bit", "~ G/A (a): type Bit, was 16Bit-INT");
    row("two configurations", "a A/Bit|b B/Bit", "b B/Bit|c C (2)/Bit", true,
        "- A (a): gone\n+ C (2) (c): added, Bit", "- C (2) (c): gone\n+ A (a): added, Bit");
    row("numbers count in two configurations", "a A/Bit", "a A (2)/Bit", true,
        "~ A (a): renamed from \"A\" to \"A (2)\"", "~ A (2) (a): renamed from \"A (2)\" to \"A\"");
}

void TestHostDiffItems::comparesConfigurations()
{
    QFETCH(QString, config);
    QFETCH(QString, other);
    QFETCH(bool, other_is_config);
    QFETCH(QString, forth);
    QFETCH(QString, back);
    const DiffSide one = side(config, true);
    const DiffSide two = side(other, other_is_config);
    QCOMPARE(linesOf(findDifferences(one, two)), forth);
    QCOMPARE(linesOf(findDifferences(two, one)), back);
}

void TestHostDiffItems::makesSides()
{
    PropertyTovikIotDataItem item;
    item.dataitem_id = QStringLiteral("a");
    item.name = QStringLiteral("A");
    item.type = QStringLiteral("String");
    item.length = 8;
    PropertyTovikIotGroup group;
    group.group_id = QStringLiteral("g");
    group.name = QStringLiteral("G");
    group.permission.clear();
    group.dataitems << item;
    Catalogue catalogue;
    catalogue.groups << group;
    config::HostConfig config;
    config.items = {{QStringLiteral("G.A"), QStringLiteral("a"),
                     value::findItemType(QStringLiteral("String")), 8}};
    QVERIFY(!diffSide(catalogue).is_config);
    QVERIFY(diffSide(config).is_config);
    QCOMPARE(
        linesOf(findDifferences(diffSide(catalogue), side(QStringLiteral("a g/G/A/String/8")))),
        QString());
    QCOMPARE(linesOf(findDifferences(diffSide(config), diffSide(catalogue))), QString());
}

void TestHostDiffItems::comparesLargeCatalogues()
{
    DiffSide before;
    for (int i = 0; i < 50000; ++i) {
        before.items << OfferedItem{
            QString::number(i),  QString::number(i % 1000), QStringLiteral("Bit"), 1, false,
            QStringLiteral("g"), QStringLiteral("G")};
    }
    DiffSide after = before;
    after.items.removeLast();
    after.items.first().name = QStringLiteral("new");
    QCOMPARE(findDifferences(before, after).size(), 2);
}

QTEST_GUILESS_MAIN(TestHostDiffItems)
#include "tst_host_diff_items.moc"
