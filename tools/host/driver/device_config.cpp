#include "tools/host/driver/device_config.h"

#include "tools/host/config/config_file.h"
#include "tools/host/terminal/exit_code.h"

namespace tovik_host::driver {

namespace {

/// The item that `ADDRESS` or `ADDRESS=TYPE` means.
config::ItemConfig itemOf(const QString& text, const config::RequestOptions& options)
{
    const int equals = text.lastIndexOf(u'=');
    config::ItemConfig item;
    item.name = equals < 0 ? text : text.left(equals);
    if (item.name.isEmpty())
        throw terminal::UsageError(u"\"%1\": the address is empty"_s.arg(text));
    item.request.address = item.name;
    item.type = equals < 0
                    ? &config::itemType(options.typeName(), u"--type"_s)
                    : &config::itemType(text.mid(equals + 1), u"\"%1\": after \"=\""_s.arg(text));
    if (item.type->size == 0) {
        if (!options.length) {
            throw terminal::UsageError(
                u"%1: a String needs its length: --length BYTES"_s.arg(item.name));
        }
        item.length = *options.length;
    } else {
        item.elements = options.elements.value_or(1);
    }
    options.fill(&item.request);
    return item;
}

QVector<config::ItemConfig> itemsOf(const QStringList& addresses,
                                    const config::RequestOptions& options)
{
    QVector<config::ItemConfig> items;
    bool has_text = false;
    for (const QString& address : addresses) {
        items << itemOf(address, options);
        has_text = has_text || items.last().type->size == 0;
    }
    if (options.length && !has_text && !items.isEmpty()) {
        throw terminal::UsageError(
            u"--length is for texts: give --type String with it; the other types have lengths of "
            "their own"_s);
    }
    return items;
}

/// Takes what is given.
void fill(DeviceConfig* config, const config::LinkOptions& link)
{
    LinkSettings& settings = config->settings;
    config->unit = link.unit.value_or(config->unit);
    settings.request_delay = link.request_delay.value_or(settings.request_delay);
    settings.response_timeout = link.response_timeout.value_or(settings.response_timeout);
    settings.retries = link.retries.value_or(settings.retries);
    settings.link_param_a = link.link_param_a.value_or(settings.link_param_a);
    settings.link_param_b = link.link_param_b.value_or(settings.link_param_b);
}

LinkAddress linkOf(const config::CommonOptions& common, const config::DeviceFile& file)
{
    if (common.link.address)
        return parseLink(*common.link.address, u"--link"_s);
    if (file.link.address)
        return parseLink(*file.link.address, file.link_place);
    throw terminal::UsageError(
        u"%1: \"link\" has no \"address\", and there is no --link"_s.arg(common.config));
}

} // namespace

void LinkSettings::fill(DrvBase* link) const
{
    link->link_name = u"link"_s;
    link->request_delay = request_delay;
    link->response_timeout = response_timeout;
    link->retry_count = retries;
    link->link_param_a = link_param_a;
    link->link_param_b = link_param_b;
}

bool isForDevice(const config::CommonOptions& common)
{
    return common.link.address || (!common.config.isEmpty() && config::namesLink(common.config));
}

bool meansDevice(const config::CommonOptions& common)
{
    const bool is_device = isForDevice(common);
    if (!is_device && !common.device_options.isEmpty()) {
        throw terminal::UsageError(
            u"%1 is for a device on a link, and there is none: add --link tcp:HOST:PORT or --link "
            "serial:DEVICE"_s.arg(common.device_options.first()));
    }
    return is_device;
}

DeviceConfig deviceConfig(const config::CommonOptions& common, const QStringList& addresses,
                          QStringList* warnings)
{
    if (!common.service_options.isEmpty()) {
        throw terminal::UsageError(
            u"%1 is for a cloud driver and its service; a device on a link has none: leave it out"_s
                .arg(common.service_options.first()));
    }
    if (common.library.isEmpty()) {
        throw terminal::UsageError(
            u"a device on a link needs its driver: name the library with --library, such as "
            "--library modbus_drv"_s);
    }
    config::DeviceFile file;
    DeviceConfig config;
    if (common.config.isEmpty()) {
        config.items = itemsOf(addresses, common.request);
    } else {
        file = config::loadDeviceFile(common.config, common.request);
        *warnings << file.warnings;
        config.items =
            addresses.isEmpty()
                ? file.items
                : config::chosenItems(
                      file.items, addresses, common.config,
                      u"; with --config items are named, without it they are addressed"_s);
    }
    config.link = linkOf(common, file);
    fill(&config, file.link);
    fill(&config, common.link);
    config.open_milliseconds = int(common.timeout * 1000);
    return config;
}

} // namespace tovik_host::driver
