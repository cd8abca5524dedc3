#include "tools/host/driver/setup.h"

#include "tools/host/config/config_file.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/value/status_text.h"

#include <QCoreApplication>
#include <QUrl>

namespace tovik_host::driver {

namespace {

Plugin pluginFor(const config::CommonOptions& common)
{
    const QString folder = QCoreApplication::applicationDirPath();
    return Plugin::loadFirst(common.library.isEmpty()
                                 ? Plugin::candidates(folder)
                                 : Plugin::candidatesFor(common.library, folder));
}

DeviceConfig configFor(const config::CommonOptions& common, const QStringList& addresses,
                       terminal::Context& context)
{
    QStringList warnings;
    DeviceConfig config = deviceConfig(common, addresses, &warnings);
    for (const QString& warning : warnings)
        context.warn(warning);
    return config;
}

std::unique_ptr<value::Trace> traceFor(const config::CommonOptions& common, Plugin* plugin)
{
    if (!common.trace)
        return nullptr;
    auto trace = std::make_unique<value::Trace>(*common.trace);
    trace->setStatusOf(value::StatusOf::deviceWith(plugin->resultCodes()));
    plugin->setListener(trace.get());
    return trace;
}

/// What a user can try first.
QString adviceFor(const Answer& answer, const DeviceConfig& config)
{
    switch (answer.status) {
    case result_code::no_answer_in_time:
        return u"; are station, link settings and --response-timeout (%1 ms) right?"_s.arg(
            config.settings.response_timeout);
    case result_code::invalid_length:
        return u"; does the driver know this address, and is the type right? --verbose shows its "
               "log"_s;
    default:
        return answer.status_of.wordsFor(answer.status).isEmpty()
                   ? u"; what it means, the driver's documentation says"_s
                   : QString();
    }
}

} // namespace

config::HostConfig hostConfig(const config::CommonOptions& common, terminal::Context& context)
{
    const config::LoadedConfig loaded = config::loadConfig(common.config);
    for (const QString& warning : loaded.warnings)
        context.warn(warning);
    config::HostConfig config = loaded.config;
    const QString given = config::givenAddress(common.url, common.url_file);
    if (!given.isEmpty())
        config.service.url = given;
    if (config.service.url.isEmpty()) {
        throw terminal::UsageError(
            u"%1: \"service\" has no \"url\", and neither --url nor --url-file gives one"_s.arg(
                common.config));
    }
    return config;
}

ServiceSetup::ServiceSetup(const config::CommonOptions& common, terminal::Context& context)
    : config(hostConfig(common, context)),
      plugin(pluginFor(common))
{
    trace = traceFor(common, &plugin);
    context.log.start(common.log, common.verbose);
}

QVector<config::ItemConfig> ServiceSetup::chosen(const QStringList& names) const
{
    return config::chosenItems(config.items, names, u"the configuration"_s);
}

QString ServiceSetup::shownUrl() const
{
    return QUrl(config.service.url).toDisplayString();
}

DeviceSetup::DeviceSetup(const config::CommonOptions& common, const QStringList& addresses,
                         terminal::Context& used)
    : context(used),
      config(configFor(common, addresses, used)),
      plugin(pluginFor(common)),
      host(plugin, config, used.unix_signals)
{
    trace = traceFor(common, &plugin);
    context.log.start(common.log, common.verbose);
}

bool DeviceSetup::open()
{
    const QString problem = host.open();
    if (!problem.isEmpty())
        complainOfLink(problem);
    return problem.isEmpty();
}

void DeviceSetup::complainOfLink(const QString& problem)
{
    context.complain(linkText(config.link), problem);
}

QString DeviceSetup::failureOf(const Answer& answer) const
{
    const int status = answer.status;
    if (context.unix_signals.endRequested() && (!answer.arrived || status != 0))
        return u"interrupted"_s;
    if (!answer.arrived) {
        return u"the driver does not answer; a driver of a device answers each request before it "
               "returns from it"_s;
    }
    if (status == 0)
        return QString();
    return value::statusTextWithCode(status, answer.status_of) +
           (answer.link_problem.isEmpty() ? adviceFor(answer, config)
                                          : u": "_s + answer.link_problem);
}

QString DeviceSetup::problemOf(const config::ItemConfig& item, const Answer& answer) const
{
    const QString failure = failureOf(answer);
    if (!failure.isEmpty())
        return failure;
    const QByteArray& bytes = answer.bytes;
    if (config::valueOf(item, bytes))
        return QString();
    const QString type = QLatin1String(item.type->name);
    return u"the driver's bytes [%1] are no %2"_s.arg(
        value::hexText(bytes), item.elements == 1 ? type : u"%1 %2"_s.arg(item.elements).arg(type));
}

} // namespace tovik_host::driver
