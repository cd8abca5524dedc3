#ifndef TESTS_RELIABILITY_HISTORIES_DRAW_H
#define TESTS_RELIABILITY_HISTORIES_DRAW_H

#include "tests/reliability/histories/history.h"

#include <random>

class Model;

/// \file
/// Draws what happens, with a liking for what can happen now.
namespace draw {

/// What a history has more of, and less.
struct Mood
{
    int reply;     ///< How likely the service answers.
    int good;      ///< Of so many answers all but one are good.
    int timer;     ///< How likely timers go off.
    int most_once; ///< The most writes at once.
    int host;      ///< How likely the host takes what was sent to it.
};

Mood mood(std::mt19937_64* random);
/// A history without events.
History setup(std::mt19937_64* random);
/// How many events it gets.
int length(std::mt19937_64* random);
/// What happens next.
Event event(std::mt19937_64* random, const Mood& mood, const Model& model);

} // namespace draw

#endif
