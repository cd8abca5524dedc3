#ifndef TOOLS_HOST_CONFIG_CONFIG_FILE_H
#define TOOLS_HOST_CONFIG_CONFIG_FILE_H

#include "tools/host/config/config.h"
#include "tools/host/config/json_file.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

namespace tovik_host::config {

/// The variable of the environment that is looked into when nothing says where the password is.
QString defaultPasswordVariable();

/// \a account as far as the options do not say otherwise; the configuration that they name comes
/// between the two. Looks for the password, without asking anybody. Throws UsageError for what
/// cannot be read or is not valid, and not for what is missing.
/// \param needs_password otherwise what a configuration says of the password's place is only noted
Account resolveAccount(const CommonOptions& options, Account account, bool needs_password = true);

/// Throws UsageError that says what to add, unless address, project and e-mail address are known.
void requireAccount(const Account& account);

/// The account's password from the one member of the service object that gives it: "password"
/// itself, "password_file" (its first line; a relative path starts at the configuration's folder)
/// or "password_env" (a variable of the environment); without any of them from the usual variable.
/// Throws UsageError; no message shows it.
QString readPassword(const JsonPlace& service, const QString& config_path);

/// \a url as the driver can use it: without a slash at its end. Throws UsageError if it is no
/// address.
/// \param origin what the message names as the source of the address.
QString checkedUrl(const QString& url, const QString& origin);

/// The address of a service that the command line gives: \a url, or else the first line of the file
/// \a url_file; empty when both are. Throws UsageError for what cannot be read or is no address.
QString givenAddress(const QString& url, const QString& url_file);

/// A configuration, and what its user should know about it.
struct LoadedConfig
{
    HostConfig config;
    QStringList warnings;
};

/// What is wanted of the password of a configuration.
enum class Password
{
    required, ///< It is an error to have none.
    if_given, ///< Wherever the configuration says.
    in_file   ///< If it stands in the configuration itself.
};

/// Reads and checks the configuration file \a path.
///
/// Throws UsageError with file, line and member for anything that is wrong. A missing
/// "service.url" is allowed (the text stays empty), since the command line can give it.
LoadedConfig loadConfig(const QString& path, Password password = Password::required);

/// A configuration as loadConfig() reads it; ends with a line break. Without the password it says
/// where to find it.
QString configJson(const Account& account, const QVector<ItemConfig>& items, bool with_password);

/// A configuration file of a device.
struct DeviceFile
{
    LinkOptions link;   ///< What the member "link" says.
    QString link_place; ///< Where the link's address stands, for messages.
    QVector<ItemConfig> items;
    QStringList warnings;
};

/// Whether the configuration file \a path has a member "link". Throws UsageError.
bool namesLink(const QString& path);

/// Reads and checks the configuration file \a path of a device. Throws UsageError with file, line
/// and member for anything that is wrong.
/// \param defaults what an item has that does not say it.
DeviceFile loadDeviceFile(const QString& path, const RequestOptions& defaults);

/// The member "items" of \a root, each of them read by \a read_item. Throws UsageError when it is
/// missing, no list or an empty one.
/// \param if_named_twice what becomes of an item whose name another one has already, for the
///        warning about it
QVector<ItemConfig> readItemList(const JsonPlace& root,
                                 const std::function<ItemConfig(const JsonPlace&)>& read_item,
                                 const QString& if_named_twice, QStringList* warnings);

/// An item's type as options and files name it. Throws UsageError.
/// \param origin what the message names as the source.
const value::ItemType& itemType(const QString& name, const QString& origin);

/// The type that the member "type" of \a item names. Throws UsageError.
const value::ItemType& itemType(const JsonPlace& item);

} // namespace tovik_host::config

#endif
