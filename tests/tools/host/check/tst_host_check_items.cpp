#include "tools/host/check/judge.h"
#include "tools/host/terminal/text.h"

#include "property/property_tovik_iot_group.h"

#include <QTest>

using namespace tovik_host;
using namespace tovik_host::check;
using tovik_host::service::ClientOutcome;

Q_DECLARE_METATYPE(tovik_host::check::ItemFinding)
Q_DECLARE_METATYPE(tovik_host::service::ClientOutcome)
Q_DECLARE_METATYPE(tovik_host::check::Severity)
Q_DECLARE_METATYPE(QVector<tovik_host::check::ItemFinding>)

/// The service's answers, the driver's cycle, and the verdict.
class TestHostCheckItems : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void near_data();
    void near();
    void looksUp_data();
    void looksUp();
    void conversation_data();
    void conversation();
    void item_data();
    void item();
    void cycle_data();
    void cycle();
    void namesWhatStaysWithoutValue();
    void verdict_data();
    void verdict();
    void writesLines();
    void writesJson();
};

namespace {

config::ItemConfig itemNamed(const char* name, const char* type = "16Bit-INT")
{
    config::ItemConfig item;
    item.name = QString::fromLatin1(name);
    item.id = item.name.toLower();
    item.type = value::findItemType(QString::fromLatin1(type));
    return item;
}

ClientOutcome outcome(ClientOutcome::Kind kind, int result, const char* reason,
                      double seconds = 0.01)
{
    return {kind, result, seconds, QString::fromLatin1(reason)};
}

ItemFinding readItem(const char* name, const ClientOutcome& result)
{
    ItemFinding finding;
    finding.item = itemNamed(name);
    finding.is_read = true;
    finding.is_known = true;
    finding.catalogue_type = QStringLiteral("16Bit-INT");
    finding.outcome = result;
    finding.value = 5;
    return finding;
}

ItemFinding good(const char* name, double seconds = 0.01)
{
    return readItem(name, outcome(ClientOutcome::Done, 0, "", seconds));
}

CatalogueItems catalogue()
{
    PropertyTovikIotGroup group;
    group.name = QStringLiteral("Boiler");
    for (const char* id : {"boiler-flow", "boiler-fault", "hall-door"}) {
        PropertyTovikIotDataItem item;
        item.dataitem_id = QString::fromLatin1(id);
        item.name = QStringLiteral("Name of ") + item.dataitem_id;
        item.type = QStringLiteral("32Bit-FLOAT");
        group.dataitems << item;
    }
    return itemsOf({group});
}

} // namespace

void TestHostCheckItems::near_data()
{
    QTest::addColumn<QString>("written");
    QTest::addColumn<QString>("meant");
    QTest::addColumn<int>("distance");
    QTest::addColumn<bool>("is_near");
    const auto row = [](const char* title, const char* written, const char* meant, int distance,
                        bool is_near) {
        QTest::newRow(title) << QString::fromLatin1(written) << QString::fromLatin1(meant)
                             << distance << is_near;
    };
    row("the same", "flow", "flow", 0, true);
    row("another case", "Flow", "flow", 0, true);
    row("a letter too few", "boiler-flw", "boiler-flow", 1, true);
    row("a letter too many", "boiler-floow", "boiler-flow", 1, true);
    row("another letter", "boiler-flox", "boiler-flow", 1, true);
    row("two letters exchanged", "boiler-folw", "boiler-flow", 2, true);
    row("another word", "hall-door", "boiler-flow", 8, false);
    row("short and one letter off", "ab", "ac", 1, true);
    row("short and all others", "ab", "xy", 2, false);
    row("nothing", "", "abc", 3, false);
}

void TestHostCheckItems::near()
{
    QFETCH(QString, written);
    QFETCH(QString, meant);
    QTEST(terminal::editDistance(written, meant), "distance");
    QTEST(terminal::isNear(written, meant), "is_near");
}

void TestHostCheckItems::looksUp_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<bool>("is_known");
    QTest::addColumn<QString>("suggestion");
    QTest::newRow("known") << QStringLiteral("boiler-flow") << true << QString();
    QTest::newRow("a typing mistake")
        << QStringLiteral("boiler-folw") << false
        << QStringLiteral("the catalogue has \"boiler-flow\" (Name of boiler-flow, 32Bit-FLOAT)");
    QTest::newRow("the name in place of the id")
        << QStringLiteral("Name of hall-door") << false
        << QStringLiteral("the catalogue has \"hall-door\" (Name of hall-door, 32Bit-FLOAT)");
    QTest::newRow("nothing like it") << QStringLiteral("recipe") << false << QString();
}

void TestHostCheckItems::looksUp()
{
    QFETCH(QString, id);
    config::ItemConfig item = itemNamed("Any");
    item.id = id;
    const ItemFinding finding = lookUpItem(item, catalogue());
    QVERIFY(!finding.is_read);
    QTEST(finding.is_known, "is_known");
    QTEST(finding.suggestion, "suggestion");
}

void TestHostCheckItems::conversation_data()
{
    QTest::addColumn<ClientOutcome>("facts");
    QTest::addColumn<Severity>("severity");
    QTest::addColumn<QString>("text");
    QTest::newRow("done") << outcome(ClientOutcome::Done, 0, "") << Severity::ok
                          << QStringLiteral("accepted");
    QTest::newRow("refused")
        << outcome(ClientOutcome::Failed, 1, "words") << Severity::failure
        << QStringLiteral("service error 1 (by it tovik-cloud means: no account has this e-mail "
                          "address and password); the host gets status 0x400F0001");
    QTest::newRow("refused with a code that no status has")
        << outcome(ClientOutcome::Failed, 42, "words") << Severity::failure
        << QStringLiteral("service error 42; the driver has no status for it: the host sees 0, as "
                          "if all were well");
    QTest::newRow("not reached") << outcome(ClientOutcome::Failed, 256, "words")
                                 << Severity::failure << QStringLiteral("words");
    QTest::newRow("no answer") << outcome(ClientOutcome::TimedOut, 0, "no answer within 3 s")
                               << Severity::failure << QStringLiteral("no answer within 3 s");
    QTest::newRow("a bad reply") << outcome(ClientOutcome::BadReply, 256, "words")
                                 << Severity::failure << QStringLiteral("words");
}

void TestHostCheckItems::conversation()
{
    QFETCH(ClientOutcome, facts);
    const CheckStep step = judgeConversation("login", facts);
    QTEST(step.severity, "severity");
    QTEST(step.text, "text");
    QCOMPARE(step.advice.isEmpty(), step.severity == Severity::ok);
    QCOMPARE(*step.seconds, facts.seconds);
}

void TestHostCheckItems::item_data()
{
    QTest::addColumn<ItemFinding>("finding");
    QTest::addColumn<Severity>("severity");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("advice");
    const ClientOutcome refused = outcome(ClientOutcome::Failed, 7, "words");
    const ClientOutcome other = outcome(ClientOutcome::Done, 0, "the value is a text");
    const auto row = [](const char* title, const ItemFinding& finding, Severity severity,
                        const char* text, const char* advice) {
        QTest::newRow(title) << finding << severity << QString::fromLatin1(text)
                             << QString::fromLatin1(advice);
    };
    row("well", good("A"), Severity::ok, "5", "");
    ItemFinding single = good("A");
    single.value = 65.379179f;
    row("a single with the digits that it has", single, Severity::ok, "65.37918", "");
    ItemFinding mistyped = good("A");
    mistyped.catalogue_type = QStringLiteral("32Bit-FLOAT");
    row("another type", mistyped, Severity::warning,
        "5; of type 32Bit-FLOAT in the catalogue and 16Bit-INT here", "type to 32Bit-FLOAT");
    ItemFinding unlisted = good("A");
    unlisted.is_known = false;
    row("not in the catalogue", unlisted, Severity::warning, "not in its catalogue", "ask");
    row("another JSON type", readItem("A", other), Severity::failure,
        "the value is a text; the host keeps the item's first value", "compare");
    ItemFinding both = mistyped;
    both.outcome = other;
    row("another JSON type, as the catalogue says", both, Severity::failure, "is a text",
        "type to 32Bit-FLOAT");
    row("refused", readItem("A", refused), Severity::failure, "service error 7",
        "what its code 7 means");
    ItemFinding unknown = readItem("A", refused);
    unknown.is_known = false;
    row("refused and unknown", unknown, Severity::failure, "the catalogue has no item \"a\"",
        "correct the id, or remove");
    unknown.suggestion = QStringLiteral("the catalogue has \"b\"");
    row("refused and nearly known", unknown, Severity::failure, "no item \"a\"",
        "correct the id: the catalogue has \"b\"");
    row("no answer", readItem("A", outcome(ClientOutcome::TimedOut, 0, "no answer within 3 s")),
        Severity::failure, "no answer within 3 s", "without a time-out");
    ItemFinding left_alone = good("A");
    left_alone.is_read = false;
    row("not read", left_alone, Severity::not_tried, "", "");
}

void TestHostCheckItems::item()
{
    QFETCH(ItemFinding, finding);
    QFETCH(QString, text);
    QFETCH(QString, advice);
    const CheckStep step = judgeItem(finding);
    QTEST(step.severity, "severity");
    QVERIFY2(step.text.contains(text), qPrintable(step.text));
    QVERIFY2(step.advice.contains(advice), qPrintable(step.advice));
    QCOMPARE(step.advice.isEmpty(), advice.isEmpty());
    QCOMPARE(step.subject, QStringLiteral("A"));
}

void TestHostCheckItems::cycle_data()
{
    QTest::addColumn<QVector<ItemFinding>>("findings");
    QTest::addColumn<bool>("is_complete");
    QTest::addColumn<Severity>("severity");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("arriving");
    const ItemFinding refused = readItem("B", outcome(ClientOutcome::Failed, 7, "words"));
    const ItemFinding hanging = readItem("B", outcome(ClientOutcome::TimedOut, 0, "words"));
    const ItemFinding mistyped = readItem("B", outcome(ClientOutcome::Done, 0, "a text", 0.25));
    const auto row = [](const char* title, const QVector<ItemFinding>& findings, bool is_complete,
                        Severity severity, const char* text, int arriving) {
        QTest::newRow(title) << findings << is_complete << severity << QString::fromLatin1(text)
                             << arriving;
    };
    row("quick", {good("A", 0.25), good("B", 0.25)}, true, Severity::ok,
        "0.50 s for 2 items: values are up to 1.50 s old", 2);
    row("some left out", {good("A", 0.25)}, false, Severity::ok,
        "0.25 s for 1 item: values are up to 1.25 s old, and older with the items that were left "
        "out",
        1);
    row("the next cycle waits for a whole second", {good("A", 1), good("B", 0.25)}, true,
        Severity::warning, "1.25 s for 2 items: values are up to 3.25 s old; slow: A 1.00 s", 2);
    row("slower than a second", {good("A", 0.75), good("B", 2), good("C", 0.25)}, true,
        Severity::warning,
        "3.00 s for 3 items: values are up to 6.00 s old; slow: B 2.00 s, A 0.75 s", 3);
    row("a value that is not taken ends no cycle", {good("A", 0.25), mistyped, good("C", 0.25)},
        true, Severity::ok, "0.75 s for 3 items: values are up to 1.75 s old", 2);
    row("an item refused in the middle", {good("A"), refused, good("C")}, true, Severity::failure,
        "ends at B every time; without a value stay: C", 1);
    row("the first one refused", {refused, good("C")}, true, Severity::failure, "stay: C", 0);
    row("the last one refused", {good("A"), refused}, true, Severity::failure,
        "ends at B every time; it is the last item", 1);
    row("an item that hangs", {good("A"), hanging, good("C")}, true, Severity::failure,
        "waits at B for as long as the service does", 0);
    row("the first of two in error counts", {good("A"), refused, hanging}, true, Severity::failure,
        "ends at B", 1);
}

void TestHostCheckItems::cycle()
{
    QFETCH(QVector<ItemFinding>, findings);
    QFETCH(bool, is_complete);
    QFETCH(QString, text);
    const CheckStep step = judgeCycle(findings, is_complete);
    QTEST(step.severity, "severity");
    QVERIFY2(step.text.startsWith(text) || step.text.contains(text), qPrintable(step.text));
    QTEST(step.facts.at("arriving").get<int>(), "arriving");
}

void TestHostCheckItems::namesWhatStaysWithoutValue()
{
    QVector<ItemFinding> findings = {readItem("Bad", outcome(ClientOutcome::Failed, 7, "words"))};
    for (const char* name : {"A", "B", "C", "D", "E", "F", "G"})
        findings << good(name);
    const CheckStep step = judgeCycle(findings, true);
    QVERIFY(step.text.endsWith(QLatin1String("stay: A, B, C, D, E and 2 more")));
    QCOMPARE(step.facts.at("without_value").size(), std::size_t(7));
}

void TestHostCheckItems::verdict_data()
{
    QTest::addColumn<QVector<ItemFinding>>("findings");
    QTest::addColumn<bool>("is_interrupted");
    QTest::addColumn<bool>("is_well");
    QTest::addColumn<QString>("summary");
    QTest::addColumn<QStringList>("causes");
    const ItemFinding refused = readItem("B", outcome(ClientOutcome::Failed, 7, "words"));
    ItemFinding unlisted = good("A");
    unlisted.is_known = false;
    const auto row = [](const char* title, const QVector<ItemFinding>& findings, bool interrupted,
                        bool well, const char* summary, const QStringList& causes) {
        QTest::newRow(title) << findings << interrupted << well << QString::fromLatin1(summary)
                             << causes;
    };
    row("all well", {good("A")}, false, true, "all is well, every value arrives", {});
    row("a warning", {unlisted}, false, true, "every value arrives, with 1 warning",
        {QStringLiteral("item A")});
    row("two warnings", {unlisted, unlisted}, false, true, "every value arrives, with 2 warnings",
        {QStringLiteral("item A"), QStringLiteral("item A")});
    row("failures come before warnings", {unlisted, refused}, false, false,
        "not every value arrives",
        {QStringLiteral("item B"), QStringLiteral("cycle"), QStringLiteral("item A")});
    row("nothing arrives", {refused, good("A")}, false, false, "no value arrives",
        {QStringLiteral("item B"), QStringLiteral("cycle")});
    row("interrupted", {good("A")}, true, false, "interrupted, nothing is proved", {});
}

void TestHostCheckItems::verdict()
{
    QFETCH(QVector<ItemFinding>, findings);
    QFETCH(bool, is_interrupted);
    QFETCH(QStringList, causes);
    CheckSteps steps;
    for (const ItemFinding& finding : findings)
        steps << judgeItem(finding);
    steps << judgeCycle(findings, true);
    const Verdict verdict = judgeAll(steps, is_interrupted);
    QTEST(verdict.is_well, "is_well");
    QTEST(verdict.summary, "summary");
    QCOMPARE(verdict.causes.size(), causes.size());
    for (int i = 0; i < causes.size(); ++i)
        QVERIFY(verdict.causes.at(i).found.startsWith(causes.at(i) + QLatin1Char(':')));
}

void TestHostCheckItems::writesLines()
{
    CheckStep step = makeStep("name", Severity::failure, QStringLiteral("is not found\x1b[2J"),
                              QStringLiteral("do this"));
    step.subject = QStringLiteral("cloud.example");
    step.seconds = 0.0126;
    QCOMPARE(stepLine(step, false), QStringLiteral("FAIL  name         cloud.example: is not "
                                                   "found\u00b7[2J  (13 ms)"));
    QCOMPARE(stepLine(makeStep("login", Severity::not_tried, QString()), false),
             QStringLiteral("--    login        not tried"));
    CheckStep wordy = step;
    wordy.cause = QStringLiteral("in short");
    QCOMPARE(judgeAll({wordy}, false).causes.first().found,
             QStringLiteral("name cloud.example: in short"));
    const QStringList expected = {QString(), QStringLiteral("Verdict: no value arrives."),
                                  QStringLiteral("  - name cloud.example: is not found\u00b7[2J"),
                                  QStringLiteral("    What to do: do this")};
    QCOMPARE(verdictLines(judgeAll({step}, false), false), expected);
}

void TestHostCheckItems::writesJson()
{
    const auto parsed = [](const QString& line) {
        return nlohmann::json::parse(line.toStdString());
    };
    const CheckStep step = judgeItem(good("A"));
    const nlohmann::json object = parsed(stepLine(step, true));
    QCOMPARE(object.at("event").get<std::string>(), std::string("step"));
    QCOMPARE(object.at("subject").get<std::string>(), std::string("A"));
    QCOMPARE(object.at("judgement").get<std::string>(), std::string("ok"));
    QCOMPARE(object.at("facts").at("id").get<std::string>(), std::string("a"));
    QVERIFY(!object.contains("advice"));
    const CheckStep bad =
        makeStep("tls", Severity::failure, QStringLiteral("x"), QStringLiteral("y"));
    const nlohmann::json verdict = parsed(verdictLines(judgeAll({bad}, false), true).first());
    QCOMPARE(verdict.at("well").get<bool>(), false);
    QCOMPARE(verdict.at("causes").at(0).at("found").get<std::string>(), std::string("tls: x"));
    QCOMPARE(verdict.at("causes").at(0).at("advice").get<std::string>(), std::string("y"));
}

QTEST_GUILESS_MAIN(TestHostCheckItems)
#include "tst_host_check_items.moc"
