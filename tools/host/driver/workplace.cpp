#include "tools/host/driver/workplace.h"

#include "tools/host/config/config_file.h"
#include "tools/host/config/first_line.h"
#include "tools/host/terminal/usage_error.h"

#include <QCoreApplication>
#include <QUrl>

#include <unistd.h>

namespace tovik_host {

namespace {

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
    const QString given = givenAddress(common.url, common.url_file);
    if (!given.isEmpty())
        config.service.url = given;
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
