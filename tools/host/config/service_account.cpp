#include "tools/host/config/service_account.h"

#include "tools/host/config/config_file.h"
#include "tools/host/config/member_reader.h"
#include "tools/host/config/password.h"
#include "tools/host/terminal/exit_code.h"

#include <QDir>
#include <QFileInfo>

namespace tovik_host::config {

namespace {

QString passwordIn(const QString& path)
{
    QString problem;
    const std::optional<QString> line = firstLine(path, &problem);
    if (!line) {
        throw terminal::UsageError(
            QStringLiteral("cannot read the password file \"%1\": %2").arg(path, problem));
    }
    return *line;
}

void takeAddress(const AccountOptions& options, Account* account)
{
    const QString given = givenAddress(options.url, options.url_file);
    if (!given.isEmpty())
        account->service.url = given;
}

void takeFromVariable(const QString& variable, Account* account)
{
    const QByteArray name = variable.toUtf8();
    account->password_file.clear();
    account->password_env = variable;
    account->has_password = qEnvironmentVariableIsSet(name.constData());
    account->service.password = QString::fromUtf8(qgetenv(name.constData()));
}

/// The password from the place that a configuration names, or from the usual variable.
void takeConfigured(Account* account)
{
    if (!account->password_file.isEmpty()) {
        account->service.password = passwordIn(account->password_file);
        account->has_password = true;
        return;
    }
    const QString configured = account->password_env;
    if (!configured.isEmpty())
        takeFromVariable(configured, account);
    if (account->has_password)
        return;
    takeFromVariable(defaultPasswordVariable(), account);
    // If none of them is set, the user should hear of the one that was meant.
    if (!account->has_password && !configured.isEmpty())
        account->password_env = configured;
}

void takePassword(const AccountOptions& options, Account* account, bool needs_password)
{
    if (!options.password_file.isEmpty()) {
        account->service.password = passwordIn(options.password_file);
        account->password_file = QFileInfo(options.password_file).absoluteFilePath();
        account->password_env.clear();
        account->has_password = true;
        return;
    }
    if (!options.password_env.isEmpty())
        takeFromVariable(options.password_env, account);
    else if (!account->has_password && needs_password)
        takeConfigured(account);
}

} // namespace

QString defaultPasswordVariable()
{
    return QStringLiteral("TOVIK_PASSWORD");
}

Account accountOfConfig(const QString& path)
{
    Account account;
    account.service = loadConfig(path, false).config.service;
    const JsonFile file = readJson(path);
    const MemberReader service(file, MemberReader::Pointer("/service"));
    const QString password_file = service.optionalText("password_file", QString());
    if (!password_file.isEmpty())
        account.password_file = QFileInfo(path).dir().absoluteFilePath(password_file);
    account.password_env = service.optionalText("password_env", QString());
    account.has_password = !account.service.password.isEmpty();
    return account;
}

Account resolveAccount(const AccountOptions& options, Account account, bool needs_password)
{
    if (!options.config.isEmpty())
        account = accountOfConfig(options.config);
    takeAddress(options, &account);
    if (!options.project.isEmpty())
        account.service.project = options.project;
    if (!options.email.isEmpty())
        account.service.email = options.email;
    takePassword(options, &account, needs_password);
    return account;
}

void requireAccount(const Account& account)
{
    QStringList missing;
    if (account.service.url.isEmpty())
        missing << QStringLiteral("--url URL (or --url-file FILE)");
    if (account.service.project.isEmpty())
        missing << QStringLiteral("--project NAME");
    if (account.service.email.isEmpty())
        missing << QStringLiteral("--email ADDRESS");
    if (!missing.isEmpty()) {
        throw terminal::UsageError(
            QStringLiteral("the account is not complete; add %1, or a configuration with --config")
                .arg(missing.join(QStringLiteral(", "))));
    }
}

} // namespace tovik_host::config
