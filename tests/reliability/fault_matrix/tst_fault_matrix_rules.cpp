#include "tests/reliability/fault_matrix/measurement.h"

#include <QTest>

#include <csignal>
#include <functional>

using namespace fault_matrix;

namespace {

Cell cellOf(const char* name)
{
    Cell cell{};
    if (!Cell::fromName(latin1(name), &cell))
        qFatal("no cell %s", name);
    return cell;
}

/// What a sound driver shows in the cell "login/errorcode:code=7/type-0".
Measurement sound()
{
    Measurement measured;
    measured.began = true;
    measured.struck = 1.9;
    measured.seen = 2.0;
    measured.back = 1.5;
    measured.held = 3.4;
    measured.attempts = 2;
    measured.statuses = {0, 0x400F0004, 0x400F0007};
    measured.left_with = 0x400F0007;
    measured.close = 0.01;
    measured.requests = 100;
    measured.answers = 100;
    measured.longest_answer = 0.001;
    return measured;
}

using Change = std::function<void(Measurement*)>;

} // namespace

Q_DECLARE_METATYPE(Change)

/// The rules by which the matrix judges: each of them must be able to find something.
class TestFaultMatrixRules : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cellNames();
    void everyKindAndTypeIsInTheQuickPart();
    void expectations_data();
    void expectations();
    void aSoundDriverPasses();
    void rules_data();
    void rules();
    void onlyLate();
    void deaths();
    void jsonKeepsAll();
};

void TestFaultMatrixRules::cellNames()
{
    const QList<Cell> cells = allCells();
    QStringList names;
    for (const Cell& cell : cells) {
        Cell same{};
        QVERIFY2(Cell::fromName(cell.name(), &same), qPrintable(cell.name()));
        QCOMPARE(same.name(), cell.name());
        names.append(cell.name());
    }
    QCOMPARE(names.removeDuplicates(), 0);
    Cell cell{};
    QVERIFY(!Cell::fromName(latin1("value/hang"), &cell));
    QVERIFY(!Cell::fromName(latin1("value/hangs/type-0"), &cell));
    QVERIFY(!Cell::fromName(latin1("reading/hang/type-0"), &cell));
    QVERIFY(!Cell::fromName(latin1("value/hang/type-4"), &cell));
}

void TestFaultMatrixRules::everyKindAndTypeIsInTheQuickPart()
{
    QStringList kinds;
    QList<Handling> handlings;
    for (const Cell& cell : quickCells()) {
        kinds.append(kindOf(cell.fault));
        handlings.append(cell.handling);
    }
    for (const Cell& cell : allCells())
        QVERIFY2(kinds.contains(kindOf(cell.fault)), qPrintable(cell.name()));
    for (Handling handling : allHandlings())
        QVERIFY2(handlings.contains(handling), qPrintable(nameOf(handling)));
}

void TestFaultMatrixRules::expectations_data()
{
    QTest::addColumn<QByteArray>("cell");
    QTest::addColumn<int>("outcome");
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("goes_on");
    QTest::addColumn<bool>("recovers");
    const auto row = [](const char* cell, Outcome outcome, int status, bool goes_on,
                        bool recovers) {
        QTest::newRow(cell) << QByteArray(cell) << int(outcome) << status << goes_on << recovers;
    };
    row("value/reset/type-0", Outcome::Fails, 0x400F0256, false, true);
    row("value/errorcode:code=15/type-3", Outcome::Fails, 0x400F0015, false, true);
    row("value/errorcode:code=0/type-0", Outcome::Fails, 0x400F0256, false, true);
    row("value/errorcode:code=2/type-2", Outcome::Fails, 0, false, true);
    row("value/errorcode:code=2/type-1-switch", Outcome::Fails, 0, false, false);
    row("value/mistyped:member=value/type-0", Outcome::Carries, 0, false, true);
    row("value/token-expiry/type-3", Outcome::Fails, 0x400F0004, true, true);
    row("login/token-expiry/type-3", Outcome::Carries, 0, true, true);
    row("value/hang/type-0", Outcome::Waits, 0, false, true);
    row("write/hang/type-0", Outcome::Waits, 0, true, true);
    row("write/refuse/type-0", Outcome::Fails, 0x400F0256, false, true);
    row("write/reset/type-0", Outcome::Fails, 0x400F0256, true, true);
    row("write/errorcode:code=0/type-0", Outcome::Carries, 0, true, true);
    row("write/errorcode:code=2/type-3", Outcome::Fails, 0, false, false);
    row("items/missing:member=dataitem_id/type-0", Outcome::Carries, 0, true, true);
    row("items/missing:member=dataitems/type-0", Outcome::Fails, 0x400F0256, false, true);
    row("groups/not-object/type-0", Outcome::Dies, 0, false, true);
}

void TestFaultMatrixRules::expectations()
{
    QFETCH(QByteArray, cell);
    const Expectation expected = expectationFor(cellOf(cell.constData()));
    QTEST(int(expected.outcome), "outcome");
    QTEST(expected.status, "status");
    QTEST(expected.goes_on, "goes_on");
    QTEST(expected.recovers, "recovers");
}

void TestFaultMatrixRules::aSoundDriverPasses()
{
    QCOMPARE(breaches(cellOf("login/errorcode:code=7/type-0"), sound(), Limits()), QStringList());
}

void TestFaultMatrixRules::rules_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QString>("breach");
    const auto row = [](const char* name, const Change& change, const char* breach) {
        QTest::newRow(name) << change << latin1(breach);
    };
    row(
        "never began", [](Measurement* m) { m->began = false; }, "no values before the fault");
    row(
        "ended", [](Measurement* m) { m->signal = SIGSEGV; }, "the process ended: ");
    row(
        "status that nobody knows", [](Measurement* m) { m->statuses.append(5); }, "status 0x5");
    row(
        "not shown", [](Measurement* m) { m->seen = -1; },
        "status 0x400F0007 never, due within 3.10 s");
    row(
        "shown late", [](Measurement* m) { m->seen = 3.2; },
        "status 0x400F0007 after 3.20 s, due within 3.10 s");
    row(
        "never back", [](Measurement* m) { m->back = -1; },
        "new values after the fault never, due within 3.10 s");
    row(
        "back late", [](Measurement* m) { m->back = 3.2; },
        "new values after the fault after 3.20 s, due within 3.10 s");
    row(
        "back too early", [](Measurement* m) { m->on = 1; },
        "new values during the fault, after 1.00 s");
    row(
        "cache lost", [](Measurement* m) { m->lost.append(latin1("steady became 0, was 7")); },
        "cache: steady became 0, was 7");
    row(
        "hurried reconnects", [](Measurement* m) { m->attempts = 5; }, "5 reconnects in 3.40 s");
    row(
        "not at once", [](Measurement* m) { m->astray = 1; },
        "1 requests not answered once, at once");
    row(
        "answered twice", [](Measurement* m) { m->answers = 101; }, "101 answers to 100 requests");
    row(
        "answered late", [](Measurement* m) { m->longest_answer = 0.3; },
        "an answer took 300.0 ms");
    row(
        "closed late", [](Measurement* m) { m->close = 1.1; }, "closed after 1.10 s");
}

void TestFaultMatrixRules::rules()
{
    QFETCH(Change, change);
    QFETCH(QString, breach);
    Measurement measured = sound();
    change(&measured);
    QCOMPARE(breaches(cellOf("login/errorcode:code=7/type-0"), measured, Limits()),
             QStringList(breach));
}

/// Times may be another program's fault; what else is wrong is not.
void TestFaultMatrixRules::onlyLate()
{
    const Cell cell = cellOf("login/errorcode:code=7/type-0");
    Measurement late = sound();
    late.seen = 9;
    late.back = -1;
    late.close = 2;
    late.longest_answer = 1;
    QVERIFY(isOnlyLate(cell, late));
    QCOMPARE(breaches(cell, late, Limits()).size(), 4);
    late.answers = 99;
    QVERIFY(!isOnlyLate(cell, late));
    late.answers = 100;
    late.lost.append(latin1("steady became 0, was 7"));
    QVERIFY(!isOnlyLate(cell, late));
}

void TestFaultMatrixRules::deaths()
{
    const Cell cell = cellOf("value/not-object/type-0");
    Measurement measured;
    measured.signal = SIGABRT;
    measured.last_words = latin1("... 'std::runtime_error' ...");
    QCOMPARE(breaches(cell, measured, Limits()), QStringList());
    measured.signal = SIGSEGV;
    QCOMPARE(breaches(cell, measured, Limits()).size(), 1);
    QCOMPARE(breaches(cell, sound(), Limits()).size(), 1);
}

void TestFaultMatrixRules::jsonKeepsAll()
{
    Measurement measured = sound();
    measured.on = 3;
    measured.closed_amid = true;
    measured.astray = 2;
    measured.lost = QStringList{latin1("one"), latin1("two")};
    const Measurement same = Measurement::fromJson(measured.toJson());
    QCOMPARE(same.toJson().dump(), measured.toJson().dump());
    QCOMPARE(same.lost, measured.lost);
    QCOMPARE(same.statuses, measured.statuses);
}

QTEST_GUILESS_MAIN(TestFaultMatrixRules)
#include "tst_fault_matrix_rules.moc"
