#ifndef TESTS_SUPPORT_BOUND_PROCESS_H
#define TESTS_SUPPORT_BOUND_PROCESS_H

#include <QProcess>

/// A program that a test starts, and that goes with it, however the test ends. To be started by the
/// main thread: on Linux it ends with the thread that started it.
class BoundProcess : public QProcess
{
public:
    using QProcess::QProcess;
    /// Ends it by force if it still runs.
    ~BoundProcess() override;

    /// Milliseconds for what may take long on a busy machine: a minute, also where TOVIK_CLOCK
    /// makes time go by faster.
    static int patience();

    /// Waits for its end, with all the time that a busy machine may take.
    /// \return the exit code, or -1 if it does not end, or not by itself
    int waitForExitCode();
    void sendSignal(int number);

protected:
    void setupChildProcess() override;
};

#endif
