#include "tools/host/driver/first_values.h"

#include "tools/host/value/status_text.h"

#include <algorithm>

namespace tovik_host::driver {

namespace {

/// Milliseconds that a driver with exchanged initial values is given for another answer: longer
/// than a cycle of the driver, so that a value that alternates is not missed.
const int exchange_patience = 1500;

/// A name that no configuration has by accident.
QString twinName(const QString& name)
{
    return name + QChar(1);
}

QString marker(const value::ItemType& type, bool second)
{
    return QString::fromLatin1(second ? type.second_marker : type.first_marker);
}

/// The bytes of the marker as the driver answers them: texts are filled up, and never cut.
QByteArray markerBytes(const config::ItemConfig& item, bool second)
{
    const QByteArray bytes = value::encodeValue(*item.type, marker(*item.type, second), 0).bytes;
    return bytes.leftJustified(item.length, '\0');
}

} // namespace

FirstValues::FirstValues(const Plugin& plugin, const config::HostConfig& config,
                         const QVector<config::ItemConfig>& items)
    : plugin_(plugin),
      config_(config)
{
    // Whatever a watching host would do about errors: here the driver shall try again by itself.
    config_.error_handling = config::ErrorHandling();
    for (const config::ItemConfig& item : items) {
        FirstValue value;
        value.item = item;
        values_ << value;
    }
}

terminal::Waited FirstValues::run(const terminal::UnixSignals& unix_signals, int milliseconds)
{
    QElapsedTimer elapsed;
    elapsed.start();
    bool exchanged = false;
    int patience = 0;
    while (true) {
        const std::unique_ptr<DriverSession> session = startSession(exchanged);
        const terminal::Waited waited =
            terminal::waitUntil(unix_signals, milliseconds - int(elapsed.elapsed()),
                                [&] { return look(*session, exchanged, patience); });
        if (waited != terminal::Waited::met || allArrived() || value::isServiceError(status_))
            return waited;
        exchanged = !exchanged;
        patience = exchange_patience;
    }
}

std::unique_ptr<DriverSession> FirstValues::startSession(bool exchanged)
{
    QVector<ServedItem> served;
    for (FirstValue& value : values_) {
        if (value.arrived)
            continue;
        value.unchanged = false;
        config::ItemConfig twin = value.item;
        twin.name = twinName(twin.name);
        served << ServedItem{value.item, marker(*value.item.type, exchanged)};
        served << ServedItem{twin, marker(*value.item.type, !exchanged)};
    }
    without_progress_.invalidate();
    return std::make_unique<DriverSession>(plugin_, config_, served);
}

/// Looks at all items that are waited for; true when this session has nothing more to tell.
bool FirstValues::look(DriverSession& session, bool exchanged, int patience)
{
    bool silent = false;
    for (FirstValue& value : values_) {
        if (!value.arrived)
            lookAt(session, value, exchanged);
        silent = silent || (!value.arrived && !value.unchanged);
    }
    if (allArrived())
        return true;
    // The values that the driver read before the error may come right behind it.
    looks_under_error_ = value::isServiceError(status_) ? looks_under_error_ + 1 : 0;
    if (looks_under_error_ > 1)
        return true;
    if (silent)
        return false;
    if (!without_progress_.isValid())
        without_progress_.start();
    return without_progress_.elapsed() >= patience;
}

void FirstValues::lookAt(DriverSession& session, FirstValue& value, bool exchanged)
{
    const Answer answer = session.read(value.item.name, value.item.length);
    const Answer twin = session.read(twinName(value.item.name), value.item.length);
    status_ = answer.status;
    if (!answer.arrived || answer.bytes != twin.bytes)
        return;
    value.answer = answer;
    value.unchanged = answer.bytes == markerBytes(value.item, exchanged);
    value.ever_unchanged = value.ever_unchanged || value.unchanged;
    value.arrived = !value.unchanged;
}

bool FirstValues::allArrived() const
{
    return std::all_of(values_.begin(), values_.end(),
                       [](const FirstValue& value) { return value.arrived; });
}

} // namespace tovik_host::driver
