#include "tools/host/config/password.h"

#include "tools/host/config/first_line.h"

#include <QDir>
#include <QFileInfo>

namespace tovik_host::config {

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
