#ifndef TOOLS_HOST_TERMINAL_DEBUG_LOG_H
#define TOOLS_HOST_TERMINAL_DEBUG_LOG_H

#include "tools/host/terminal/output.h"

#include <QMutex>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

namespace tovik_host::terminal {

/// Catches the debug lines of the driver library, which come through Qt and from any thread, and
/// keeps them off the program's own output. One may exist at a time.
class DebugLog
{
public:
    /// Takes over Qt's messages.
    DebugLog();
    /// Gives Qt's messages back.
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

} // namespace tovik_host::terminal

#endif
