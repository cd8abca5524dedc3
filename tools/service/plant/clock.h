#ifndef TOOLS_SERVICE_PLANT_CLOCK_H
#define TOOLS_SERVICE_PLANT_CLOCK_H

#include <functional>

namespace tovik_service::plant {

/// Tells the time in seconds; passed in so that tests can turn the hands.
using Clock = std::function<double()>;

/// Seconds since 1970.
double unixSeconds();

/// Seconds since some fixed moment; never jumps.
double steadySeconds();

} // namespace tovik_service::plant

#endif
