#include "tools/host/service/catalogue_file.h"

#include "tools/host/config/config_file.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/value/host_value.h"
#include "tools/host/value/json_text.h"

#include <QFile>
#include <QUrl>

#include <limits>

namespace tovik_host::service {

namespace {

using Pointer = config::MemberReader::Pointer;

value::OrderedJson jsonOf(const CatalogueItem& item)
{
    return {{"id", item.id.toStdString()},
            {"name", item.name.toStdString()},
            {"type", item.type.toStdString()},
            {"length", item.length},
            {"alert", item.alert}};
}

value::OrderedJson jsonOf(const CatalogueGroup& group)
{
    value::OrderedJson items = value::OrderedJson::array();
    for (const CatalogueItem& item : group.items)
        items.push_back(jsonOf(item));
    return {{"id", group.id.toStdString()},
            {"name", group.name.toStdString()},
            {"location", group.location.toStdString()},
            {"permission", group.permission.toStdString()},
            {"alert", group.alert},
            {"items", items}};
}

const nlohmann::json& listAt(const config::JsonFile& file, const Pointer& parent, const char* name)
{
    const Pointer pointer = parent / std::string(name);
    if (!file.root.contains(pointer))
        file.fail(parent, QStringLiteral("the member \"%1\" is missing").arg(QLatin1String(name)));
    const nlohmann::json& list = file.root.at(pointer);
    if (!list.is_array())
        file.fail(pointer, QStringLiteral("must be a list: [ ... ]"));
    return list;
}

CatalogueItem readItem(const config::JsonFile& file, const Pointer& pointer)
{
    const config::MemberReader members(file, pointer);
    static const QStringList known = {QStringLiteral("id"), QStringLiteral("name"),
                                      QStringLiteral("type"), QStringLiteral("length"),
                                      QStringLiteral("alert")};
    members.refuseOthers(known);
    CatalogueItem item;
    item.id = members.requiredText("id");
    item.name = members.requiredText("name");
    item.type = members.requiredText("type");
    if (!value::findItemType(item.type)) {
        members.fail("type", QStringLiteral("\"%1\" is no type; the types are: %2")
                                 .arg(item.type, value::allItemTypeNames()));
    }
    item.length = members.optionalNumber("length", 0, std::numeric_limits<int>::min(),
                                         std::numeric_limits<int>::max());
    item.alert = members.optionalFlag("alert", false);
    return item;
}

CatalogueGroup readGroup(const config::JsonFile& file, const Pointer& pointer)
{
    const config::MemberReader members(file, pointer);
    members.refuseOthers({QStringLiteral("id"), QStringLiteral("name"), QStringLiteral("location"),
                          QStringLiteral("permission"), QStringLiteral("alert"),
                          QStringLiteral("items")});
    CatalogueGroup group;
    group.id = members.requiredText("id");
    group.name = members.requiredText("name");
    group.location = members.optionalText("location", QString());
    group.permission = members.optionalText("permission", QStringLiteral("RW"));
    group.alert = members.optionalFlag("alert", false);
    const std::size_t count = listAt(file, pointer, "items").size();
    for (std::size_t i = 0; i < count; ++i)
        group.items << readItem(file, pointer / "items" / i);
    return group;
}

} // namespace

QString catalogueJson(const Catalogue& catalogue)
{
    value::OrderedJson groups = value::OrderedJson::array();
    for (const CatalogueGroup& group : catalogue.groups)
        groups.push_back(jsonOf(group));
    const QString url = QUrl(catalogue.url).toString(QUrl::RemoveUserInfo);
    const value::OrderedJson root = {{"service",
                                      {{"url", url.toStdString()},
                                       {"project", catalogue.project.toStdString()},
                                       {"email", catalogue.email.toStdString()}}},
                                     {"groups", groups}};
    return QString::fromStdString(root.dump(2)) + QLatin1Char('\n');
}

bool isCatalogueFile(const config::JsonFile& file)
{
    return file.root.is_object() && file.root.contains("groups");
}

Catalogue readCatalogue(const config::JsonFile& file)
{
    const config::MemberReader members(file, Pointer());
    members.refuseOthers({QStringLiteral("service"), QStringLiteral("groups")});
    if (!members.has("service"))
        file.fail(Pointer(), QStringLiteral("the member \"service\" is missing"));
    Catalogue catalogue;
    const config::MemberReader service(file, Pointer("/service"));
    service.refuseOthers(
        {QStringLiteral("url"), QStringLiteral("project"), QStringLiteral("email")});
    catalogue.url = service.optionalText("url", QString());
    if (service.has("url"))
        config::checkUrl(catalogue.url, file.place(Pointer("/service/url")));
    catalogue.project = service.optionalText("project", QString());
    catalogue.email = service.optionalText("email", QString());
    const std::size_t count = listAt(file, Pointer(), "groups").size();
    for (std::size_t i = 0; i < count; ++i)
        catalogue.groups << readGroup(file, Pointer("/groups") / i);
    return catalogue;
}

config::JsonFile readJsonAs(const QString& path, const QString& what)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw terminal::UsageError(
            QStringLiteral("cannot read the %1 \"%2\": %3").arg(what, path, file.errorString()));
    }
    return config::readJson(path);
}

} // namespace tovik_host::service
