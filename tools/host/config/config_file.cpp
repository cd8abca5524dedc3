#include "tools/host/config/config_file.h"

#include "tools/host/config/member_reader.h"
#include "tools/host/config/password.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/value/json_text.h"

#include <QHash>
#include <QUrl>

namespace tovik_host::config {

namespace {

using Pointer = nlohmann::json::json_pointer;

const int longest_text = 65535;

ServiceConfig readService(const JsonFile& file, bool with_password)
{
    const MemberReader members(file, Pointer("/service"));
    members.refuseOthers({QStringLiteral("url"), QStringLiteral("project"), QStringLiteral("email"),
                          QStringLiteral("password"), QStringLiteral("password_file"),
                          QStringLiteral("password_env")});
    ServiceConfig service;
    service.url = members.optionalText("url", QString());
    if (members.has("url"))
        checkUrl(service.url, file.place(Pointer("/service/url")));
    service.project = members.requiredText("project");
    service.email = members.requiredText("email");
    const bool is_elsewhere = members.has("password_file") || members.has("password_env");
    if (with_password || !is_elsewhere)
        service.password = readPassword(members, file.path);
    return service;
}

ItemConfig readItem(const JsonFile& file, const Pointer& pointer)
{
    const MemberReader members(file, pointer);
    members.refuseOthers({QStringLiteral("name"), QStringLiteral("id"), QStringLiteral("type"),
                          QStringLiteral("length")});
    ItemConfig item;
    item.name = members.requiredText("name");
    item.id = members.requiredText("id");
    const QString type = members.requiredText("type");
    item.type = value::findItemType(type);
    if (!item.type) {
        members.fail("type", QStringLiteral("\"%1\" is no type; the types are: %2")
                                 .arg(type, value::allItemTypeNames()));
    }
    if (members.has("length") && item.type->size > 0)
        members.fail("length", QStringLiteral("only items of type String have a length"));
    item.length = members.optionalNumber("length", 0, 1, longest_text);
    return item;
}

QVector<ItemConfig> readItems(const JsonFile& file, QStringList* warnings)
{
    return readItemList(
        file, [&file](const Pointer& pointer) { return readItem(file, pointer); },
        QStringLiteral("the driver serves the first one only"), warnings);
}

ErrorHandling readErrorHandling(const JsonFile& file)
{
    ErrorHandling handling;
    if (!file.root.contains("error_handling"))
        return handling;
    const int day = 24 * 60 * 60;
    const MemberReader members(file, Pointer("/error_handling"));
    members.refuseOthers({QStringLiteral("type"), QStringLiteral("return_time"),
                          QStringLiteral("retry_count"), QStringLiteral("return_time_enabled"),
                          QStringLiteral("restore_switch_enabled")});
    handling.type = members.optionalNumber("type", handling.type, 0, 3);
    handling.return_time = members.optionalNumber("return_time", handling.return_time, 1, day);
    handling.retry_count = members.optionalNumber("retry_count", handling.retry_count, 0, 1000);
    handling.return_time_enabled =
        members.optionalFlag("return_time_enabled", handling.return_time_enabled);
    handling.restore_switch_enabled =
        members.optionalFlag("restore_switch_enabled", handling.restore_switch_enabled);
    return handling;
}

} // namespace

void checkUrl(const QString& url, const QString& origin)
{
    const QUrl parsed(url, QUrl::StrictMode);
    const bool is_web =
        parsed.scheme() == QLatin1String("https") || parsed.scheme() == QLatin1String("http");
    const bool is_bare = parsed.path().isEmpty() && !parsed.hasQuery() && !parsed.hasFragment();
    if (!parsed.isValid() || !is_web || !is_bare || parsed.host().isEmpty()) {
        throw terminal::UsageError(
            QStringLiteral("%1: must be an address such as https://cloud.example, "
                           "without a path or a slash at its end")
                .arg(origin));
    }
}

LoadedConfig loadConfig(const QString& path, bool with_password)
{
    const JsonFile file = readJson(path);
    const MemberReader members(file, Pointer());
    members.refuseOthers(
        {QStringLiteral("service"), QStringLiteral("items"), QStringLiteral("error_handling")});
    if (!members.has("service")) {
        file.fail(Pointer(), QStringLiteral("the member \"service\" is missing; or, for a device: "
                                            "--link or the member \"link\""));
    }
    if (!members.has("items"))
        file.fail(Pointer(), QStringLiteral("the member \"items\" is missing"));
    LoadedConfig loaded;
    loaded.config.service = readService(file, with_password);
    loaded.config.items = readItems(file, &loaded.warnings);
    loaded.config.error_handling = readErrorHandling(file);
    return loaded;
}

QVector<ItemConfig> readItemList(const JsonFile& file, const ItemReader& read_item,
                                 const QString& if_named_twice, QStringList* warnings)
{
    const MemberReader::Pointer list("/items");
    const nlohmann::json& elements = file.root.at(list);
    if (!elements.is_array())
        file.fail(list, QStringLiteral("must be a list: [ ... ]"));
    if (elements.empty())
        file.fail(list, QStringLiteral("must name at least one item"));
    QVector<ItemConfig> items;
    QHash<QString, std::size_t> first_of_name;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        items << read_item(list / i);
        const QString& name = items.last().name;
        if (!first_of_name.contains(name)) {
            first_of_name.insert(name, i);
            continue;
        }
        *warnings << QStringLiteral("%1: items[%2] has the name \"%3\" already; %4")
                         .arg(file.place(list / i / "name"))
                         .arg(first_of_name.value(name))
                         .arg(name, if_named_twice);
    }
    return items;
}

namespace {

value::OrderedJson jsonOf(const Account& account, bool with_password)
{
    value::OrderedJson service;
    // The address may hold a password of its own.
    const QString url = with_password ? account.service.url
                                      : QUrl(account.service.url).toString(QUrl::RemoveUserInfo);
    if (!url.isEmpty())
        service["url"] = url.toStdString();
    service["project"] = account.service.project.toStdString();
    service["email"] = account.service.email.toStdString();
    if (with_password)
        service["password"] = account.service.password.toStdString();
    else if (!account.password_file.isEmpty())
        service["password_file"] = account.password_file.toStdString();
    else
        service["password_env"] =
            (account.password_env.isEmpty() ? defaultPasswordVariable() : account.password_env)
                .toStdString();
    return service;
}

value::OrderedJson jsonOf(const ItemConfig& item)
{
    value::OrderedJson json = {{"name", item.name.toStdString()},
                               {"id", item.id.toStdString()},
                               {"type", item.type->name}};
    if (item.length > 0)
        json["length"] = item.length;
    return json;
}

} // namespace

QString configJson(const Account& account, const QVector<ItemConfig>& items, bool with_password)
{
    value::OrderedJson list = value::OrderedJson::array();
    for (const ItemConfig& item : items)
        list.push_back(jsonOf(item));
    const value::OrderedJson root = {{"service", jsonOf(account, with_password)}, {"items", list}};
    return QString::fromStdString(root.dump(2)) + QLatin1Char('\n');
}

} // namespace tovik_host::config
