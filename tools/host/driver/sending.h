#ifndef TOOLS_HOST_DRIVER_SENDING_H
#define TOOLS_HOST_DRIVER_SENDING_H

#include "tools/host/driver/setup.h"

#include <QByteArray>

namespace tovik_host::driver {

/// Raises a write of \a bytes and runs the driver until it says that the service has the value.
///
/// The driver's answer to a write comes at once and says nothing about the service; its numbers
/// tell whether it is connected, and whether the value was sent. \return what went wrong; empty
/// when nothing did.
QString sendValue(terminal::Context& context, const ServiceSetup& setup,
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
