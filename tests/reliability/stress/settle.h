#ifndef TESTS_RELIABILITY_STRESS_SETTLE_H
#define TESTS_RELIABILITY_STRESS_SETTLE_H

#include "tests/reliability/process_facts.h"

/// Whether a process holds no more threads and descriptors than \a limit says.
bool isWithin(const ProcessFacts& facts, const ProcessFacts& limit);

/// Runs the event loop until this process is within \a limit, for ten seconds at most: the far ends
/// of connections, and threads that have just ended, take a moment to go.
/// \return what it held in the end.
ProcessFacts settleWithin(const ProcessFacts& limit);

/// Runs the event loop until threads and descriptors have not changed for half a second, for ten
/// seconds at most.
/// \return what it held in the end.
ProcessFacts settle();

#endif
