#ifndef TESTS_RELIABILITY_HISTORIES_PLAY_H
#define TESTS_RELIABILITY_HISTORIES_PLAY_H

#include "tests/reliability/histories/history.h"

#include <QString>

#include <cstdint>
#include <random>
#include <unordered_set>

/// What the histories so far have been through, as the model tells it apart.
struct Coverage
{
    std::unordered_set<std::uint64_t> states;
    std::unordered_set<std::uint64_t> transitions;
    qint64 events = 0;
};

namespace play {

/// Plays a history with library and model side by side. At its end the host reads every item,
/// closes the driver and reads again. \return what differs first, in words; empty when nothing does
QString difference(const History& history, Coverage* coverage = nullptr);

/// Draws a history and plays it; \a history receives as much of it as was played.
QString drawnDifference(std::mt19937_64* random, History* history, Coverage* coverage);

/// The shortest history found that still differs.
History shrunk(const History& history);

/// As a row of the test, from its text.
QString row(const QString& history);

} // namespace play

#endif
