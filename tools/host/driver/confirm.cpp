#include "tools/host/driver/confirm.h"

#include "tools/host/driver/driver_session.h"
#include "tools/host/terminal/waiter.h"
#include "tools/host/value/status_text.h"

namespace tovik_host {

namespace {

/// An initial value that is not the one that is waited for.
QString otherValue(const ItemConfig& item, const QByteArray& bytes)
{
    const QString first = QString::fromLatin1(item.type->first_marker);
    const bool differs = !sameValue(*item.type, encodeValue(*item.type, first, 0).bytes, bytes);
    return differs ? first : QString::fromLatin1(item.type->second_marker);
}

} // namespace

QString confirmValue(Workplace& place, const ItemConfig& item, const QByteArray& bytes,
                     int milliseconds)
{
    HostConfig config = place.config;
    config.error_handling = ErrorHandling();
    const QString initial = otherValue(item, bytes);
    const QByteArray initial_bytes = encodeValue(*item.type, initial, 0).bytes;
    DriverSession session(place.plugin, config, {ServedItem{item, initial}});
    Answer latest;
    const Waited waited = waitUntil(place.unix_signals, milliseconds, [&] {
        latest = session.read(item.name, item.length);
        return sameValue(*item.type, latest.bytes, bytes);
    });
    if (waited == Waited::met)
        return QString();
    if (waited == Waited::interrupted)
        return QStringLiteral("sent, but interrupted before the service showed it");
    if (latest.status != 0) {
        return QStringLiteral("sent, but not confirmed in time: %1 (%2)")
            .arg(statusText(latest.status), statusCode(latest.status));
    }
    if (sameValue(*item.type, latest.bytes, initial_bytes))
        return QStringLiteral("sent, but the service has shown no value in time");
    return QStringLiteral("sent, but the service shows %1")
        .arg(decodeValue(*item.type, latest.bytes).value_or(QStringLiteral("no value")));
}

} // namespace tovik_host
