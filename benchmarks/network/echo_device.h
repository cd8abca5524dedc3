#ifndef BENCHMARKS_NETWORK_ECHO_DEVICE_H
#define BENCHMARKS_NETWORK_ECHO_DEVICE_H

#include <string>

namespace bench {

const int request_size = 12;
const int answer_size = 13;

/// Answers every request of twelve bytes with thirteen, on any number of lines, each in a thread of
/// its own that lives as long as the process.
class EchoDevice
{
public:
    EchoDevice();

    /// The port on the loopback interface where it listens.
    int port() const { return port_; }
    /// A descriptor of a fresh connection to it.
    int connectBare() const;
    /// The name of a fresh serial line to it.
    static std::string serialLine();

private:
    int port_ = 0;
};

/// What a driver's author would write without a framework: one request, and its whole answer.
bool exchange(int descriptor);

} // namespace bench

#endif
