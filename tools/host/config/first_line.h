#ifndef TOOLS_HOST_CONFIG_FIRST_LINE_H
#define TOOLS_HOST_CONFIG_FIRST_LINE_H

#include <QString>

#include <optional>

namespace tovik_host::config {

/// The first line of the file \a path, without its end; nothing when the file cannot be opened, and
/// \a problem receives why.
std::optional<QString> firstLine(const QString& path, QString* problem);

/// The address of a service that the command line gives: \a url, or else the first line of the file
/// \a url_file; empty when both are. Throws UsageError for what cannot be read or is no address.
QString givenAddress(const QString& url, const QString& url_file);

} // namespace tovik_host::config

#endif
