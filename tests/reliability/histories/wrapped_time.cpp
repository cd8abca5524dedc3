// What the linker gives the library in the place of a few of Qt's functions (--wrap): its clock is
// the one of virtual_time, and its client's thread has the stage's event dispatcher.
#include "tests/reliability/histories/stage.h"
#include "tests/reliability/histories/virtual_time.h"

#include <QElapsedTimer>
#include <QThread>
#include <QWaitCondition>

#include <cstring>

static_assert(sizeof(QElapsedTimer) == 2 * sizeof(qint64), "where the start is kept");

namespace virtual_time {

qint64 now = 0;
std::function<void()> on_tick;

void pass(qint64 milliseconds)
{
    for (; milliseconds > 0; --milliseconds) {
        ++now;
        if (on_tick)
            on_tick();
    }
}

} // namespace virtual_time

extern "C" {

void __real__ZN7QThread5startENS_8PriorityE(QThread* thread, QThread::Priority priority);

void __wrap__ZN7QThread5startENS_8PriorityE(QThread* thread, QThread::Priority priority)
{
    Stage::current()->prepare(thread);
    __real__ZN7QThread5startENS_8PriorityE(thread, priority);
}

void __wrap__ZN13QElapsedTimer5startEv(QElapsedTimer* timer)
{
    const qint64 start[] = {virtual_time::now, 0};
    std::memcpy(static_cast<void*>(timer), start, sizeof start);
}

qint64 __wrap__ZNK13QElapsedTimer7elapsedEv(const QElapsedTimer* timer)
{
    qint64 start = 0;
    std::memcpy(&start, static_cast<const void*>(timer), sizeof start);
    return virtual_time::now - start;
}

/// The library waits for nobody but the time.
bool __wrap__ZN14QWaitCondition4waitEP6QMutexm(QWaitCondition*, QMutex*, unsigned long milliseconds)
{
    virtual_time::pass(qint64(milliseconds));
    return false;
}
}
