// The plug-in in a host for as long as one likes, at a service that goes wrong at random; at the
// end a verdict on what the process holds. scripts/soak builds it, runs it and draws the plot.
#include "tests/reliability/soak/judge.h"
#include "tests/reliability/soak/soak_run.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QEvent>

#include <cstdio>
#include <cstring>

namespace {

const double long_enough = 180; ///< Seconds that give enough samples after the warm-up.

/// Sees the events of all threads, and so the client's timers in the client's own thread, where
/// they may be counted.
class Application : public QCoreApplication
{
public:
    using QCoreApplication::QCoreApplication;

    bool notify(QObject* receiver, QEvent* event) override
    {
        const QObject* const owner = event->type() == QEvent::Timer ? receiver->parent() : nullptr;
        if (owner && std::strcmp(owner->metaObject()->className(), "TovikIot") == 0)
            soak_timer_count = owner->findChildren<QTimer*>().size();
        return QCoreApplication::notify(receiver, event);
    }
};

void ignore(QtMsgType, const QMessageLogContext&, const QString&) {}

void row(const char* name, const Rise& rise)
{
    std::printf("%-22s %10.0f %10.0f %10.0f\n", name, rise.from, rise.to, rise.most);
}

void print(const SoakRun& run, const SoakVerdict& verdict)
{
    const SoakLoad& load = run.load();
    std::printf("%d faults, %d reconnects after the warm-up of %.0f s\n", load.faults,
                verdict.reconnects, verdict.warm_up_seconds);
    std::printf("%d whole cycles, %u values read, the longest cycle %.1f s\n", load.cycles,
                load.values, load.longest_cycle_ms / 1000.0);
    std::printf("%lld host reads, the longest %.2f ms; %d writes; %lld not answered once\n",
                static_cast<long long>(load.host_reads), load.longest_read_ms, load.writes,
                static_cast<long long>(load.unanswered));
    std::printf("closing took %.0f ms\n", load.close_ms);
    if (verdict.is_too_short)
        return;
    std::printf("\n%-22s %10s %10s %10s\n", "least of a quarter", "first", "last", "most ever");
    row("resident memory, KiB", verdict.resident_kib);
    row("heap in use, KiB", verdict.heap_kib);
    row("descriptors", verdict.descriptors);
    row("threads", verdict.threads);
    row("timers of the client", verdict.timers);
}

/// What was not done cannot have been survived.
std::vector<std::string> complaintsAbout(const SoakLoad& load)
{
    std::vector<std::string> complaints;
    if (load.cycles == 0)
        complaints.emplace_back("not one whole cycle");
    if (load.unanswered > 0)
        complaints.emplace_back("host requests that were not answered once and at once");
    return complaints;
}

int soak(const SoakPlan& plan)
{
    SoakRun run(plan);
    if (!run.run())
        return 2;
    const SoakVerdict verdict = judge(run.samples(), SoakCeilings());
    print(run, verdict);
    std::vector<std::string> complaints = complaintsAbout(run.load());
    complaints.insert(complaints.end(), verdict.complaints.begin(), verdict.complaints.end());
    for (const std::string& complaint : complaints)
        std::printf("TOO MUCH  %s\n", complaint.c_str());
    if (!complaints.empty()) {
        std::printf("Ceilings do not hold.\n");
        return 1;
    }
    if (!verdict.is_too_short) {
        std::printf("All ceilings hold.\n");
        return 0;
    }
    std::printf("Only the timers were judged, and they hold: too few samples to say what rises.\n");
    if (plan.seconds < long_enough)
        return 0;
    std::fprintf(stderr, "soak: the computer was too busy to take a sample each second; run again, "
                         "for longer\n");
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    qInstallMessageHandler(ignore);
    const Application application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Runs the plug-in under load and faults."));
    parser.addHelpOption();
    const QCommandLineOption minutes(QStringLiteral("minutes"), QStringLiteral("how long"),
                                     QStringLiteral("N"), QStringLiteral("10"));
    const QCommandLineOption seed(QStringLiteral("seed"), QStringLiteral("of the faults"),
                                  QStringLiteral("S"), QStringLiteral("1"));
    const QCommandLineOption items(QStringLiteral("items"), QStringLiteral("served items"),
                                   QStringLiteral("N"), QStringLiteral("200"));
    const QCommandLineOption pace(QStringLiteral("pace"),
                                  QStringLiteral("faults so many times faster"),
                                  QStringLiteral("N"), QStringLiteral("1"));
    const QCommandLineOption output(QStringLiteral("output"),
                                    QStringLiteral("samples and faults as lines of JSON"),
                                    QStringLiteral("FILE"));
    const QCommandLineOption day(
        QStringLiteral("day"), QStringLiteral("it is a day, with a night and tokens that expire"));
    parser.addOptions({minutes, seed, items, pace, output, day});
    parser.process(application);
    SoakPlan plan;
    plan.seconds = 60 * parser.value(minutes).toDouble();
    plan.seed = parser.value(seed).toUInt();
    plan.items = parser.value(items).toInt();
    plan.pace = parser.value(pace).toDouble();
    plan.output = parser.value(output);
    plan.is_day = parser.isSet(day);
    if (plan.seconds <= 0 || plan.items <= 0 || plan.pace <= 0) {
        std::fprintf(stderr, "soak: --minutes, --items and --pace take numbers above 0\n");
        return 2;
    }
    return soak(plan);
}
