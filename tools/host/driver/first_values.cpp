#include "tools/host/driver/first_values.h"

#include "tools/host/terminal/exit_code.h"
#include "tools/host/value/status_text.h"

namespace tovik_host::driver {

namespace {

/// Takes what the driver has by now; true when there is nothing more to come.
bool look(DriverSession& session, FirstValues& first, int* looks_under_error)
{
    const value::DriverNumbers numbers = session.numbers();
    first.all_read = numbers.cycle_count.value_or(0) > 0;
    bool is_complete = true;
    for (int i = 0; i < first.values.size(); ++i) {
        FirstValue& value = first.values[i];
        if (value.arrived)
            continue;
        // Asked for after the age: the answer is no older.
        value.answer = session.read(value.item.name, value.item.length);
        first.status = value.answer.status;
        value.arrived = value.answer.arrived && numbers.ages.value(i).has_value();
        is_complete = is_complete && value.arrived;
    }
    // The values that the driver read before the error may come right behind it.
    *looks_under_error = value::isServiceError(first.status) ? *looks_under_error + 1 : 0;
    return is_complete || *looks_under_error > 1;
}

} // namespace

FirstValues fetchFirstValues(const Plugin& plugin, config::HostConfig config,
                             const QVector<config::ItemConfig>& items,
                             const terminal::UnixSignals& unix_signals, int milliseconds)
{
    // Whatever a watching host would do about errors: here the driver shall try again by itself.
    config.error_handling = config::ErrorHandling();
    DriverSession session(plugin, config, items);
    if (!session.numbers().tells_ages) {
        throw terminal::UsageError(
            QStringLiteral("the library \"%1\" does not tell when a value has come; it may be an "
                           "older one")
                .arg(plugin.path()));
    }
    FirstValues first;
    for (const config::ItemConfig& item : items)
        first.values << FirstValue{item, false, {}};
    int looks_under_error = 0;
    first.waited = terminal::waitUntil(unix_signals, milliseconds,
                                       [&] { return look(session, first, &looks_under_error); });
    return first;
}

} // namespace tovik_host::driver
