#ifndef TOOLS_HOST_DRIVER_DEVICE_PLACE_H
#define TOOLS_HOST_DRIVER_DEVICE_PLACE_H

#include "tools/host/driver/device_config.h"
#include "tools/host/driver/device_session.h"
#include "tools/host/driver/plugin.h"
#include "tools/host/terminal/debug_log.h"
#include "tools/host/terminal/output.h"
#include "tools/host/terminal/unix_signals.h"

#include <QString>

namespace tovik_host::driver {

/// What every command works with when it is about a device on a link.
struct DevicePlace
{
    /// Reads options and configuration and loads the library. Throws UsageError.
    /// \param addresses as for deviceConfig().
    DevicePlace(const config::CommonOptions& common, const QStringList& addresses);

    /// Says on the standard error that the link cannot be opened, and why.
    void complainOfLink(const QString& problem);
    /// Why there is no value in \a answer, for the user; empty if there is one.
    QString problemOf(const config::ItemConfig& item, const DeviceAnswer& answer) const;
    /// Why a request failed; empty if it did not.
    QString failureOf(const DeviceAnswer& answer) const;
    /// A message on the standard error.
    void complain(const QString& subject, const QString& problem);

    terminal::DebugLog log;
    terminal::UnixSignals unix_signals;
    terminal::Output out;
    terminal::Output err;
    DeviceConfig config;
    Plugin plugin;
};

} // namespace tovik_host::driver

#endif
