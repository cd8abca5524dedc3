#ifndef TOOLS_HOST_CONFIG_PASSWORD_H
#define TOOLS_HOST_CONFIG_PASSWORD_H

#include "tools/host/config/member_reader.h"

#include <QString>

#include <optional>

namespace tovik_host::config {

/// The account's password from the one member of the service object that gives it: "password"
/// itself, "password_file" (its first line; a relative path starts at the configuration's folder)
/// or "password_env" (a variable of the environment). Throws UsageError; no message shows it.
QString readPassword(const MemberReader& service, const QString& config_path);

/// The first line of the file \a path, without its end; nothing when the file cannot be opened, and
/// \a problem receives why.
std::optional<QString> firstLine(const QString& path, QString* problem);

/// The address of a service that the command line gives: \a url, or else the first line of the file
/// \a url_file; empty when both are. Throws UsageError for what cannot be read or is no address.
QString givenAddress(const QString& url, const QString& url_file);

} // namespace tovik_host::config

#endif
