#ifndef TOOLS_HOST_DRIVER_DEVICE_CONFIG_H
#define TOOLS_HOST_DRIVER_DEVICE_CONFIG_H

#include "tools/host/config/config.h"
#include "tools/host/driver/link_address.h"

#include "interface/drv_base.h"

#include <QStringList>

namespace tovik_host::driver {

/// What the driver finds in its link; times in milliseconds.
struct LinkSettings
{
    int request_delay = 0;
    int response_timeout = 1000; ///< The library's own 10 ms are too short for most devices.
    int retries = 0;
    int link_param_a = 0;
    int link_param_b = 255;

    /// Hands the settings to a link.
    void fill(DrvBase* link) const;
};

/// A device, and what is wanted of it.
struct DeviceConfig
{
    LinkAddress link;
    LinkSettings settings;
    QString unit = u"tovik-host"_s;
    int open_milliseconds = 10000;     ///< The longest that an attempt to open the link may take.
    QVector<config::ItemConfig> items; ///< Those that the command is about, in its order.
};

/// Whether the options are about a device on a link, and not about a service: the command line or
/// the configuration names a link. Throws UsageError when the configuration cannot be read.
bool isForDevice(const config::CommonOptions& common);

/// The same of a command that is for both. Throws UsageError, too, if there is an option that only
/// a device has, and no device.
bool meansDevice(const config::CommonOptions& common);

/// Puts options and configuration together; options win.
///
/// \param addresses what the command line says. With a configuration these are names of its items,
///        and none of them means all; without one they are `ADDRESS` or `ADDRESS=TYPE`.
/// \param warnings takes what the user should know.
/// Throws UsageError.
DeviceConfig deviceConfig(const config::CommonOptions& common, const QStringList& addresses,
                          QStringList* warnings);

} // namespace tovik_host::driver

#endif
