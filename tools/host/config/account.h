#ifndef TOOLS_HOST_CONFIG_ACCOUNT_H
#define TOOLS_HOST_CONFIG_ACCOUNT_H

#include "tools/host/config/config.h"
#include "tools/host/config/json_file.h"

#include <QString>

namespace tovik_host::config {

/// What the command line says about the service and the account.
struct AccountOptions
{
    QString config; ///< A configuration to take all of it from; empty: none.
    QString url;
    QString url_file; ///< A file whose first line is the address.
    QString project;
    QString email;
    QString password_file; ///< A file whose first line is the password.
    QString password_env;  ///< A variable of the environment that holds it.
};

/// The variable of the environment that is looked into when nothing says where the password is.
QString defaultPasswordVariable();

/// \a account as far as the options do not say otherwise; the configuration that they name comes
/// between the two. Looks for the password, without asking anybody. Throws UsageError for what
/// cannot be read or is not valid, and not for what is missing.
/// \param needs_password otherwise what a configuration says of the password's place is only noted
Account resolveAccount(const AccountOptions& options, Account account, bool needs_password = true);

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

} // namespace tovik_host::config

#endif
