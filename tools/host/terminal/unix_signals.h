#ifndef TOOLS_HOST_TERMINAL_UNIX_SIGNALS_H
#define TOOLS_HOST_TERMINAL_UNIX_SIGNALS_H

#include <QElapsedTimer>
#include <QObject>

#include <array>
#include <functional>

class QSocketNotifier;

namespace tovik_host::terminal {

/// Brings the process's signals into the event loop. One may exist at a time.
class UnixSignals : public QObject
{
    Q_OBJECT

public:
    /// Starts to catch interrupt, termination, hang-up and the terminal's change of size, and to
    /// ignore a reader that has gone.
    UnixSignals();
    /// Gives the signals their default meaning back.
    ~UnixSignals() override;

    bool endRequested() const { return end_requested_; }

Q_SIGNALS:
    void endAsked();
    void terminalResized();

private Q_SLOTS:
    void onReadable();

private:
    std::array<int, 2> pipe_ = {-1, -1};
    QSocketNotifier* notifier_ = nullptr;
    bool end_requested_ = false;
};

class Stopwatch
{
public:
    Stopwatch() { elapsed_.start(); }

    int milliseconds() const { return int(elapsed_.elapsed()); }
    double seconds() const { return double(elapsed_.nsecsElapsed()) / 1e9; }

private:
    QElapsedTimer elapsed_;
};

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
