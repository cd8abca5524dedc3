// One burst of writes: a host in this process, the built library, and a service that takes its
// time. Prints what became of it as one JSON object; scripts/write-bursts makes a table of many.
// Exit code: 0 when each write has arrived once and in order, 1 when not, 2 when it could not be
// measured.
#include "tests/reliability/bursts/write_log.h"
#include "tests/reliability/process_facts.h"
#include "tests/support/cloud_process.h"
#include "tests/system/plugin.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSet>
#include <QTemporaryDir>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <thread>

namespace {

const int connect_patience = 30000;

std::atomic<int> done{0};
std::atomic<int> failed{0};

void countResults(QtMsgType, const QMessageLogContext&, const QString& text)
{
    if (text == QLatin1String("[TOVIK IoT] Write value done!"))
        ++done;
    else if (text == QLatin1String("[TOVIK IoT] Write value fail!"))
        ++failed;
}

/// Looks at the process every few milliseconds, and keeps the most it has seen.
class Watcher
{
public:
    Watcher() : thread_([this] { run(); }) {}
    ~Watcher() { stop(); }

    const ProcessFacts& stop()
    {
        ended_ = true;
        if (thread_.joinable())
            thread_.join();
        return most_;
    }

private:
    void run()
    {
        while (!ended_) {
            const ProcessFacts now = processFacts();
            most_.resident_kib = std::max(most_.resident_kib, now.resident_kib);
            most_.descriptors = std::max(most_.descriptors, now.descriptors);
            most_.threads = std::max(most_.threads, now.threads);
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }

    std::atomic<bool> ended_{false};
    ProcessFacts most_;
    std::thread thread_;
};

struct HostView
{
    double longest_read_ms = 0;
    QSet<int> statuses;
    double last_s = 0; ///< From the first write to the last result.
};

void readOnce(PluginDriver* host, HostView* view)
{
    QElapsedTimer timer;
    timer.start();
    const DriverAnswer answer = host->read("Setpoint");
    view->longest_read_ms = std::max(view->longest_read_ms, double(timer.nsecsElapsed()) / 1e6);
    view->statuses.insert(answer.status);
}

bool waitForConnection(PluginDriver* host)
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < connect_patience) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        if (host->read("Setpoint").bytes == QByteArray::fromHex("4100"))
            return true;
    }
    return false;
}

/// Emits all writes at once, then reads on as hosts do until every write has its result, or none
/// has come for \a patience seconds.
HostView burst(PluginDriver* host, int writes, int patience)
{
    HostView view;
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < writes; ++i)
        view.statuses.insert(host->write("Text", WriteLog::text(i)).status);
    QElapsedTimer quiet;
    quiet.start();
    int results = 0;
    while (results < writes && quiet.elapsed() < 1000 * patience) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 2);
        readOnce(host, &view);
        const int now = done + failed;
        if (now != results) {
            results = now;
            view.last_s = double(timer.elapsed()) / 1000;
            quiet.restart();
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return view;
}

void print(int writes, int delay, const HostView& view, const ProcessFacts& before,
           const ProcessFacts& most, const WriteLog& log, double close_ms)
{
    const auto hundredths = [](double number) { return std::round(number * 100) / 100; };
    nlohmann::ordered_json line = {{"writes", writes},
                                   {"delay_ms", delay},
                                   {"done", done.load()},
                                   {"failed", failed.load()},
                                   {"arrived", log.arrived},
                                   {"repeated", log.repeated},
                                   {"out_of_order", log.out_of_order},
                                   {"seconds", hundredths(view.last_s)},
                                   {"descriptors", most.descriptors},
                                   {"threads", most.threads},
                                   {"more_kib", most.resident_kib - before.resident_kib},
                                   {"longest_read_ms", hundredths(view.longest_read_ms)},
                                   {"close_ms", std::round(close_ms)},
                                   {"statuses", nlohmann::json::array()}};
    for (const int status : view.statuses) {
        char text[16];
        std::snprintf(text, sizeof text, "0x%08X", unsigned(status));
        line["statuses"].push_back(text);
    }
    std::printf("%s\n", line.dump().c_str());
}

int run(int writes, int delay, int patience)
{
    const QTemporaryDir folder;
    const QString log_file = folder.filePath(QStringLiteral("requests.log"));
    CloudProcess cloud;
    if (!cloud.start({QStringLiteral("--verbose"), QStringLiteral("--log"), log_file})) {
        std::fprintf(stderr, "write_bursts: the service does not start\n");
        return 2;
    }
    if (delay > 0)
        cloud.addFault("delay:path=write,ms=" + std::to_string(delay));
    PluginDriver host;
    host.use(cloud);
    host.serve("Setpoint", "boiler-setpoint", "16Bit-INT");
    host.serve("Text", "hall-display", "String");
    HostSide::setErrorHandling(&host.link, 2, 1, false, false);
    host.start();
    if (!waitForConnection(&host)) {
        std::fprintf(stderr, "write_bursts: the driver has not connected within %d s\n",
                     connect_patience / 1000);
        return 2;
    }
    const ProcessFacts before = processFacts();
    Watcher watcher;
    const HostView view = burst(&host, writes, patience);
    const ProcessFacts most = watcher.stop();
    QElapsedTimer timer;
    timer.start();
    host.close();
    const double close_ms = double(timer.nsecsElapsed()) / 1e6;
    cloud.stop(SIGTERM);
    const WriteLog log = WriteLog::read(log_file);
    print(writes, delay, view, before, most, log, close_ms);
    return done == writes && log.arrived == writes && log.repeated == 0 && log.out_of_order == 0
               ? 0
               : 1;
}

} // namespace

int main(int argc, char** argv)
{
    qInstallMessageHandler(countResults);
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Measures one burst of writes."));
    parser.addHelpOption();
    const QCommandLineOption writes(QStringLiteral("writes"), QStringLiteral("writes at once"),
                                    QStringLiteral("N"), QStringLiteral("10"));
    const QCommandLineOption delay(QStringLiteral("delay"),
                                   QStringLiteral("what the service takes for each"),
                                   QStringLiteral("MS"), QStringLiteral("0"));
    const QCommandLineOption patience(QStringLiteral("patience"),
                                      QStringLiteral("give up when no result has come for so long"),
                                      QStringLiteral("SECONDS"), QStringLiteral("60"));
    parser.addOptions({writes, delay, patience});
    parser.process(application);
    return run(parser.value(writes).toInt(), parser.value(delay).toInt(),
               parser.value(patience).toInt());
}
