#ifndef TOOLS_HOST_TERMINAL_CONTEXT_H
#define TOOLS_HOST_TERMINAL_CONTEXT_H

#include "tools/host/terminal/output.h"
#include "tools/host/terminal/unix_signals.h"

#include <QMutex>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>
#include <unistd.h>

namespace tovik_host::terminal {

/// Catches the debug lines of the driver library, which come through Qt and from any thread, and
/// keeps them off the program's own output. One may exist at a time.
class DebugLog
{
public:
    DebugLog();
    ~DebugLog();
    Q_DISABLE_COPY(DebugLog)

    /// Appends every further line, with its time, to the file \a path unless that is empty, and
    /// \a echoes it to the standard error. Throws UsageError.
    void start(const QString& path, bool echoes);
    /// The latest lines, oldest first; a line that came several times in a row stands there once,
    /// with their number.
    QStringList lastLines(int count) const;
    /// Keeps one line. Thread-safe.
    void take(const QString& line);

private:
    struct KeptLine
    {
        QString text;
        int count;
    };

    mutable QMutex lock_;
    QVector<KeptLine> lines_;
    std::optional<LineOutput> file_;
    bool echoes_ = false;
};

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
