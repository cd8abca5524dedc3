#ifndef BENCHMARKS_COMPARISON_H
#define BENCHMARKS_COMPARISON_H

#include <benchmark/benchmark.h>

#include <string>

/// \file
/// Pairs of Google benchmarks: "NAME/ours" and "NAME/peer", measured in one process and one run.
namespace bench {

/// What a pair is called and what is demanded of it.
struct Row
{
    std::string name;
    double target; ///< The most that ours may take, as a multiple of the peer; 0: no demand.
    double size;   ///< Items or bytes, for the plots; 0: not plotted over a size.
};

/// Ends the program, saying which row is wrong, unless \a equal.
void requireEqual(bool equal, const Row& row);

/// Gives a measurement what the table and the plots need to know about its row.
void describe(benchmark::State* state, const Row& row);

/// Registers one half of a pair, whose body is \a work; what it returns is computed every time.
template <typename Work>
void measure(const Row& row, const char* half, Work work)
{
    const std::string name = row.name + '/' + half;
    benchmark::RegisterBenchmark(name.c_str(), [row, work](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(work());
        describe(&state, row);
    });
}

/// Registers a pair whose results must be equal, and are compared before anything is measured.
template <typename Ours, typename Peer>
void compare(const Row& row, Ours ours, Peer peer)
{
    requireEqual(ours() == peer(), row);
    measure(row, "ours", ours);
    measure(row, "peer", peer);
}

/// Runs what is registered, with Google Benchmark's own options; the program's exit code.
int run(int argc, char** argv);

} // namespace bench

#endif
