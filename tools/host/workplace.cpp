#include "tools/host/workplace.h"

#include "tools/host/config_file.h"
#include "tools/host/usage_error.h"

#include <QCoreApplication>
#include <QFile>
#include <QUrl>

#include <unistd.h>

namespace tovik_host {

namespace {

QString urlFromFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw UsageError(QStringLiteral("cannot read the address file \"%1\": %2 (is the service "
                                        "running?)")
                             .arg(path, file.errorString()));
    }
    const QString url = QString::fromUtf8(file.readLine()).trimmed();
    checkUrl(url, path);
    return url;
}

Plugin pluginFor(const CommonOptions& common)
{
    if (!common.library.isEmpty())
        return Plugin(common.library);
    return Plugin::loadFirst(Plugin::candidates(QCoreApplication::applicationDirPath()));
}

} // namespace

HostConfig hostConfig(const CommonOptions& common)
{
    const LoadedConfig loaded = loadConfig(common.config);
    Output err(STDERR_FILENO);
    for (const QString& warning : loaded.warnings)
        err.line(QStringLiteral("tovik-host: warning: ") + warning);
    HostConfig config = loaded.config;
    if (!common.url_file.isEmpty())
        config.service.url = urlFromFile(common.url_file);
    if (!common.url.isEmpty()) {
        checkUrl(common.url, QStringLiteral("--url"));
        config.service.url = common.url;
    }
    if (config.service.url.isEmpty()) {
        throw UsageError(
            QStringLiteral("%1: \"service\" has no \"url\", and neither --url nor --url-file "
                           "gives one")
                .arg(common.config));
    }
    return config;
}

Workplace::Workplace(const CommonOptions& common)
    : config(hostConfig(common)),
      plugin(pluginFor(common)),
      out(STDOUT_FILENO),
      err(STDERR_FILENO)
{
    if (!common.log.isEmpty())
        log.writeToFile(common.log);
    if (common.verbose)
        log.echo();
}

const ItemConfig& Workplace::item(const QString& name) const
{
    if (const ItemConfig* found = findItem(config, name))
        return *found;
    throw UsageError(QStringLiteral("the configuration has no item \"%1\"").arg(name));
}

QString Workplace::shownUrl() const
{
    return QUrl(config.service.url).toDisplayString();
}

} // namespace tovik_host
