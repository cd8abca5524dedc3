#ifndef FRAMEWORK_HOST_REQUEST_H
#define FRAMEWORK_HOST_REQUEST_H

#include "framework/driver_basic.h"

/// \file
/// How a driver serves one request of the host: unit, attempts, repeats.
namespace host_request {

/// One request of the host, as both request slots get it.
struct HostRequest
{
    E_CMD_DIR dir;
    QString unit_name;
    int station_no;
    /// The bytes to be written; none for a read.
    QByteArray ba;
    AddrData addr;
};

/// Whether the host wants the driver to stop.
bool isStopped(const DrvInterface& driver);

/// Locks the driver and runs the request; the result is in its error_code_. False if the host wants
/// the driver to stop: such a driver gives no answer, and serves nothing after it, since the lock
/// stays locked.
/// \param data what was read, for a read
bool runLocked(DriverBasic* driver, const HostRequest& request, QByteArray* data);

} // namespace host_request

#endif
