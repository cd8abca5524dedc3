#ifndef TESTS_RELIABILITY_SOAK_JUDGE_H
#define TESTS_RELIABILITY_SOAK_JUDGE_H

#include "tests/reliability/process_facts.h"

#include <string>
#include <vector>

/// What a soak looks at once a second.
struct SoakSample
{
    double seconds = 0; ///< Since the start.
    ProcessFacts facts;
    bool is_polling = true; ///< The client has no failure to get over.
    int timers = 0;         ///< Of the client.
    int reconnects = 0;     ///< Connections that were made after the first one.
};

/// What may stay behind of a run. None of it depends on how fast the machine is.
struct SoakCeilings
{
    /// The client itself: what runs at rest, and 16 writes, a read and two connects at once.
    int threads = 24;
    /// Two for each request on its way, and those of the process itself.
    int descriptors = 64;
    /// What stays of a reconnect by design is a QTimer with its two connections, 671 bytes, of the
    /// latest hundred reconnects.
    double kib_per_reconnect = 0.75;
    int kept_timers = 100;
    /// Free blocks that lie between used ones come and go; a leak passes any constant in time.
    double heap_slack_kib = 256;
    double resident_slack_kib = 4096;
};

/// How a quantity has changed after the warm-up. Requests come and go, so what matters is what is
/// left between them: the least of a stretch of time, here of the first and the last quarter. A
/// client whose service is away has fewer descriptors and threads than any that polls; those are
/// compared among the samples of one that polls.
struct Rise
{
    double from = 0;
    double to = 0;
    double most = 0;

    double by() const { return to - from; }
};

struct SoakVerdict
{
    double warm_up_seconds = 0;
    bool is_too_short = false; ///< For saying what rises; nothing below is known then.
    int reconnects = 0;        ///< Between the middle of the first quarter and that of the last.
    Rise resident_kib;
    Rise heap_kib;
    Rise descriptors;
    Rise threads;
    Rise timers;
    std::vector<std::string> complaints; ///< What was too much, with figures; empty if nothing.
};

/// Judges a run. The first fifth, at most five minutes, is the warm-up. With less than two minutes
/// after it, a quarter may be without a moment between two requests: then only the timers are
/// judged.
SoakVerdict judge(const std::vector<SoakSample>& all, const SoakCeilings& ceilings);

#endif
