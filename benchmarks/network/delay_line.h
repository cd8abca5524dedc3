#ifndef BENCHMARKS_NETWORK_DELAY_LINE_H
#define BENCHMARKS_NETWORK_DELAY_LINE_H

#include <sys/types.h>

#include <atomic>
#include <string>

namespace bench {

/// Moves this process into a network of its own, with loopback and no way out. Needs root. To be
/// called before the process has threads.
void leaveNetwork();

/// What has come to a line so far.
struct LineCounts
{
    std::atomic<int> packets; ///< In both directions.
    /// Of packets from the near end that ask for an answer, acknowledgements not among them: those
    /// that it sent at about the same time are one.
    std::atomic<int> flights;
};

/// A link between this process's network and another's on which every packet is under way for a
/// time: connection, acknowledgements and data alike, as on a long line. Made of two network
/// devices that a process of its own carries packets between; ends with this process.
class DelayLine
{
public:
    /// \param far_process a process in another network
    /// \param number tells several lines apart
    /// \param delay milliseconds in each direction
    DelayLine(pid_t far_process, int number, int delay);
    ~DelayLine();
    DelayLine(const DelayLine&) = delete;
    DelayLine& operator=(const DelayLine&) = delete;

    const LineCounts& counts() const { return *counts_; }
    /// The address of the far end.
    std::string farAddress() const;

private:
    int number_;
    LineCounts* counts_; ///< In memory that the carrier shares.
    pid_t carrier_ = -1;
};

} // namespace bench

#endif
