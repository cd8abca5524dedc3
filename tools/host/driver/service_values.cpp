#include "tools/host/driver/service_values.h"

#include "tools/host/terminal/exit_code.h"
#include "tools/host/value/status_text.h"

namespace tovik_host::driver {

namespace {

/// Whatever a watching host would do about errors: here the driver shall try again by itself.
config::HostConfig untroubled(config::HostConfig config)
{
    config.error_handling = config::ErrorHandling();
    return config;
}

/// Takes what the driver has by now; true when there is nothing more to come.
bool look(DriverSession& session, FirstValues& first, int* looks_under_error)
{
    const value::DriverNumbers numbers = session.numbers();
    first.all_read = numbers.cycle_count.value_or(0) > 0;
    first.was_connected = first.was_connected || numbers.connected.value_or(false);
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
    // The values that the driver read before the error may come right after it.
    *looks_under_error = value::isServiceError(first.status) ? *looks_under_error + 1 : 0;
    return is_complete || *looks_under_error > 1;
}

} // namespace

FirstValues fetchFirstValues(terminal::Context& context, const ServiceSetup& setup,
                             const QVector<config::ItemConfig>& items, int milliseconds)
{
    DriverSession session(setup.plugin, untroubled(setup.config), items);
    if (!session.numbers().tells_ages) {
        throw terminal::UsageError(
            u"the library \"%1\" does not tell when a value has come; it may be an older one"_s.arg(
                setup.plugin.path()));
    }
    FirstValues first;
    for (const config::ItemConfig& item : items)
        first.values << FirstValue{item, false, {}};
    int looks_under_error = 0;
    first.waited = terminal::waitUntil(context.unix_signals, milliseconds,
                                       [&] { return look(session, first, &looks_under_error); });
    return first;
}

namespace {

QString withStatus(const QString& problem, int status)
{
    return status == 0 ? problem : problem + u": "_s + value::statusTextWithCode(status);
}

/// The status follows the driver's count of failed writes a moment later.
int statusOfFailure(const terminal::UnixSignals& unix_signals, DriverSession& session,
                    const config::ItemConfig& item)
{
    int status = 0;
    terminal::waitUntil(unix_signals, 1000, [&] {
        status = session.read(item.name, item.length).status;
        return status != 0;
    });
    return status;
}

/// Only an error code of the service says that the value was refused.
QString failureText(int status)
{
    if (status == 0) {
        return u"the value was not written: the service gave a code that the driver does not pass "
               "on; --verbose shows it"_s;
    }
    return withStatus(
        value::isServiceError(status)
            ? u"the value was not written"_s
            : u"no usable answer to the write; the service may have taken the value"_s,
        status);
}

QString unfinished(terminal::Waited waited, const QString& problem)
{
    return waited == terminal::Waited::interrupted ? u"interrupted"_s : problem;
}

} // namespace

SentValue sendValue(terminal::Context& context, const ServiceSetup& setup,
                    const config::ItemConfig& item, const QByteArray& bytes, int milliseconds)
{
    const terminal::Stopwatch elapsed;
    DriverSession session(setup.plugin, untroubled(setup.config), {item});

    if (!session.numbers().write_count)
        return {u"this library does not tell what becomes of a write"_s, true, 0};

    // Until the driver is connected, or it is known that it will not be.
    bool is_connected = false;
    int status = 0;
    terminal::Waited waited = terminal::waitUntil(context.unix_signals, milliseconds, [&] {
        status = session.read(item.name, item.length).status;
        is_connected = session.numbers().connected.value_or(false);
        return is_connected || value::isServiceError(status);
    });
    if (!is_connected)
        return {unfinished(waited, withStatus(u"no connection"_s, status)), false, status};

    const value::DriverNumbers before = session.numbers();
    value::DriverNumbers now = before;
    session.write(item.name, bytes);
    waited = terminal::waitUntil(context.unix_signals, milliseconds - elapsed.milliseconds(), [&] {
        now = session.numbers();
        return now.write_count != before.write_count ||
               now.failed_write_count != before.failed_write_count;
    });
    if (waited != terminal::Waited::met) {
        return {
            unfinished(waited,
                       u"no answer to the write in time; the service may have taken the value"_s),
            true, 0};
    }
    if (now.write_count != before.write_count)
        return {QString(), true, 0};
    return {failureText(statusOfFailure(context.unix_signals, session, item)), true, 0};
}

QString confirmValue(terminal::Context& context, const ServiceSetup& setup,
                     const config::ItemConfig& item, const QByteArray& bytes, int milliseconds)
{
    DriverSession session(setup.plugin, untroubled(setup.config), {item});
    bool has_come = false;
    Answer latest;
    const terminal::Waited waited = terminal::waitUntil(context.unix_signals, milliseconds, [&] {
        has_come = session.numbers().ages.value(0).has_value();
        latest = session.read(item.name, item.length);
        return has_come && value::sameValue(*item.type, latest.bytes, bytes);
    });
    if (waited == terminal::Waited::met)
        return QString();
    if (waited == terminal::Waited::interrupted)
        return u"sent, but interrupted before the service showed it"_s;
    if (latest.status != 0)
        return withStatus(u"sent, but not confirmed in time"_s, latest.status);
    if (!has_come)
        return u"sent, but the service has shown no value in time"_s;
    return u"sent, but the service shows %1"_s.arg(
        value::decodeValue(*item.type, latest.bytes).value_or(u"no value"_s));
}

} // namespace tovik_host::driver
