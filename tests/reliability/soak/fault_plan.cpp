#include "tests/reliability/soak/fault_plan.h"

#include <algorithm>
#include <array>
#include <limits>

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

const std::array<Kind, 14> kinds{{
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
    // Those of a day.
    {"another certificate", "wrong-host", false, false, 3, 15},
    {"an expired certificate", "expired", false, false, 3, 15},
    {"TLS sessions lost", "tickets-lost", false, false, 1, 2},
}};
const std::size_t kinds_without_day = 11;
const double never = std::numeric_limits<double>::infinity();

} // namespace

FaultPlan::FaultPlan(unsigned seed, double pace, double day_seconds)
    : random_(seed),
      pace_(pace),
      day_seconds_(day_seconds),
      night_begins_(day_seconds > 0 ? day_seconds * 10 / 24 : never)
{}

/// The standard's distributions differ between libraries, its generator does not.
double FaultPlan::between(double least, double most)
{
    const double share = double(random_()) / double(std::mt19937::max());
    return least + share * (most - least);
}

PlannedFault FaultPlan::next()
{
    const Kind& kind = kinds[random_() % (day_seconds_ > 0 ? kinds.size() : kinds_without_day)];
    PlannedFault fault;
    fault.name = kind.name;
    fault.spec = kind.spec;
    fault.restarts = kind.restarts;
    fault.expires = kind.expires;
    fault.pause = between(4, 16) / pace_;
    fault.length = between(kind.least, kind.most) / pace_;
    if (passed_ + fault.pause >= night_begins_) {
        const double pause = std::max(0.0, night_begins_ - passed_);
        fault = {"night", {}, true, false, pause, day_seconds_ / 3};
        night_begins_ = never;
    }
    passed_ += fault.pause + fault.length;
    return fault;
}
