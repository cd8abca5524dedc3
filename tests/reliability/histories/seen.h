#ifndef TESTS_RELIABILITY_HISTORIES_SEEN_H
#define TESTS_RELIABILITY_HISTORIES_SEEN_H

#include <QStringList>

#include <array>
#include <vector>

/// What a host, a service and a reader of the log see of one event.
struct Seen
{
    QStringList lines;    ///< Of the log.
    QStringList requests; ///< URL and body.
    QStringList answers;  ///< To the host: bytes and status.
    /// Afterwards: the clock, when the next timer is due, outstanding requests, the driver's
    /// properties in the order of seen::number_names, then the age of every item.
    std::vector<qint64> numbers;

    bool operator==(const Seen& other) const
    {
        return numbers == other.numbers && lines == other.lines && requests == other.requests &&
               answers == other.answers;
    }
};

namespace seen {

const std::array<const char*, 13> number_names = {"clock",
                                                  "next timer",
                                                  "outstanding",
                                                  "connected",
                                                  "cycle_count",
                                                  "cycle_milliseconds",
                                                  "longest_cycle_milliseconds",
                                                  "read_count",
                                                  "write_count",
                                                  "failed_write_count",
                                                  "reconnect_count",
                                                  "last_error",
                                                  "last_error_age"};

} // namespace seen

#endif
