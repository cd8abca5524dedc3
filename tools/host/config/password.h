#ifndef TOOLS_HOST_CONFIG_PASSWORD_H
#define TOOLS_HOST_CONFIG_PASSWORD_H

#include "tools/host/config/member_reader.h"

#include <QString>

namespace tovik_host::config {

/// The account's password from the one member of the service object that gives it: "password"
/// itself, "password_file" (its first line; a relative path starts at the configuration's folder)
/// or "password_env" (a variable of the environment). Throws UsageError; no message shows it.
QString readPassword(const MemberReader& service, const QString& config_path);

} // namespace tovik_host::config

#endif
