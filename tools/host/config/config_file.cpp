#include "tools/host/config/config_file.h"

#include "tools/host/terminal/exit_code.h"
#include "tools/host/value/json_text.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QUrl>

namespace tovik_host::config {

namespace {

Account readService(const JsonPlace& place, const QString& path, Password password)
{
    place.allowOnly({"url", "project", "email", "password", "password_file", "password_env"});
    Account account;
    if (place.has("url"))
        account.url = checkedUrl(place.at("url").text(), place.at("url").where());
    account.project = place.requiredText("project");
    account.email = place.requiredText("email");
    const QString file = place.optionalText("password_file");
    if (!file.isEmpty())
        account.password_file = QFileInfo(path).dir().absoluteFilePath(file);
    account.password_env = place.optionalText("password_env");
    const bool is_elsewhere = place.has("password_file") || place.has("password_env");
    if (password == Password::required || place.has("password") ||
        (password == Password::if_given && is_elsewhere))
        account.password = readPassword(place, path);
    account.has_password = !account.password.isEmpty();
    return account;
}

ItemConfig readItem(const JsonPlace& place)
{
    place.allowOnly({"name", "id", "type", "length"});
    ItemConfig item;
    item.name = place.requiredText("name");
    item.id = place.requiredText("id");
    item.type = &itemType(place);
    if (place.has("length") && item.type->size > 0)
        place.at("length").fail(u"only items of type String have a length"_s);
    item.length = place.optionalNumber("length", 0, 1, limits::length);
    return item;
}

ErrorHandling readErrorHandling(const JsonPlace& place)
{
    const int day = 24 * 60 * 60;
    place.allowOnly(
        {"type", "return_time", "retry_count", "return_time_enabled", "restore_switch_enabled"});
    ErrorHandling handling;
    handling.type = place.optionalNumber("type", handling.type, 0, 3);
    handling.return_time = place.optionalNumber("return_time", handling.return_time, 1, day);
    handling.retry_count = place.optionalNumber("retry_count", handling.retry_count, 0, 1000);
    handling.return_time_enabled =
        place.optionalFlag("return_time_enabled", handling.return_time_enabled);
    handling.restore_switch_enabled =
        place.optionalFlag("restore_switch_enabled", handling.restore_switch_enabled);
    return handling;
}

value::OrderedJson jsonOf(const Account& account, bool with_password)
{
    value::OrderedJson service;
    // The address may hold a password of its own.
    const QString url =
        with_password ? account.url : QUrl(account.url).toString(QUrl::RemoveUserInfo);
    if (!url.isEmpty())
        service["url"] = url;
    service["project"] = account.project;
    service["email"] = account.email;
    if (with_password)
        service["password"] = account.password;
    else if (!account.password_file.isEmpty())
        service["password_file"] = account.password_file;
    else
        service["password_env"] =
            (account.password_env.isEmpty() ? defaultPasswordVariable() : account.password_env);
    return service;
}

value::OrderedJson jsonOf(const ItemConfig& item)
{
    value::OrderedJson json = {{"name", item.name}, {"id", item.id}, {"type", item.type->name}};
    if (item.length > 0)
        json["length"] = item.length;
    return json;
}

} // namespace

LoadedConfig loadConfig(const QString& path, Password password)
{
    const JsonFile file = readJson(path);
    const JsonPlace root(file);
    if (root.has("accounts"))
        root.fail(u"is a project file of tovik-cloud, and a configuration is wanted"_s);
    if (root.has("groups")) {
        root.fail(u"is a catalogue, and a configuration is wanted, such as tovik-host configure "
                  "--catalogue makes of it"_s);
    }
    root.allowOnly({"service", "items", "error_handling"});
    if (!root.has("service")) {
        root.fail(u"the member \"service\" is missing; or, for a device: --link or the member "
                  "\"link\""_s);
    }
    root.at("items"); // missing, that is said before anything about the service
    LoadedConfig loaded;
    loaded.config.service = readService(root.at("service"), path, password);
    loaded.config.items =
        readItemList(root, readItem, u"the driver serves the first one only"_s, &loaded.warnings);
    if (root.has("error_handling"))
        loaded.config.error_handling = readErrorHandling(root.at("error_handling"));
    return loaded;
}

QString configJson(const Account& account, const QVector<ItemConfig>& items, bool with_password)
{
    value::OrderedJson list = value::OrderedJson::array();
    for (const ItemConfig& item : items)
        list.push_back(jsonOf(item));
    return value::jsonText({{"service", jsonOf(account, with_password)}, {"items", list}});
}

QVector<ItemConfig> readItemList(const JsonPlace& root,
                                 const std::function<ItemConfig(const JsonPlace&)>& read_item,
                                 const QString& if_named_twice, QStringList* warnings)
{
    const JsonPlace list = root.at("items");
    const QVector<JsonPlace> elements = list.elements();
    if (elements.isEmpty())
        list.fail(u"must name at least one item"_s);
    QVector<ItemConfig> items;
    QHash<QString, int> first_of_name;
    for (const JsonPlace& element : elements) {
        items << read_item(element);
        const QString& name = items.last().name;
        if (!first_of_name.contains(name)) {
            first_of_name.insert(name, items.size() - 1);
            continue;
        }
        *warnings << u"%1: items[%2] has the name \"%3\" already; %4"_s
                         .arg(element.at("name").where())
                         .arg(first_of_name.value(name))
                         .arg(name, if_named_twice);
    }
    return items;
}

const value::ItemType& itemType(const QString& name, const QString& origin)
{
    if (const value::ItemType* type = value::findItemType(name))
        return *type;
    throw terminal::UsageError(
        u"%1: \"%2\" is no type; the types are: %3"_s.arg(origin, name, value::allItemTypeNames()));
}

const value::ItemType& itemType(const JsonPlace& item)
{
    return itemType(item.requiredText("type"), item.at("type").where());
}

} // namespace tovik_host::config
