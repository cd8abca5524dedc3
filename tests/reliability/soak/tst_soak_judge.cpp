#include "tests/reliability/soak/fault_plan.h"
#include "tests/reliability/soak/judge.h"

#include <QSet>
#include <QTest>

#include <functional>

namespace {

using Change = std::function<void(SoakSample*, int)>;

/// Ten minutes of a client that is as it should be, with \a change on top.
std::vector<SoakSample> run(const Change& change)
{
    std::vector<SoakSample> samples;
    for (int i = 0; i < 600; ++i) {
        SoakSample sample;
        sample.seconds = i;
        sample.facts.resident_kib = 30000 + (i % 7) * 300;
        sample.facts.heap_kib = 2000 + (i % 5) * 40;
        sample.facts.descriptors = 12 + (i % 3) * 2;
        sample.facts.threads = 4 + i % 3;
        sample.reconnects = i / 20;
        sample.timers = sample.reconnects + 2;
        change(&sample, i);
        samples.push_back(sample);
    }
    return samples;
}

} // namespace

Q_DECLARE_METATYPE(Change)

/// The judge of a soak finds what rises, and lets pass what only goes up and down.
class TestSoakJudge : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void passes_data();
    void passes();
    void complains_data();
    void complains();
    void shortRuns();
    void planIsTheSameForTheSameSeed();
    void aDayHasOneNight();
};

void TestSoakJudge::passes_data()
{
    QTest::addColumn<Change>("change");
    auto row = [](const char* name, const Change& change) { QTest::newRow(name) << change; };
    row("flat", [](SoakSample*, int) {});
    row("a climb while it warms up", [](SoakSample* sample, int i) {
        sample->facts.resident_kib += 100 * std::min(i, 115);
        sample->facts.heap_kib += 100 * std::min(i, 115);
    });
    row("peaks that go again", [](SoakSample* sample, int i) {
        if (i % 50 == 0) {
            sample->facts.resident_kib += 50000;
            sample->facts.heap_kib += 50000;
            sample->facts.threads = 20;
            sample->facts.descriptors = 60;
        }
    });
    row("a service that is away at the beginning only", [](SoakSample* sample, int i) {
        sample->is_polling = i < 130 || i > 140;
        if (!sample->is_polling) {
            sample->facts.descriptors = 10;
            sample->facts.threads = 3;
        }
    });
    row("what a reconnect leaves by design", [](SoakSample* sample, int i) {
        sample->reconnects = i;
        sample->timers = qMin(i, 100) + 2;
        sample->facts.heap_kib += qMin(i, 300);
    });
}

void TestSoakJudge::passes()
{
    QFETCH(Change, change);
    const SoakVerdict verdict = judge(run(change), SoakCeilings());
    QVERIFY2(verdict.complaints.empty(),
             verdict.complaints.empty() ? "" : verdict.complaints.front().c_str());
    QCOMPARE(verdict.warm_up_seconds, 599.0 / 5);
}

void TestSoakJudge::complains_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QString>("complaint");
    auto row = [](const char* name, const char* complaint, const Change& change) {
        QTest::newRow(name) << change << QString::fromLatin1(complaint);
    };
    row("a kilobyte of heap a second", "rise of the heap",
        [](SoakSample* sample, int i) { sample->facts.heap_kib += i; });
    row("a page of memory every two seconds, from outside of the heap", "rise of resident memory",
        [](SoakSample* sample, int i) { sample->facts.resident_kib += 20 * i; });
    row("a descriptor that stays", "descriptors between requests",
        [](SoakSample* sample, int i) { sample->facts.descriptors += i > 300 ? 1 : 0; });
    row("a descriptor that stays, of a client that is away at the end",
        "descriptors between requests", [](SoakSample* sample, int i) {
            sample->is_polling = i < 560;
            sample->facts.descriptors += i > 300 ? 1 : 0;
            if (!sample->is_polling)
                sample->facts.descriptors = 10;
        });
    row("a thread that stays", "threads between requests",
        [](SoakSample* sample, int i) { sample->facts.threads += i > 300 ? 1 : 0; });
    row("more descriptors at once than requests need", "descriptors: 65.0",
        [](SoakSample* sample, int i) {
            if (i == 400)
                sample->facts.descriptors = 65;
        });
    row("more threads at once than requests need", "threads: 25.0", [](SoakSample* sample, int i) {
        if (i == 400)
            sample->facts.threads = 25;
    });
    row("two timers for one reconnect", "timers of the client",
        [](SoakSample* sample, int) { sample->timers = 2 * sample->reconnects + 2; });
    row("a timer of every reconnect", "timers of the client", [](SoakSample* sample, int i) {
        sample->reconnects = i;
        sample->timers = i + 2;
    });
    row("heap for every reconnect", "rise of the heap", [](SoakSample* sample, int i) {
        sample->reconnects = 2 * i;
        sample->facts.heap_kib += 3 * i / 2;
    });
}

void TestSoakJudge::complains()
{
    QFETCH(Change, change);
    QFETCH(QString, complaint);
    const SoakVerdict verdict = judge(run(change), SoakCeilings());
    QCOMPARE(int(verdict.complaints.size()), 1);
    QVERIFY2(QString::fromStdString(verdict.complaints.front()).startsWith(complaint),
             verdict.complaints.front().c_str());
}

/// A short run says nothing of what rises, but a timer too many is one too many.
void TestSoakJudge::shortRuns()
{
    QVERIFY(judge({}, SoakCeilings()).is_too_short);
    std::vector<SoakSample> samples =
        run([](SoakSample* sample, int i) { sample->facts.heap_kib += 10000 * i; });
    QVERIFY(!judge(samples, SoakCeilings()).is_too_short);
    samples.resize(60);
    QVERIFY(judge(samples, SoakCeilings()).is_too_short);
    QVERIFY(judge(samples, SoakCeilings()).complaints.empty());
    samples.back().timers = 100;
    QCOMPARE(int(judge(samples, SoakCeilings()).complaints.size()), 1);
}

void TestSoakJudge::planIsTheSameForTheSameSeed()
{
    FaultPlan one(7, 1);
    FaultPlan other(7, 1);
    FaultPlan different(8, 1);
    bool differs = false;
    for (int i = 0; i < 100; ++i) {
        const PlannedFault fault = one.next();
        const PlannedFault same = other.next();
        QCOMPARE(same.name, fault.name);
        QCOMPARE(same.pause, fault.pause);
        QCOMPARE(same.length, fault.length);
        QVERIFY(fault.restarts || fault.expires || !fault.spec.empty());
        differs = different.next().name != fault.name || differs;
    }
    QVERIFY(differs);
}

void TestSoakJudge::aDayHasOneNight()
{
    const double day = 86400;
    FaultPlan plan(7, 1, day);
    QSet<QString> names;
    double began = 0;
    int nights = 0;
    for (double passed = 0; passed < 3 * day;) {
        const PlannedFault fault = plan.next();
        names.insert(QString::fromStdString(fault.name));
        passed += fault.pause;
        if (fault.name == "night") {
            ++nights;
            began = passed;
            QVERIFY(fault.restarts);
            QCOMPARE(fault.length, 8 * 3600.0);
        }
        passed += fault.length;
    }
    QCOMPARE(nights, 1);
    // A fault of before may take some seconds of it.
    QVERIFY(began >= 36000 && began < 36016);
    QVERIFY(names.contains(QStringLiteral("another certificate")));
    QVERIFY(names.contains(QStringLiteral("TLS sessions lost")));
    QCOMPARE(names.size(), 15);
}

QTEST_GUILESS_MAIN(TestSoakJudge)
#include "tst_soak_judge.moc"
