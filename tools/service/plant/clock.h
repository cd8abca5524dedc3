#ifndef TOOLS_SERVICE_PLANT_CLOCK_H
#define TOOLS_SERVICE_PLANT_CLOCK_H

#include <chrono>
#include <functional>

namespace tovik_service::plant {

/// Tells the time in seconds; passed in so that tests can turn the hands.
using Clock = std::function<double()>;

/// Seconds since 1970.
inline double unixSeconds()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}

/// Seconds since some fixed moment; never jumps.
inline double steadySeconds()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}

} // namespace tovik_service::plant

#endif
