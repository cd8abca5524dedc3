#ifndef TOOLS_HOST_DRIVER_FIRST_VALUES_H
#define TOOLS_HOST_DRIVER_FIRST_VALUES_H

#include "tools/host/driver/driver_session.h"
#include "tools/host/terminal/waiter.h"

#include <QElapsedTimer>
#include <QVector>

#include <memory>

namespace tovik_host::driver {

/// What became of one requested item.
struct FirstValue
{
    config::ItemConfig item;
    /// The answer is the service's value.
    bool arrived = false;
    /// In the running session the driver has heard of the item, but answers its initial value.
    bool unchanged = false;
    /// The same in any session: if no value ever arrives, the service's is none of the type.
    bool ever_unchanged = false;
    Answer answer;
};

/// Fetches the first value of items that comes from the service, and not from the driver's cache.
///
/// A host cannot see in an answer whether the service has spoken. So every item is served twice,
/// under two names and with two different initial values: once both names answer the same, the
/// service has spoken. If what they say is the item's own initial value, that may be chance, or the
/// driver could not use what the service said: another driver with the two values exchanged tells.
class FirstValues
{
public:
    /// \param plugin must outlive this object.
    FirstValues(const Plugin& plugin, const config::HostConfig& config,
                const QVector<config::ItemConfig>& items);

    /// Runs drivers until every item has arrived, until the service itself reports an error, or
    /// until the time is up.
    terminal::Waited run(const terminal::UnixSignals& unix_signals, int milliseconds);

    const QVector<FirstValue>& values() const { return values_; }
    /// The driver's status at the end.
    int status() const { return status_; }

private:
    std::unique_ptr<DriverSession> startSession(bool exchanged);
    bool look(DriverSession& session, bool exchanged, int patience);
    void lookAt(DriverSession& session, FirstValue& value, bool exchanged);
    bool allArrived() const;

    const Plugin& plugin_;
    config::HostConfig config_;
    QVector<FirstValue> values_;
    QElapsedTimer without_progress_;
    int status_ = 0;
    int looks_under_error_ = 0;
};

} // namespace tovik_host::driver

#endif
