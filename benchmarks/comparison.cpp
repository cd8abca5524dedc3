#include "benchmarks/comparison.h"

#include <cstdio>
#include <cstdlib>

namespace bench {

void requireEqual(bool equal, const Row& row)
{
    if (equal)
        return;
    std::fprintf(stderr, "%s: ours and peer do not give the same\n", row.name.c_str());
    std::exit(2);
}

void describe(benchmark::State* state, const Row& row)
{
    if (row.target > 0)
        state->counters["target"] = row.target;
    if (row.size > 0)
        state->counters["size"] = row.size;
}

int run(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

} // namespace bench
