#ifndef TOOLS_HOST_VALUE_METRICS_H
#define TOOLS_HOST_VALUE_METRICS_H

#include <QDateTime>
#include <QString>
#include <QVector>

#include <deque>
#include <optional>

class QObject;

namespace tovik_host::value {

/// What a driver tells about its own work, as far as it does: a driver of another kind, or an older
/// one, has less of it or nothing. Times and ages are in milliseconds; those without a value have
/// not been, or are not told.
struct DriverNumbers
{
    std::optional<int> cycle_count;
    std::optional<int> cycle;         ///< Duration of the latest whole cycle.
    std::optional<int> longest_cycle; ///< Of the longest one.
    std::optional<uint> read_count;
    std::optional<uint> write_count;        ///< Writes that the service has taken.
    std::optional<uint> failed_write_count; ///< Writes that failed.
    std::optional<int> reconnect_count;
    std::optional<bool> connected; ///< To the service, and without a failure since.
    std::optional<int> last_error; ///< The client's result; 0: there was none.
    std::optional<int> last_error_age;
    /// Whether the driver tells ages of values at all, and those of the served items in their
    /// order: time since the service delivered the value that the host gets.
    bool tells_ages = false;
    QVector<std::optional<int>> ages;

    bool isAny() const
    {
        return cycle_count || read_count || reconnect_count || last_error || tells_ages;
    }
};

/// Asks \a driver by the names of its properties.
DriverNumbers readNumbers(const QObject& driver);

/// How many reads a second the service answers, on the average of the last while.
class ReadRate
{
public:
    /// Takes the driver's number of reads at a moment, in milliseconds of a steady clock.
    void take(qint64 moment, uint read_count);
    /// Nothing until there are numbers over at least two seconds.
    std::optional<double> perSecond() const;

private:
    struct Sample
    {
        qint64 moment;
        uint read_count;
    };

    std::deque<Sample> samples_;
};

/// One line for people: what \a numbers tell, and nothing of what they do not; empty when that is
/// all.
QString numbersText(const DriverNumbers& numbers, const std::optional<double>& reads_per_second,
                    const QDateTime& now);

} // namespace tovik_host::value

#endif
