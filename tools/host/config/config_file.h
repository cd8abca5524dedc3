#ifndef TOOLS_HOST_CONFIG_CONFIG_FILE_H
#define TOOLS_HOST_CONFIG_CONFIG_FILE_H

#include "tools/host/config/config.h"

#include <QStringList>

namespace tovik_host::config {

/// A configuration, and what its user should know about it.
struct LoadedConfig
{
    HostConfig config;
    QStringList warnings;
};

/// Reads and checks the configuration file \a path.
///
/// Throws UsageError with file, line and member for anything that is wrong. A missing
/// "service.url" is allowed (the text stays empty), since the command line can give it.
/// \param with_password whether it is fetched from the file or variable that the configuration
/// names; otherwise only a password that stands in the configuration itself is known.
LoadedConfig loadConfig(const QString& path, bool with_password = true);

/// Throws UsageError unless \a url is an address that the driver can use.
/// \param origin what the message names as the source of the address.
void checkUrl(const QString& url, const QString& origin);

} // namespace tovik_host::config

#endif
