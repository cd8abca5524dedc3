#include "tools/host/stored_config.h"

#include "tools/host/config/config_file.h"
#include "tools/host/config/member_reader.h"
#include "tools/host/terminal/text_width.h"

namespace tovik_host {

namespace {

StoredItem itemOf(const ItemConfig& config)
{
    StoredItem item;
    item.name = config.name;
    item.dataitem_id = config.id;
    item.type = QString::fromLatin1(config.type->name);
    if (config.length > 0)
        item.length = config.length;
    return item;
}

} // namespace

RecordOfConfig recordOfConfig(const QString& path)
{
    const QString shown = printable(path);
    const LoadedConfig loaded = loadConfig(path);
    const ServiceConfig& service = loaded.config.service;
    RecordOfConfig made;
    made.notes = loaded.warnings;
    if (!service.url.isEmpty())
        made.record.host = service.url;
    else
        made.notes << QStringLiteral("%1 has no service.url: the record has %2 there, which is no "
                                     "service")
                          .arg(shown, made.record.host);
    if (service.password.isEmpty()) {
        made.notes << QStringLiteral(
                          "%1 gives no password: the record has an empty one, with which "
                          "no login succeeds")
                          .arg(shown);
    }
    made.record.project = service.project;
    made.record.email = service.email;
    made.record.password = service.password;
    for (const ItemConfig& config : loaded.config.items)
        made.record.dataitems.push_back(itemOf(config));
    made.conversion_notes << QStringLiteral("%1 has no groups, no cached values, no status, alert, "
                                            "time or marks of items: the record has its defaults "
                                            "there")
                                 .arg(shown);
    if (readJson(path).root.contains("error_handling")) {
        made.notes << QStringLiteral("%1: error_handling is not part of the record and is left "
                                     "out: a host sets it as tovik_iot_err_... keys of the link")
                          .arg(shown);
    }
    return made;
}

} // namespace tovik_host
