// How many items several drivers in one process read in a second, each in a thread of its own as a
// driver's client is. For orientation: nothing to compare it with.
#include "benchmarks/network/delay_line.h"
#include "benchmarks/network/monitor.h"
#include "benchmarks/network/samples.h"
#include "benchmarks/network/tls_service.h"

#include <QCoreApplication>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>
#include <thread>
#include <vector>

namespace {

void ignore(QtMsgType, const QMessageLogContext&, const QString&) {}

/// Items read in a second by so many drivers together.
double itemsPerSecond(const std::string& url, int drivers, std::chrono::milliseconds time)
{
    std::atomic<int> read(0);
    std::atomic<bool> is_over(false);
    std::vector<std::thread> threads;
    for (int i = 0; i < drivers; ++i) {
        threads.emplace_back([&] {
            bench::Monitor monitor(url, 1);
            while (!is_over && monitor.cycle())
                ++read;
        });
    }
    // The log-ins do not count.
    std::this_thread::sleep_for(time / 4);
    const int before = read;
    const auto begin = std::chrono::steady_clock::now();
    std::this_thread::sleep_for(time);
    const int after = read;
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
    is_over = true;
    for (std::thread& thread : threads)
        thread.join();
    return (after - before) / seconds.count();
}

} // namespace

/// With a delay it needs root: it makes network namespaces.
int main(int argc, char** argv)
{
    const bench::Options options = bench::readOptions(argc, argv);
    qInstallMessageHandler(ignore);
    const bench::TlsService service({false, true}, options.delay > 0);
    std::unique_ptr<bench::DelayLine> line;
    if (options.delay > 0) {
        bench::leaveNetwork();
        line = std::make_unique<bench::DelayLine>(service.process(), 0, options.delay);
    }
    const QCoreApplication application(argc, argv);
    const std::string url = service.url(line ? line->farAddress() : "127.0.0.1");
    const std::string way =
        line ? ", " + std::to_string(2 * options.delay) + " ms there and back" : "";
    bench::Rows rows;
    for (const int drivers : {1, 2, 4, 8}) {
        const std::string name = "drivers: " + std::to_string(drivers) + way;
        std::fprintf(stderr, "%s\n", name.c_str());
        rows.addValue(
            name,
            itemsPerSecond(url, drivers, std::chrono::milliseconds(options.is_quick ? 2000 : 6000)),
            "items/s", drivers);
    }
    rows.print();
    return 0;
}
