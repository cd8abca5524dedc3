#ifndef CLOUD_DRIVER_METRICS_H
#define CLOUD_DRIVER_METRICS_H

#include <QElapsedTimer>
#include <QtGlobal>

#include <atomic>
#include <vector>

/// What a person who commissions a plant asks first: how long a cycle takes, how many values come,
/// what failed last, how often the connection was made anew, and how old each value is.
///
/// The client's thread counts, any thread reads; nothing here locks or waits. Each number is right
/// by itself; numbers that are read one after the other may stem from different moments.
///
/// Times are of the steady clock, in milliseconds. Moments are kept in tenths of a second and 32
/// bits, which the processors of panels handle without a lock and which last for 13 years; so ages
/// are exact to 0.1 s. Durations and ages beyond 24 days are given as the greatest int.
class DriverMetrics
{
public:
    /// What a time or an age says while there is none.
    enum
    {
        none = -1
    };

    /// \param item_count the number of served items; one that is added later has no age.
    explicit DriverMetrics(int item_count);

    /// \name For the client's thread
    /// @{

    /// The service has answered a read of the item at \a index with a value.
    /// \param taken whether the value is of the item's type, and so replaces the cached one.
    void valueRead(int index, bool taken);
    /// The values read since the last call are on their way to the driver: only now do they count
    /// for the items' ages, since until now the host has got the older ones.
    void valuesDelivered();
    /// All served items have been read in one cycle of \a milliseconds.
    void cycleDone(qint64 milliseconds);
    /// A login has succeeded and the catalogue is there.
    void connected();
    /// An operation has failed with \a result.
    void failed(int result);
    /// @}

    /// \name For any thread
    /// @{

    /// Cycles in which every served item was read.
    int cycleCount() const;
    /// Duration of the latest such cycle, or none.
    int cycleMilliseconds() const;
    /// The longest one so far, or none.
    int longestCycleMilliseconds() const;
    /// Reads that the service has answered with a value; starts again at 0 behind 2^32 - 1.
    uint readCount() const;
    /// Connections made after the first one.
    int reconnectCount() const;
    /// Result of the latest operation that failed; 0 while none has.
    int lastError() const;
    /// Time since then, or none.
    int lastErrorAge() const;
    /// Time since the service delivered the cached value of the item at \a index, or none: it
    /// never did.
    int itemAge(int index) const;
    int itemCount() const;
    /// @}

private:
    Q_DISABLE_COPY(DriverMetrics)

    quint32 tenths() const;
    int since(quint32 moment) const;

    QElapsedTimer clock_;
    std::atomic<int> cycle_count_;
    std::atomic<int> cycle_milliseconds_;
    std::atomic<int> longest_cycle_milliseconds_;
    std::atomic<uint> read_count_;
    std::atomic<int> connect_count_;
    std::atomic<int> last_error_;
    std::atomic<quint32> failed_at_;
    std::vector<quint32> read_at_;
    std::vector<std::atomic<quint32>> taken_at_;
};

#endif
