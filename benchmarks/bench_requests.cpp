// A host's reads and writes, from the emission of the request to the answer.

#include "benchmarks/comparison.h"
#include "benchmarks/fixed_answer.h"
#include "benchmarks/host_caller.h"
#include "benchmarks/sample_values.h"
#include "benchmarks/served_driver.h"

#include <QCoreApplication>

namespace {

const double read_target = 2.0;
const double write_target = 2.5;
const double forwarding_target = 1.5;
const double search_target = 1.0;
const int few_items = 10;

/// A driver and a peer with a host each.
struct Pair
{
    Pair(int count, const bench::SampleValue& value, const QByteArray& answer, bool peer_searches)
        : ours(count, value.type, value.data_length),
          peer(answer, peer_searches ? ours.names() : std::vector<QString>()),
          ours_host(ours.driver()),
          peer_host(&peer)
    {}

    bench::ServedDriver ours;
    bench::FixedAnswer peer;
    bench::HostCaller ours_host;
    bench::HostCaller peer_host;
};

/// What a driver that serves one item of the type answers.
QByteArray answerFor(const bench::SampleValue& value)
{
    bench::ServedDriver driver(1, value.type, value.data_length);
    return bench::HostCaller(driver.driver()).read(driver.nextAddress());
}

void compareRead(const bench::SampleValue& value, int count, double target, bool peer_searches)
{
    const std::string name = "read of " + std::string(value.type) + ", " + std::to_string(count) +
                             (count == 1 ? " item" : " items") +
                             (peer_searches ? ", peer searches" : "");
    // They live as long as the program, as a host's drivers do.
    Pair* pair = new Pair(count, value, answerFor(value), peer_searches);
    bench::compare(
        {name, target, double(count)},
        [pair] { return pair->ours_host.read(pair->ours.nextAddress()); },
        [pair] { return pair->peer_host.read(pair->ours.nextAddress()); });
}

/// One half of a pair of writes; what is on its way to the other thread never grows without limit.
void measureWrites(const bench::Row& row, const char* half, bench::HostCaller* host,
                   bench::ServedDriver* addresses, const QByteArray& bytes,
                   bench::WriteDrain* drain)
{
    benchmark::RegisterBenchmark((row.name + '/' + half).c_str(), [=](benchmark::State& state) {
        for (auto _ : state) {
            benchmark::DoNotOptimize(host->write(addresses->nextAddress(), bytes));
            if (drain && drain->isDue()) {
                state.PauseTiming();
                drain->empty();
                state.ResumeTiming();
            }
        }
        if (drain)
            drain->empty();
        bench::describe(&state, row);
    });
}

void compareWrite(const bench::SampleValue& value, int count, double target,
                  bench::WriteDrain::ClientThread thread)
{
    const char* suffix = thread == bench::WriteDrain::sleeping ? ", wakes the client" : "";
    const bench::Row row = {"write of " + std::string(value.type) + ", " + std::to_string(count) +
                                " items" + suffix,
                            target, double(count)};
    Pair* pair = new Pair(count, value, value.bytes, false);
    bench::WriteDrain* drain = new bench::WriteDrain(pair->ours.driver(), thread);
    bench::requireEqual(pair->ours_host.write(pair->ours.nextAddress(), value.bytes) ==
                            pair->peer_host.write(pair->ours.nextAddress(), value.bytes),
                        row);
    measureWrites(row, "ours", &pair->ours_host, &pair->ours, value.bytes, drain);
    measureWrites(row, "peer", &pair->peer_host, &pair->ours, value.bytes, nullptr);
}

/// Beside a peer that hands something to another thread as well, which no forwarded write can do
/// without.
void compareForwarding(const bench::SampleValue& value, bench::WriteDrain::ClientThread thread,
                       const char* name)
{
    const bench::Row row = {name, forwarding_target, 0};
    Pair* pair = new Pair(few_items, value, value.bytes, false);
    bench::ForwardingAnswer* peer = new bench::ForwardingAnswer;
    bench::HostCaller* peer_host = new bench::HostCaller(peer);
    measureWrites(row, "ours", &pair->ours_host, &pair->ours, value.bytes,
                  new bench::WriteDrain(pair->ours.driver(), thread));
    measureWrites(row, "peer", peer_host, &pair->ours, value.bytes,
                  new bench::WriteDrain(peer, thread));
}

void ignoreMessage(QtMsgType, const QMessageLogContext&, const QString&) {}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    qInstallMessageHandler(ignoreMessage);
    for (const bench::SampleValue& value : bench::sampleValues())
        compareRead(value, few_items, read_target, false);
    const bench::SampleValue& usual = bench::sampleValues().at(2);
    for (int count : {1, 100, 1000, 10000})
        compareRead(usual, count, 0, false);
    for (int count : {10, 100, 1000, 10000})
        compareRead(usual, count, count >= 1000 ? search_target : 0, true);
    for (const bench::SampleValue& value : bench::sampleValues())
        compareWrite(value, few_items, write_target, bench::WriteDrain::busy);
    compareWrite(usual, 1000, write_target, bench::WriteDrain::busy);
    compareWrite(usual, few_items, 0, bench::WriteDrain::sleeping);
    compareForwarding(usual, bench::WriteDrain::busy, "write, peer forwards to a busy thread");
    compareForwarding(usual, bench::WriteDrain::sleeping,
                      "write, peer forwards and wakes a thread");
    return bench::run(argc, argv);
}
