#include "tools/host/config/password.h"

#include "tools/host/config/config_file.h"
#include "tools/host/terminal/exit_code.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace tovik_host::config {

std::optional<QString> firstLine(const QString& path, QString* problem)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *problem = file.errorString();
        return std::nullopt;
    }
    QByteArray line = file.readLine();
    while (line.endsWith('\n') || line.endsWith('\r'))
        line.chop(1);
    return QString::fromUtf8(line);
}

QString givenAddress(const QString& url, const QString& url_file)
{
    QString address;
    if (!url_file.isEmpty()) {
        QString problem;
        const std::optional<QString> line = firstLine(url_file, &problem);
        if (!line) {
            throw terminal::UsageError(
                QStringLiteral("cannot read the address file \"%1\": %2 (is the "
                               "service running?)")
                    .arg(url_file, problem));
        }
        address = line->trimmed();
        checkUrl(address, url_file);
    }
    if (!url.isEmpty()) {
        checkUrl(url, QStringLiteral("--url"));
        address = url;
    }
    return address;
}

namespace {

QString fromFile(const MemberReader& service, const QString& config_path)
{
    const QString name = service.requiredText("password_file");
    QString problem;
    const std::optional<QString> line =
        firstLine(QFileInfo(config_path).dir().absoluteFilePath(name), &problem);
    if (!line)
        service.fail("password_file", QStringLiteral("cannot read \"%1\": %2").arg(name, problem));
    return *line;
}

QString fromEnvironment(const MemberReader& service)
{
    const QString name = service.requiredText("password_env");
    const QByteArray variable = name.toUtf8();
    if (!qEnvironmentVariableIsSet(variable.constData())) {
        service.fail("password_env",
                     QStringLiteral("the environment has no variable \"%1\"").arg(name));
    }
    return QString::fromUtf8(qgetenv(variable.constData()));
}

} // namespace

QString readPassword(const MemberReader& service, const QString& config_path)
{
    const char* given = nullptr;
    for (const char* name : {"password", "password_file", "password_env"}) {
        if (!service.has(name))
            continue;
        if (given) {
            service.fail(
                name,
                QStringLiteral("\"%1\" gives the password already").arg(QLatin1String(given)));
        }
        given = name;
    }
    if (service.has("password_file"))
        return fromFile(service, config_path);
    if (service.has("password_env"))
        return fromEnvironment(service);
    return service.optionalText("password", QString());
}

} // namespace tovik_host::config
