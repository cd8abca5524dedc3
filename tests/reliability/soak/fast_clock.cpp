// Preloaded, makes time go by as many times faster as TOVIK_CLOCK says for a process: its clocks
// run ahead, and what it waits for comes sooner. Processes of one computer that have it agree on
// the time. Clocks of processor time stay as they are.
#include <dlfcn.h>
#include <poll.h>
#include <pthread.h>
#include <sys/time.h>

#include <cstdint>
#include <cstdlib>
#include <ctime>

namespace {

using Nanoseconds = std::int64_t;

const Nanoseconds second = 1000000000;
const Nanoseconds millisecond = 1000000;

Nanoseconds speed()
{
    static const char* const text = std::getenv("TOVIK_CLOCK");
    static const int times = text ? std::atoi(text) : 1;
    return times > 0 ? times : 1;
}

template <typename Function>
Function real(Function, const char* name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

Nanoseconds nanoseconds(const timespec& time)
{
    return time.tv_sec * second + time.tv_nsec;
}

timespec timeOf(Nanoseconds time)
{
    timespec result{};
    result.tv_sec = time_t(time / second);
    result.tv_nsec = long(time % second);
    return result;
}

/// What an interval of the process is for everybody else.
timespec shortened(const timespec& time)
{
    return timeOf(nanoseconds(time) / speed());
}

Nanoseconds realNow(clockid_t clock)
{
    static const auto function = real(&::clock_gettime, "clock_gettime");
    timespec time{};
    function(clock, &time);
    return nanoseconds(time);
}

/// By how much a clock is ahead: the time since the computer was started, again and again.
Nanoseconds ahead()
{
    return (speed() - 1) * realNow(CLOCK_MONOTONIC);
}

bool isFast(clockid_t clock)
{
    return clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE || clock == CLOCK_MONOTONIC ||
           clock == CLOCK_MONOTONIC_COARSE || clock == CLOCK_MONOTONIC_RAW ||
           clock == CLOCK_BOOTTIME;
}

Nanoseconds now(clockid_t clock)
{
    return realNow(clock) + (isFast(clock) ? ahead() : 0);
}

/// The moment of a real clock at which a fast one shows \a time.
timespec realMoment(clockid_t clock, const timespec& time)
{
    const Nanoseconds left = nanoseconds(time) - now(clock);
    return timeOf(realNow(clock) + (left > 0 ? left / speed() : 0));
}

} // namespace

extern "C" {

int clock_gettime(clockid_t clock, timespec* time)
{
    static const auto function = real(&::clock_gettime, "clock_gettime");
    const int result = function(clock, time);
    if (result == 0 && isFast(clock))
        *time = timeOf(now(clock));
    return result;
}

int gettimeofday(timeval* time, void*) noexcept
{
    const timespec exact = timeOf(now(CLOCK_REALTIME));
    time->tv_sec = exact.tv_sec;
    time->tv_usec = exact.tv_nsec / 1000;
    return 0;
}

time_t time(time_t* time) noexcept
{
    const time_t seconds = time_t(now(CLOCK_REALTIME) / second);
    if (time)
        *time = seconds;
    return seconds;
}

int ppoll(pollfd* descriptors, nfds_t count, const timespec* patience, const sigset_t* signals)
{
    static const auto function = real(&::ppoll, "ppoll");
    const timespec shorter = patience ? shortened(*patience) : timespec{};
    return function(descriptors, count, patience ? &shorter : nullptr, signals);
}

int poll(pollfd* descriptors, nfds_t count, int milliseconds)
{
    const timespec patience = timeOf(milliseconds * millisecond);
    return ppoll(descriptors, count, milliseconds < 0 ? nullptr : &patience, nullptr);
}

int nanosleep(const timespec* pause, timespec* left)
{
    static const auto function = real(&::nanosleep, "nanosleep");
    const timespec shorter = shortened(*pause);
    const int result = function(&shorter, left);
    if (result != 0 && left)
        *left = timeOf(nanoseconds(*left) * speed());
    return result;
}

int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock,
                           const timespec* end)
{
    static const auto function = real(&::pthread_cond_clockwait, "pthread_cond_clockwait");
    const timespec moment = realMoment(clock, *end);
    return function(condition, mutex, clock, &moment);
}

/// The clock is the condition's own, which cannot be asked; no computer has run for thirty years.
int pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec* end)
{
    static const auto function = real(&::pthread_cond_timedwait, "pthread_cond_timedwait");
    const time_t thirty_years = 1000000000;
    const timespec moment =
        realMoment(end->tv_sec > thirty_years ? CLOCK_REALTIME : CLOCK_MONOTONIC, *end);
    return function(condition, mutex, &moment);
}

} // extern "C"
