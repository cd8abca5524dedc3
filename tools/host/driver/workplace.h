#ifndef TOOLS_HOST_DRIVER_WORKPLACE_H
#define TOOLS_HOST_DRIVER_WORKPLACE_H

#include "tools/host/config/config.h"
#include "tools/host/config/options.h"
#include "tools/host/driver/plugin.h"
#include "tools/host/terminal/debug_log.h"
#include "tools/host/terminal/output.h"
#include "tools/host/terminal/unix_signals.h"

namespace tovik_host {

/// The configuration that the options name, with the address that they give; warnings go to the
/// standard error. Throws UsageError.
HostConfig hostConfig(const CommonOptions& common);

/// What every command works with, made from the options that all have.
struct Workplace
{
    /// Loads the configuration and the library. Throws UsageError.
    explicit Workplace(const CommonOptions& common);

    /// The item of that name. Throws UsageError when the configuration has none.
    const ItemConfig& item(const QString& name) const;
    /// The service's address without a password, for showing.
    QString shownUrl() const;

    DebugLog log;
    UnixSignals unix_signals;
    HostConfig config;
    Plugin plugin;
    Output out;
    Output err;
};

} // namespace tovik_host

#endif
