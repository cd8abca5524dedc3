#include "tests/tools/host/check_run.h"

#include <QTest>

/// The command with items that are not well.
class TestHostProgramCheckItems : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itemsThatAreWrong();
    void itemThatHangs();
    void slowItem();
    void limitsTheItems();
};

void TestHostProgramCheckItems::itemsThatAreWrong()
{
    CheckRun run;
    QVERIFY(run.startService());
    run.host.addItem(latin1("Text"), latin1("boiler-on"), latin1("16Bit-INT"));
    run.host.addItem(latin1("Typo"), latin1("boiler-folw"), latin1("32Bit-FLOAT"));
    run.host.addItem(latin1("Behind"), latin1("boiler-setpoint"), latin1("32Bit-INT"));
    QCOMPARE(run.check(), 1);
    const QVector<nlohmann::json> items = run.stepsOf("item");
    QCOMPARE(items.size(), 5);
    QVERIFY(textOf(items.at(2), "text")
                .startsWith(latin1("the value is true or false, which is no 16Bit-INT")));
    QCOMPARE(textOf(items.at(2), "advice"), latin1("set the item's type to Bit"));
    QVERIFY(textOf(items.at(3), "text").startsWith(latin1("service error 7")));
    QVERIFY(textOf(items.at(3), "advice").contains(latin1("\"boiler-flow\"")));
    QCOMPARE(textOf(items.at(4), "judgement"), latin1("warn"));
    QVERIFY(textOf(items.at(4), "text").contains(latin1("16Bit-INT in the catalogue")));
    QCOMPARE(textOf(run.firstStep("cycle"), "text"),
             latin1("ends at Typo every time; without a value stay: Behind"));
    QCOMPARE(textOf(run.verdict(), "text"), latin1("not every value arrives"));
}

void TestHostProgramCheckItems::itemThatHangs()
{
    CheckRun run;
    QVERIFY(run.startService({latin1("--fault"), latin1("hang:path=value,item=boiler-flow")}));
    QCOMPARE(run.check({latin1("--timeout"), latin1("3")}), 1);
    const QVector<nlohmann::json> items = run.stepsOf("item");
    QCOMPARE(textOf(items.at(0), "text"), latin1("no answer within 3 s"));
    QCOMPARE(textOf(items.at(1), "judgement"), latin1("ok"));
    QVERIFY(textOf(run.firstStep("cycle"), "text").startsWith(latin1("waits at Flow")));
    QCOMPARE(textOf(run.verdict(), "text"), latin1("no value arrives"));
}

void TestHostProgramCheckItems::slowItem()
{
    CheckRun run;
    QVERIFY(
        run.startService({latin1("--fault"), latin1("delay:ms=1200,path=value,item=boiler-flow")}));
    QCOMPARE(run.check({latin1("--timeout"), latin1("30")}), 0);
    QCOMPARE(textOf(run.firstStep("cycle"), "judgement"), latin1("warn"));
    QVERIFY(textOf(run.firstStep("cycle"), "text").contains(latin1("slow: Flow 1.")));
    QVERIFY(run.firstStep("item").at("seconds").get<double>() >= 1.2);
    QVERIFY(run.firstStep("cycle").at("facts").at("oldest_seconds").get<double>() >= 3.2);
}

void TestHostProgramCheckItems::limitsTheItems()
{
    CheckRun run;
    QVERIFY(run.startService());
    run.host.addItem(latin1("Hall/Light"), latin1("hall-light"), latin1("Bit"));
    QCOMPARE(run.check({latin1("--items"), latin1("F*"), latin1("--items"), latin1("Hall*")}), 0);
    QCOMPARE(run.stepsOf("item").size(), 2);
    QCOMPARE(textOf(run.stepsOf("item").at(1), "subject"), latin1("Hall/Light"));
    QVERIFY(textOf(run.firstStep("cycle"), "text").contains(latin1("that were left out")));
}

QTEST_GUILESS_MAIN(TestHostProgramCheckItems)
#include "tst_host_program_check_items.moc"
