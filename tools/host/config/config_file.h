#ifndef TOOLS_HOST_CONFIG_CONFIG_FILE_H
#define TOOLS_HOST_CONFIG_CONFIG_FILE_H

#include "tools/host/config/config.h"
#include "tools/host/config/member_reader.h"
#include "tools/host/config/service_account.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

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

/// Reads one item of a configuration file.
using ItemReader = std::function<ItemConfig(const MemberReader::Pointer& pointer)>;

/// Reads the member "items" of \a file, which exists, each by \a read_item. Throws UsageError when
/// it is no list or an empty one.
/// \param if_named_twice what becomes of an item whose name another one has already, for the
///        warning about it
QVector<ItemConfig> readItemList(const JsonFile& file, const ItemReader& read_item,
                                 const QString& if_named_twice, QStringList* warnings);

/// A configuration as loadConfig() reads it; ends with a line break. Without the password it says
/// where to find it.
QString configJson(const Account& account, const QVector<ItemConfig>& items, bool with_password);

} // namespace tovik_host::config

#endif
