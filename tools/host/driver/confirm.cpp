#include "tools/host/driver/confirm.h"

#include "tools/host/driver/driver_session.h"
#include "tools/host/terminal/waiter.h"
#include "tools/host/value/status_text.h"

namespace tovik_host::driver {

QString confirmValue(Workplace& place, const config::ItemConfig& item, const QByteArray& bytes,
                     int milliseconds)
{
    config::HostConfig config = place.config;
    config.error_handling = config::ErrorHandling();
    DriverSession session(place.plugin, config, {item});
    bool has_come = false;
    Answer latest;
    const terminal::Waited waited = terminal::waitUntil(place.unix_signals, milliseconds, [&] {
        has_come = session.numbers().ages.value(0).has_value();
        latest = session.read(item.name, item.length);
        return has_come && value::sameValue(*item.type, latest.bytes, bytes);
    });
    if (waited == terminal::Waited::met)
        return QString();
    if (waited == terminal::Waited::interrupted)
        return QStringLiteral("sent, but interrupted before the service showed it");
    if (latest.status != 0) {
        return QStringLiteral("sent, but not confirmed in time: %1 (%2)")
            .arg(value::statusText(latest.status), value::statusCode(latest.status));
    }
    if (!has_come)
        return QStringLiteral("sent, but the service has shown no value in time");
    return QStringLiteral("sent, but the service shows %1")
        .arg(value::decodeValue(*item.type, latest.bytes).value_or(QStringLiteral("no value")));
}

} // namespace tovik_host::driver
