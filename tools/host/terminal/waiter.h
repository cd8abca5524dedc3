#ifndef TOOLS_HOST_TERMINAL_WAITER_H
#define TOOLS_HOST_TERMINAL_WAITER_H

#include "tools/host/terminal/unix_signals.h"

#include <functional>

namespace tovik_host::terminal {

/// How a wait ended.
enum class Waited
{
    met,
    timed_out,
    interrupted
};

/// Runs the event loop until \a condition holds, which is asked every few milliseconds, until
/// \a milliseconds have passed, or until \a unix_signals ask the program to end.
Waited waitUntil(const UnixSignals& unix_signals, int milliseconds,
                 const std::function<bool()>& condition);

} // namespace tovik_host::terminal

#endif
