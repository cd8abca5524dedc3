#ifndef TESTS_SUPPORT_BOUND_PROCESS_H
#define TESTS_SUPPORT_BOUND_PROCESS_H

#include <QProcess>

#ifdef Q_OS_LINUX
#include <csignal>
#include <sys/prctl.h>
#endif

/// A process that goes with the one that started it, however that ends. To be started by the main
/// thread: on Linux it ends with the thread that started it.
class BoundProcess : public QProcess
{
public:
    using QProcess::QProcess;

protected:
    void setupChildProcess() override
    {
#ifdef Q_OS_LINUX
        prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
    }
};

#endif
