#ifndef TOOLS_HOST_DRIVER_FIRST_VALUES_H
#define TOOLS_HOST_DRIVER_FIRST_VALUES_H

#include "tools/host/driver/driver_session.h"
#include "tools/host/terminal/unix_signals.h"

namespace tovik_host::driver {

/// What became of one requested item.
struct FirstValue
{
    config::ItemConfig item;
    /// The answer is the service's value.
    bool arrived = false;
    Answer answer;
};

struct FirstValues
{
    QVector<FirstValue> values;
    terminal::Waited waited = terminal::Waited::met;
    /// The driver's status at the end.
    int status = 0;
    /// The driver has read all items, so that one without a value has one of another type.
    bool all_read = false;
};

/// Fetches the first value of \a items that comes from the service, and not from the driver's
/// cache: the driver tells by the age of its value, which status and bytes do not.
///
/// Runs a driver until every item has arrived, until the service itself reports an error, or until
/// the time is up. Throws UsageError if the driver tells no ages.
FirstValues fetchFirstValues(const Plugin& plugin, config::HostConfig config,
                             const QVector<config::ItemConfig>& items,
                             const terminal::UnixSignals& unix_signals, int milliseconds);

} // namespace tovik_host::driver

#endif
