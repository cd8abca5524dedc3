#ifndef TOOLS_HOST_DRIVER_WORKPLACE_H
#define TOOLS_HOST_DRIVER_WORKPLACE_H

#include "tools/host/config/config.h"
#include "tools/host/config/options.h"
#include "tools/host/driver/plugin.h"
#include "tools/host/terminal/debug_log.h"
#include "tools/host/terminal/output.h"
#include "tools/host/terminal/unix_signals.h"

namespace tovik_host::driver {

/// The configuration that the options name, with the address that they give; warnings go to the
/// standard error. Throws UsageError.
config::HostConfig hostConfig(const config::CommonOptions& common);

/// What every command works with, made from the options that all have.
struct Workplace
{
    /// Loads the configuration and the library. Throws UsageError.
    explicit Workplace(const config::CommonOptions& common);

    /// The item of that name. Throws UsageError when the configuration has none.
    const config::ItemConfig& item(const QString& name) const;
    /// The service's address without a password, for showing.
    QString shownUrl() const;

    terminal::DebugLog log;
    terminal::UnixSignals unix_signals;
    config::HostConfig config;
    Plugin plugin;
    terminal::Output out;
    terminal::Output err;
};

} // namespace tovik_host::driver

#endif
