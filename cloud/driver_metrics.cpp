#include "cloud/driver_metrics.h"

#include <limits>

namespace {

/// A moment that never was.
const quint32 never = 0;
const int milliseconds_of_a_tenth = 100;

int toInt(qint64 milliseconds)
{
    return int(qMin(milliseconds, qint64(std::numeric_limits<int>::max())));
}

} // namespace

DriverMetrics::DriverMetrics(int item_count)
    : cycle_count_(0),
      cycle_milliseconds_(none),
      longest_cycle_milliseconds_(none),
      read_count_(0),
      connect_count_(0),
      last_error_(0),
      failed_at_(never),
      read_at_(std::size_t(item_count), never),
      taken_at_(std::size_t(item_count))
{
    // A vector makes its atomics without a value.
    for (std::size_t i = 0; i < taken_at_.size(); ++i)
        taken_at_[i].store(never);
    clock_.start();
}

void DriverMetrics::valueRead(int index, bool taken)
{
    ++read_count_;
    if (taken && index < itemCount())
        read_at_[std::size_t(index)] = tenths();
}

void DriverMetrics::valuesDelivered()
{
    for (std::size_t i = 0; i < read_at_.size(); ++i)
        taken_at_[i].store(read_at_[i]);
}

void DriverMetrics::cycleDone(qint64 milliseconds)
{
    const int duration = toInt(milliseconds);
    cycle_milliseconds_.store(duration);
    if (duration > longest_cycle_milliseconds_.load())
        longest_cycle_milliseconds_.store(duration);
    ++cycle_count_;
}

void DriverMetrics::connected()
{
    ++connect_count_;
}

void DriverMetrics::failed(int result)
{
    failed_at_.store(tenths());
    last_error_.store(result);
}

int DriverMetrics::cycleCount() const
{
    return cycle_count_.load();
}

int DriverMetrics::cycleMilliseconds() const
{
    return cycle_milliseconds_.load();
}

int DriverMetrics::longestCycleMilliseconds() const
{
    return longest_cycle_milliseconds_.load();
}

uint DriverMetrics::readCount() const
{
    return read_count_.load();
}

int DriverMetrics::reconnectCount() const
{
    return qMax(0, connect_count_.load() - 1);
}

int DriverMetrics::lastError() const
{
    return last_error_.load();
}

int DriverMetrics::lastErrorAge() const
{
    return since(failed_at_.load());
}

int DriverMetrics::itemAge(int index) const
{
    return since(taken_at_[std::size_t(index)].load());
}

int DriverMetrics::itemCount() const
{
    return int(taken_at_.size());
}

quint32 DriverMetrics::tenths() const
{
    return never + 1 + quint32(clock_.elapsed() / milliseconds_of_a_tenth);
}

int DriverMetrics::since(quint32 moment) const
{
    if (moment == never)
        return none;
    return toInt(qint64(tenths() - moment) * milliseconds_of_a_tenth);
}
