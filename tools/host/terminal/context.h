#ifndef TOOLS_HOST_TERMINAL_CONTEXT_H
#define TOOLS_HOST_TERMINAL_CONTEXT_H

#include "tools/host/terminal/debug_log.h"
#include "tools/host/terminal/output.h"
#include "tools/host/terminal/unix_signals.h"

#include <unistd.h>

namespace tovik_host::terminal {

/// Results on the standard output, messages on the standard error.
struct Streams
{
    void complain(const QString& problem);
    void complain(const QString& subject, const QString& problem);
    void warn(const QString& text);
    /// The exit code of a command that ends with \a code and has printed its result: if that could
    /// not be written, it says so. A reader that has gone has had all that it wanted.
    int codeAfterWriting(int code);

    Output out{STDOUT_FILENO};
    Output err{STDERR_FILENO};
};

/// What a command works with that waits for something.
struct Context : Streams
{
    DebugLog log;
    UnixSignals unix_signals;
};

} // namespace tovik_host::terminal

#endif
