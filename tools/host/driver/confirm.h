#ifndef TOOLS_HOST_DRIVER_CONFIRM_H
#define TOOLS_HOST_DRIVER_CONFIRM_H

#include "tools/host/driver/workplace.h"

#include <QByteArray>

namespace tovik_host::driver {

/// Waits until the service itself shows \a bytes.
///
/// The driver that wrote a value answers it from its cache at once. So this is asked of another
/// driver, whose cache starts with a different value and which is never written to.
/// \return what went wrong; empty when the service shows the value.
QString confirmValue(Workplace& place, const config::ItemConfig& item, const QByteArray& bytes,
                     int milliseconds);

} // namespace tovik_host::driver

#endif
