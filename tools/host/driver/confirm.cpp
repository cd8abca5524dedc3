#include "tools/host/driver/confirm.h"

#include "tools/host/driver/driver_session.h"
#include "tools/host/terminal/waiter.h"
#include "tools/host/value/status_text.h"

namespace tovik_host::driver {

namespace {

/// An initial value that is not the one that is waited for.
QString otherValue(const config::ItemConfig& item, const QByteArray& bytes)
{
    const QString first = QString::fromLatin1(item.type->first_marker);
    const bool differs =
        !value::sameValue(*item.type, value::encodeValue(*item.type, first, 0).bytes, bytes);
    return differs ? first : QString::fromLatin1(item.type->second_marker);
}

} // namespace

QString confirmValue(Workplace& place, const config::ItemConfig& item, const QByteArray& bytes,
                     int milliseconds)
{
    config::HostConfig config = place.config;
    config.error_handling = config::ErrorHandling();
    const QString initial = otherValue(item, bytes);
    const QByteArray initial_bytes = value::encodeValue(*item.type, initial, 0).bytes;
    DriverSession session(place.plugin, config, {ServedItem{item, initial}});
    Answer latest;
    const terminal::Waited waited = terminal::waitUntil(place.unix_signals, milliseconds, [&] {
        latest = session.read(item.name, item.length);
        return value::sameValue(*item.type, latest.bytes, bytes);
    });
    if (waited == terminal::Waited::met)
        return QString();
    if (waited == terminal::Waited::interrupted)
        return QStringLiteral("sent, but interrupted before the service showed it");
    if (latest.status != 0) {
        return QStringLiteral("sent, but not confirmed in time: %1 (%2)")
            .arg(value::statusText(latest.status), value::statusCode(latest.status));
    }
    if (value::sameValue(*item.type, latest.bytes, initial_bytes))
        return QStringLiteral("sent, but the service has shown no value in time");
    return QStringLiteral("sent, but the service shows %1")
        .arg(value::decodeValue(*item.type, latest.bytes).value_or(QStringLiteral("no value")));
}

} // namespace tovik_host::driver
