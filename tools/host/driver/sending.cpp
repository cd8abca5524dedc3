#include "tools/host/driver/sending.h"

#include "tools/host/driver/driver_session.h"
#include "tools/host/terminal/waiter.h"
#include "tools/host/value/status_text.h"

#include <QElapsedTimer>

namespace tovik_host {

namespace {

/// What the driver's debug lines have told so far.
struct Progress
{
    bool connected = false;
    bool sent = false;
    bool failed = false;

    void take(const QString& line)
    {
        connected =
            connected || line.contains(QLatin1String("[TOVIK IoT] Connected to Cloud Success!"));
        sent = sent || line.contains(QLatin1String("[TOVIK IoT] Write value done!"));
        failed = failed || line.contains(QLatin1String("[TOVIK IoT] Write value fail!"));
    }
};

/// Follows the status for the connection: one that is 0 again after an error means a connection,
/// of which no debug line tells.
class Connection
{
public:
    bool isDecided(DriverSession& session, const ItemConfig& item, const Progress& progress)
    {
        status = session.read(item.name, item.length).status;
        had_error_ = had_error_ || status != 0;
        made = progress.connected || (had_error_ && status == 0);
        return made || isServiceError(status);
    }

    bool made = false;
    int status = 0;

private:
    bool had_error_ = false;
};

QString withStatus(const QString& problem, int status)
{
    if (status == 0)
        return problem;
    return QStringLiteral("%1: %2 (%3)").arg(problem, statusText(status), statusCode(status));
}

/// The status follows the driver's debug line a moment later.
int statusOfFailure(Workplace& place, DriverSession& session, const ItemConfig& item)
{
    int status = 0;
    waitUntil(place.unix_signals, 1000, [&] {
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
    return withStatus(isServiceError(status)
                          ? QStringLiteral("the value was not written")
                          : QStringLiteral("no usable answer to the write; the service may have "
                                           "taken the value"),
                      status);
}

QString unfinished(Waited waited, const QString& problem)
{
    return waited == Waited::interrupted ? QStringLiteral("interrupted") : problem;
}

} // namespace

QString sendValue(Workplace& place, const ItemConfig& item, const QByteArray& bytes,
                  int milliseconds)
{
    QElapsedTimer elapsed;
    elapsed.start();
    Progress progress;
    QObject context;
    QObject::connect(
        &place.log, &DebugLog::lineArrived, &context,
        [&](const QString& line) { progress.take(line); }, Qt::QueuedConnection);
    HostConfig config = place.config;
    config.error_handling = ErrorHandling();
    DriverSession session(place.plugin, config, {ServedItem{item, std::nullopt}});

    Connection connection;
    Waited waited = waitUntil(place.unix_signals, milliseconds,
                              [&] { return connection.isDecided(session, item, progress); });
    if (!connection.made)
        return unfinished(waited, withStatus(QStringLiteral("no connection"), connection.status));

    session.write(item.name, bytes);
    waited = waitUntil(place.unix_signals, milliseconds - int(elapsed.elapsed()),
                       [&] { return progress.sent || progress.failed; });
    if (waited != Waited::met) {
        return unfinished(waited, QStringLiteral("no answer to the write in time; the service may "
                                                 "have taken the value"));
    }
    return progress.failed ? failureText(statusOfFailure(place, session, item)) : QString();
}

} // namespace tovik_host
