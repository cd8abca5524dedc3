// A host with more to do than it can: many served items, a thousand reads a second with bursts of
// writes, and a thread that is blocked while the client polls. Prints what it measures. Exit code:
// 0 when every request was answered at once, the writes arrived once and in order and memory
// stayed, 1 when not, 2 when it could not be measured.
#include "tests/reliability/bursts/write_log.h"
#include "tests/reliability/process_facts.h"
#include "tests/support/cloud_process.h"
#include "tests/system/plugin.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <thread>
#include <vector>

namespace {

const int patience = 600000; // ms
const int burst_size = 20;
const qint64 allowed_kib = 8 * 1024; // beyond what was held before, at any number of items

std::atomic<int> results{0};

void countResults(QtMsgType, const QMessageLogContext&, const QString& text)
{
    if (text.startsWith(QLatin1String("[TOVIK IoT] Write value ")))
        ++results;
}

/// The item that is read, and its value when the driver has connected.
const char* const read_item = "Setpoint";

class Overload
{
public:
    Overload(PluginDriver* host, int items) : host_(host)
    {
        host_->serve(read_item, "boiler-setpoint", "16Bit-INT");
        host_->serve("Text", "hall-display", "String");
        for (int i = 2; i < items; ++i)
            host_->serve(qPrintable(QStringLiteral("item %1").arg(i)), "boiler-setpoint",
                         "16Bit-INT");
        HostSide::setErrorHandling(&host_->link, 2, 1, false, false);
    }

    bool waitForValue()
    {
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < patience) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
            const QVariantList ages = host_->driver->property("item_ages").toList();
            if (ages.last().toInt() >= 0)
                return true;
        }
        return false;
    }

    /// Milliseconds without an event of the host's thread; then it takes what has come.
    void block(int milliseconds)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        QElapsedTimer timer;
        timer.start();
        QCoreApplication::processEvents();
        longest_catch_up_ms_ = double(timer.nsecsElapsed()) / 1e6;
    }

    /// A thousand reads a second, and a burst of writes in each.
    void work(int seconds)
    {
        QElapsedTimer timer;
        timer.start();
        for (int turn = 0; turn < 1000 * seconds; ++turn) {
            if (turn % 1000 == 0)
                burst();
            read();
            QCoreApplication::processEvents();
            const qint64 early = turn - timer.elapsed();
            if (early > 0)
                std::this_thread::sleep_for(std::chrono::milliseconds(early));
        }
        seconds_ = double(timer.elapsed()) / 1000;
        timer.restart();
        while (results < writes_ && timer.elapsed() < patience)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }

    /// Of so many in a thousand the slowest read.
    double readMilliseconds(double share)
    {
        std::sort(reads_.begin(), reads_.end());
        const std::size_t place = std::size_t(share * double(reads_.size()));
        return double(reads_[std::min(place, reads_.size() - 1)]) / 1e6;
    }

    int reads() const { return int(reads_.size()); }
    int writes() const { return writes_; }
    int wrongAnswers() const { return wrong_; }
    double seconds() const { return seconds_; }
    double longestCatchUp() const { return longest_catch_up_ms_; }

private:
    void read()
    {
        QElapsedTimer timer;
        timer.start();
        const DriverAnswer answer = host_->read(read_item);
        reads_.push_back(timer.nsecsElapsed());
        wrong_ += answer.status == 0 && answer.bytes.size() == 2 ? 0 : 1;
    }

    void burst()
    {
        for (int i = 0; i < burst_size; ++i)
            wrong_ += host_->write("Text", WriteLog::text(writes_++)).status == 0 ? 0 : 1;
    }

    PluginDriver* host_;
    std::vector<qint64> reads_; ///< Nanoseconds.
    int writes_ = 0;
    int wrong_ = 0;
    double seconds_ = 0;
    double longest_catch_up_ms_ = 0;
};

int fail(const char* text)
{
    std::fprintf(stderr, "overload: %s\n", text);
    return 2;
}

int run(int items, int blocked_ms, int seconds)
{
    const QTemporaryDir folder;
    const QString log_file = folder.filePath(QStringLiteral("requests.log"));
    CloudProcess cloud;
    if (!cloud.start({QStringLiteral("--verbose"), QStringLiteral("--log"), log_file}))
        return fail("the service does not start");
    PluginDriver host;
    host.use(cloud);
    Overload overload(&host, items);
    host.start();
    if (!overload.waitForValue())
        return fail("no cycle has ended in time");
    const ProcessFacts before = processFacts();
    overload.block(blocked_ms);
    const ProcessFacts blocked = processFacts();
    overload.work(seconds);
    const ProcessFacts after = processFacts();
    host.close();
    cloud.stop(SIGTERM);
    const WriteLog log = WriteLog::read(log_file);
    std::printf(
        "%d items, blocked for %d ms: heap %+lld KiB, caught up in %.1f ms\n"
        "%d reads in %.1f s beside %d writes: half within %.4f ms, 99.9 %% within %.3f ms, all "
        "within %.2f ms\n"
        "writes: %d arrived, %d repeated, %d out of order; heap %+lld KiB; wrong answers: %d\n",
        items, blocked_ms, (long long)(blocked.heap_kib - before.heap_kib),
        overload.longestCatchUp(), overload.reads(), overload.seconds(), overload.writes(),
        overload.readMilliseconds(0.5), overload.readMilliseconds(0.999),
        overload.readMilliseconds(1), log.arrived, log.repeated, log.out_of_order,
        (long long)(after.heap_kib - before.heap_kib), overload.wrongAnswers());
    const bool stayed = blocked.heap_kib - before.heap_kib < allowed_kib &&
                        after.heap_kib - before.heap_kib < allowed_kib;
    const bool arrived =
        log.arrived == overload.writes() && log.repeated == 0 && log.out_of_order == 0;
    return stayed && arrived && overload.wrongAnswers() == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    qInstallMessageHandler(countResults);
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption items(QStringLiteral("items"), QStringLiteral("served items"),
                                   QStringLiteral("N"), QStringLiteral("10000"));
    const QCommandLineOption blocked(QStringLiteral("blocked"),
                                     QStringLiteral("how long the host's thread stands still"),
                                     QStringLiteral("MS"), QStringLiteral("10000"));
    const QCommandLineOption seconds(QStringLiteral("seconds"), QStringLiteral("how long it reads"),
                                     QStringLiteral("N"), QStringLiteral("60"));
    parser.addOptions({items, blocked, seconds});
    parser.process(application);
    return run(std::max(2, parser.value(items).toInt()), parser.value(blocked).toInt(),
               std::max(1, parser.value(seconds).toInt()));
}
