#include "tools/host/driver/workplace.h"

#include "tools/host/config/config_file.h"
#include "tools/host/config/first_line.h"
#include "tools/host/terminal/usage_error.h"

#include <QCoreApplication>
#include <QUrl>

#include <unistd.h>

namespace tovik_host::driver {

namespace {

Plugin pluginFor(const config::CommonOptions& common)
{
    if (!common.library.isEmpty())
        return Plugin(common.library);
    return Plugin::loadFirst(Plugin::candidates(QCoreApplication::applicationDirPath()));
}

} // namespace

config::HostConfig hostConfig(const config::CommonOptions& common)
{
    const config::LoadedConfig loaded = config::loadConfig(common.config);
    terminal::Output err(STDERR_FILENO);
    for (const QString& warning : loaded.warnings)
        err.line(QStringLiteral("tovik-host: warning: ") + warning);
    config::HostConfig config = loaded.config;
    const QString given = config::givenAddress(common.url, common.url_file);
    if (!given.isEmpty())
        config.service.url = given;
    if (config.service.url.isEmpty()) {
        throw terminal::UsageError(
            QStringLiteral("%1: \"service\" has no \"url\", and neither --url nor --url-file "
                           "gives one")
                .arg(common.config));
    }
    return config;
}

Workplace::Workplace(const config::CommonOptions& common)
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

const config::ItemConfig& Workplace::item(const QString& name) const
{
    if (const config::ItemConfig* found = config::findItem(config, name))
        return *found;
    throw terminal::UsageError(QStringLiteral("the configuration has no item \"%1\"").arg(name));
}

QString Workplace::shownUrl() const
{
    return QUrl(config.service.url).toDisplayString();
}

} // namespace tovik_host::driver
