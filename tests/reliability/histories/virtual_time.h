#ifndef TESTS_RELIABILITY_HISTORIES_VIRTUAL_TIME_H
#define TESTS_RELIABILITY_HISTORIES_VIRTUAL_TIME_H

#include <QtGlobal>

#include <functional>

/// The library's clock: it stands still until somebody moves it, and a pause of the library's moves
/// it.
namespace virtual_time {

/// Milliseconds; what QElapsedTimer tells.
extern qint64 now;
/// What else happens while a pause goes by; told after each millisecond.
extern std::function<void()> on_tick;

/// Lets so much time go by.
void pass(qint64 milliseconds);

} // namespace virtual_time

#endif
