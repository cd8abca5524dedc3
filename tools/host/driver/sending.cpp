#include "tools/host/driver/sending.h"

#include "tools/host/driver/driver_session.h"
#include "tools/host/terminal/waiter.h"
#include "tools/host/value/status_text.h"

#include <QElapsedTimer>

namespace tovik_host::driver {

namespace {

/// Follows the driver until it is connected, or it is known that it will not be.
class Connection
{
public:
    bool isDecided(DriverSession& session, const config::ItemConfig& item)
    {
        status = session.read(item.name, item.length).status;
        made = session.numbers().connected.value_or(false);
        return made || value::isServiceError(status);
    }

    bool made = false;
    int status = 0;
};

QString withStatus(const QString& problem, int status)
{
    if (status == 0)
        return problem;
    return QStringLiteral("%1: %2 (%3)")
        .arg(problem, value::statusText(status), value::statusCode(status));
}

/// The status follows the driver's count of failed writes a moment later.
int statusOfFailure(Workplace& place, DriverSession& session, const config::ItemConfig& item)
{
    int status = 0;
    terminal::waitUntil(place.unix_signals, 1000, [&] {
        status = session.read(item.name, item.length).status;
        return status != 0;
    });
    return status;
}

/// Only an error code of the service says that the value was refused.
QString failureText(int status)
{
    if (status == 0) {
        return QStringLiteral("the value was not written: the service gave a code that the driver "
                              "does not pass on; --verbose shows it");
    }
    return withStatus(value::isServiceError(status)
                          ? QStringLiteral("the value was not written")
                          : QStringLiteral("no usable answer to the write; the service may have "
                                           "taken the value"),
                      status);
}

QString unfinished(terminal::Waited waited, const QString& problem)
{
    return waited == terminal::Waited::interrupted ? QStringLiteral("interrupted") : problem;
}

} // namespace

QString sendValue(Workplace& place, const config::ItemConfig& item, const QByteArray& bytes,
                  int milliseconds)
{
    QElapsedTimer elapsed;
    elapsed.start();
    config::HostConfig config = place.config;
    config.error_handling = config::ErrorHandling();
    DriverSession session(place.plugin, config, {item});

    if (!session.numbers().write_count)
        return QStringLiteral("this library does not tell what becomes of a write");

    Connection connection;
    terminal::Waited waited = terminal::waitUntil(
        place.unix_signals, milliseconds, [&] { return connection.isDecided(session, item); });
    if (!connection.made)
        return unfinished(waited, withStatus(QStringLiteral("no connection"), connection.status));

    const value::DriverNumbers before = session.numbers();
    value::DriverNumbers now = before;
    session.write(item.name, bytes);
    waited = terminal::waitUntil(place.unix_signals, milliseconds - int(elapsed.elapsed()), [&] {
        now = session.numbers();
        return now.write_count != before.write_count ||
               now.failed_write_count != before.failed_write_count;
    });
    if (waited != terminal::Waited::met) {
        return unfinished(waited, QStringLiteral("no answer to the write in time; the service may "
                                                 "have taken the value"));
    }
    return now.write_count != before.write_count
               ? QString()
               : failureText(statusOfFailure(place, session, item));
}

} // namespace tovik_host::driver
