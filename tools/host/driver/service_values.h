#ifndef TOOLS_HOST_DRIVER_SERVICE_VALUES_H
#define TOOLS_HOST_DRIVER_SERVICE_VALUES_H

#include "tools/host/driver/driver_session.h"
#include "tools/host/driver/setup.h"
#include "tools/host/terminal/unix_signals.h"

#include <QByteArray>

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
    /// The driver has been connected to the service.
    bool was_connected = false;
    /// The driver has read all items, so that one without a value has one of another type.
    bool all_read = false;
};

/// Fetches the first value of \a items that comes from the service, and not from the driver's
/// cache: the driver tells by the age of its value, which status and bytes do not.
///
/// Runs a driver until every item has arrived, until the service itself reports an error, or until
/// the time is up. Throws UsageError if the driver tells no ages.
FirstValues fetchFirstValues(terminal::Context& context, const ServiceSetup& setup,
                             const QVector<config::ItemConfig>& items, int milliseconds);

/// What became of a write.
struct SentValue
{
    QString problem; ///< Empty: the service has taken the value.
    bool was_connected = false;
    int status = 0; ///< The driver's, before it was connected.
};

/// Raises a write of \a bytes and runs the driver until it says that the service has the value.
///
/// The driver's answer to a write comes at once and says nothing about the service; its numbers
/// tell whether it is connected, and whether the value was sent.
SentValue sendValue(terminal::Context& context, const ServiceSetup& setup,
                    const config::ItemConfig& item, const QByteArray& bytes, int milliseconds);

/// Waits until the service itself shows \a bytes.
///
/// The driver that wrote a value answers it from its cache at once. So this is asked of another
/// driver, whose cache starts with a different value and which is never written to.
/// \return what went wrong; empty when the service shows the value.
QString confirmValue(terminal::Context& context, const ServiceSetup& setup,
                     const config::ItemConfig& item, const QByteArray& bytes, int milliseconds);

} // namespace tovik_host::driver

#endif
