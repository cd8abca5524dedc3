#include "tools/host/config/configure_file.h"

#include "tools/host/value/json_text.h"

#include <QUrl>

namespace tovik_host::config {

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
