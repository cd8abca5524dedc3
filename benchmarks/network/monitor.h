#ifndef BENCHMARKS_NETWORK_MONITOR_H
#define BENCHMARKS_NETWORK_MONITOR_H

#include "cloud/tovik_iot.h"

#include <string>

namespace bench {

/// A client that has logged in, with so many items to read. Its timers stand still: the cycles are
/// the benchmark's. To be made and used in one thread.
class Monitor
{
public:
    /// \param url as of TlsService
    Monitor(const std::string& url, int items);

    /// Reads every item once; false if one could not be read.
    bool cycle();

private:
    PropertyTovikIot property_;
    TovikIot client_;
    int read_ = 0;
};

} // namespace bench

#endif
