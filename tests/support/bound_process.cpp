#include "tests/support/bound_process.h"

#include <csignal>
#ifdef Q_OS_LINUX
#include <sys/prctl.h>
#endif

int BoundProcess::patience()
{
    return 60000 * qMax(1, qEnvironmentVariableIntValue("TOVIK_CLOCK"));
}

BoundProcess::~BoundProcess()
{
    if (state() == NotRunning)
        return;
    kill();
    waitForFinished(patience());
}

int BoundProcess::waitForExitCode()
{
    if (state() != NotRunning && !waitForFinished(patience()))
        return -1;
    return exitStatus() == NormalExit ? exitCode() : -1;
}

void BoundProcess::sendSignal(int number)
{
    ::kill(static_cast<pid_t>(processId()), number);
}

void BoundProcess::setupChildProcess()
{
#ifdef Q_OS_LINUX
    prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
}
