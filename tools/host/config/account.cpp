#include "tools/host/config/config_file.h"

#include "tools/host/terminal/exit_code.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUrl>

namespace tovik_host::config {

namespace {

/// Without its end. Throws UsageError when the file cannot be opened, which says \a what it is.
QString firstLine(const QString& path, const QString& what, const QString& advice = QString())
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw terminal::UsageError(what + u": "_s + file.errorString() + advice);
    QByteArray line = file.readLine();
    while (line.endsWith('\n') || line.endsWith('\r'))
        line.chop(1);
    return QString::fromUtf8(line);
}

void takeFromFile(const QString& path, Account* account)
{
    account->password = firstLine(path, u"cannot read the password file \"%1\""_s.arg(path));
    account->has_password = true;
}

void takeFromVariable(const QString& variable, Account* account)
{
    const QByteArray name = variable.toUtf8();
    account->password_file.clear();
    account->password_env = variable;
    account->has_password = qEnvironmentVariableIsSet(name.constData());
    account->password = QString::fromUtf8(qgetenv(name.constData()));
}

/// The password from the place that a configuration names, or from the usual variable.
void takeConfigured(Account* account)
{
    if (!account->password_file.isEmpty()) {
        takeFromFile(account->password_file, account);
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

void takePassword(const CommonOptions& options, Account* account, bool needs_password)
{
    if (!options.password_file.isEmpty()) {
        takeFromFile(options.password_file, account);
        account->password_file = QFileInfo(options.password_file).absoluteFilePath();
        account->password_env.clear();
    } else if (!options.password_env.isEmpty()) {
        takeFromVariable(options.password_env, account);
    } else if (!account->has_password && needs_password) {
        takeConfigured(account);
    }
}

} // namespace

QString defaultPasswordVariable()
{
    return u"TOVIK_PASSWORD"_s;
}

Account resolveAccount(const CommonOptions& options, Account account, bool needs_password)
{
    if (!options.config.isEmpty())
        account = loadConfig(options.config, Password::in_file).config.service;
    const QString url = givenAddress(options.url, options.url_file);
    if (!url.isEmpty())
        account.url = url;
    if (!options.project.isEmpty())
        account.project = options.project;
    if (!options.email.isEmpty())
        account.email = options.email;
    takePassword(options, &account, needs_password);
    return account;
}

void requireAccount(const Account& account)
{
    QStringList missing;
    if (account.url.isEmpty())
        missing << u"--url URL (or --url-file FILE)"_s;
    if (account.project.isEmpty())
        missing << u"--project NAME"_s;
    if (account.email.isEmpty())
        missing << u"--email ADDRESS"_s;
    if (!missing.isEmpty()) {
        throw terminal::UsageError(
            u"the account is not complete; add %1, or a configuration with --config"_s.arg(
                missing.join(u", "_s)));
    }
}

QString readPassword(const JsonPlace& service, const QString& config_path)
{
    const char* given = nullptr;
    for (const char* name : {"password", "password_file", "password_env"}) {
        if (!service.has(name))
            continue;
        if (given)
            service.at(name).fail(u"\"%1\" gives the password already"_s.arg(QLatin1String(given)));
        given = name;
    }
    if (service.has("password_file")) {
        const QString name = service.requiredText("password_file");
        const QString problem = u"%1: cannot read \"%2\""_s;
        return firstLine(QFileInfo(config_path).dir().absoluteFilePath(name),
                         problem.arg(service.at("password_file").where(), name));
    }
    if (service.has("password"))
        return service.at("password").text();
    const bool is_named = service.has("password_env");
    const QString name =
        is_named ? service.requiredText("password_env") : defaultPasswordVariable();
    const QByteArray variable = name.toUtf8();
    if (!qEnvironmentVariableIsSet(variable.constData()) && is_named)
        service.at("password_env").fail(u"the environment has no variable \"%1\""_s.arg(name));
    if (!qEnvironmentVariableIsSet(variable.constData())) {
        service.fail(
            u"no password is given: add \"password_file\", \"password_env\" or \"password\", or "
            "set %1"_s.arg(name));
    }
    return QString::fromUtf8(qgetenv(variable.constData()));
}

QString checkedUrl(const QString& url, const QString& origin)
{
    QUrl parsed(url, QUrl::StrictMode);
    const bool is_web =
        parsed.scheme() == QLatin1String("https") || parsed.scheme() == QLatin1String("http");
    const bool has_slash = parsed.path() == QLatin1String("/");
    const bool is_bare =
        (parsed.path().isEmpty() || has_slash) && !parsed.hasQuery() && !parsed.hasFragment();
    if (!parsed.isValid() || !is_web || !is_bare || parsed.host().isEmpty()) {
        throw terminal::UsageError(
            u"%1: must be an address such as https://cloud.example, without a path"_s.arg(origin));
    }
    return has_slash ? url.chopped(1) : url;
}

QString givenAddress(const QString& url, const QString& url_file)
{
    QString address;
    if (!url_file.isEmpty()) {
        const QString line =
            firstLine(url_file, u"cannot read the address file \"%1\""_s.arg(url_file),
                      u" (is the service running?)"_s);
        address = checkedUrl(line.trimmed(), url_file);
    }
    return url.isEmpty() ? address : checkedUrl(url, u"--url"_s);
}

} // namespace tovik_host::config
