#include "tests/reliability/soak/fault_plan.h"

#include <array>

namespace {

struct Kind
{
    const char* name;
    const char* spec;
    bool restarts;
    bool expires;
    double least; ///< Seconds.
    double most;
};

const std::array<Kind, 11> kinds{{
    {"refused connections", "refuse", false, false, 2, 12},
    {"service restarts", "", true, false, 1, 8},
    {"tokens expire", "", false, true, 0, 0},
    {"slow replies", "delay:ms=300,path=value", false, false, 3, 15},
    {"very slow replies", "delay:ms=2500", false, false, 5, 15},
    {"dripping replies", "drip:ms=3", false, false, 3, 10},
    {"no replies", "hang", false, false, 2, 12},
    {"resets", "reset", false, false, 1, 6},
    {"cut replies", "truncated", false, false, 1, 4},
    {"HTTP errors", "http500", false, false, 1, 6},
    {"refused writes", "errorcode:code=9,path=write", false, false, 1, 6},
}};

} // namespace

FaultPlan::FaultPlan(unsigned seed, double pace) : random_(seed), pace_(pace) {}

/// The standard's distributions differ between libraries, its generator does not.
double FaultPlan::between(double least, double most)
{
    const double share = double(random_()) / double(std::mt19937::max());
    return least + share * (most - least);
}

PlannedFault FaultPlan::next()
{
    const Kind& kind = kinds[random_() % kinds.size()];
    PlannedFault fault;
    fault.name = kind.name;
    fault.spec = kind.spec;
    fault.restarts = kind.restarts;
    fault.expires = kind.expires;
    fault.pause = between(4, 16) / pace_;
    fault.length = between(kind.least, kind.most) / pace_;
    return fault;
}
