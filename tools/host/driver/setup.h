#ifndef TOOLS_HOST_DRIVER_SETUP_H
#define TOOLS_HOST_DRIVER_SETUP_H

#include "tools/host/config/config.h"
#include "tools/host/driver/device_config.h"
#include "tools/host/driver/device_host.h"
#include "tools/host/driver/plugin.h"
#include "tools/host/terminal/context.h"
#include "tools/host/value/trace.h"

namespace tovik_host::driver {

/// The configuration that the options name, with the address that they give. Throws UsageError.
config::HostConfig hostConfig(const config::CommonOptions& common, terminal::Context& context);

/// A cloud driver, and what it is to be told.
struct ServiceSetup
{
    /// Loads the configuration and the library, and starts the log. Throws UsageError.
    ServiceSetup(const config::CommonOptions& common, terminal::Context& context);

    /// The items that \a names mean, by names or patterns. Throws UsageError for one without any.
    QVector<config::ItemConfig> chosen(const QStringList& names) const;
    /// The service's address without a password, for showing.
    QString shownUrl() const;

    config::HostConfig config;
    std::unique_ptr<value::Trace> trace; ///< Null unless the options want one.
    Plugin plugin;
};

/// The driver of a device on a link, and what it is to be told.
struct DeviceSetup
{
    /// Reads options and configuration, loads the library and starts the log. Throws UsageError.
    /// \param addresses as for deviceConfig().
    DeviceSetup(const config::CommonOptions& common, const QStringList& addresses,
                terminal::Context& used);

    /// Opens the link; false: it has been said why not.
    bool open();
    /// Says on the standard error what is wrong with the link.
    void complainOfLink(const QString& problem);
    /// Why there is no value in \a answer, for the user; empty if there is one.
    QString problemOf(const config::ItemConfig& item, const Answer& answer) const;
    /// Why a request failed; empty if it did not.
    QString failureOf(const Answer& answer) const;

    terminal::Context& context;
    DeviceConfig config;
    std::unique_ptr<value::Trace> trace; ///< Null unless the options want one.
    Plugin plugin;
    DeviceHost host;
};

} // namespace tovik_host::driver

#endif
