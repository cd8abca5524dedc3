#ifndef INTERFACE_DRVLIB_H
#define INTERFACE_DRVLIB_H

#include "compat/export.h"

#include <QtGlobal>

class DrvEthernet;
class DrvInterface;

extern "C" {

/// Makes the cloud driver. The host finds this by `dlsym` and calls it in its own thread.
///
/// \param first, second ignored; hosts that call every driver's factory alike pass a name and a
///        serial link here.
/// \param link the host's TCP link with the configuration in its driver-specific data; it must
///        outlive the driver, or be announced as going by `DrvEthernet::EmitNotifyBeforeRelease`.
///        Null gives a driver that answers nothing and never contacts the service.
/// \return a new driver, owned by the caller, to be deleted through `DrvInterface`.
TOVIK_EXPORT DrvInterface* create_drvlib(void* first, void* second, DrvEthernet* link);

/// Logs and returns the driver's version, major * 65536 + minor * 256 + patch.
TOVIK_EXPORT quint32 drv_version();
}

#endif
