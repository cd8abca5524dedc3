#include "tools/host/service/catalogue.h"

#include "tools/host/config/config_file.h"
#include "tools/host/terminal/text.h"
#include "tools/host/value/json_text.h"

#include <QUrl>

#include <limits>

namespace tovik_host::service {

QString CatalogueItem::shownType() const
{
    return type == QLatin1String("String") ? u"%1(%2)"_s.arg(type).arg(length) : type;
}

int Catalogue::itemCount() const
{
    int count = 0;
    for (const CatalogueGroup& group : groups)
        count += group.items.size();
    return count;
}

QVector<CatalogueGroup> catalogueGroups(const QList<PropertyTovikIotGroup>& loaded)
{
    QVector<CatalogueGroup> groups;
    groups.reserve(loaded.size());
    for (const PropertyTovikIotGroup& from : loaded) {
        CatalogueGroup group = {from.group_id,   from.name,  from.location,
                                from.permission, from.alert, {}};
        group.items.reserve(from.dataitems.size());
        for (const PropertyTovikIotDataItem& item : from.dataitems)
            group.items << CatalogueItem{item.dataitem_id, item.name, item.type, item.length,
                                         item.alert};
        groups << group;
    }
    return groups;
}

QVector<OfferedItem> offeredItems(const QVector<CatalogueGroup>& groups)
{
    QVector<OfferedItem> offered;
    for (const CatalogueGroup& group : groups) {
        for (const CatalogueItem& item : group.items)
            offered << OfferedItem{item, group.id, group.name};
    }
    return offered;
}

QString counted(int count, const QString& noun)
{
    return u"%1 %2%3"_s.arg(count).arg(noun, count == 1 ? QString() : u"s"_s);
}

namespace {

value::OrderedJson jsonOf(const CatalogueItem& item)
{
    return {{"id", item.id},
            {"name", item.name},
            {"type", item.type},
            {"length", item.length},
            {"alert", item.alert}};
}

value::OrderedJson jsonOf(const CatalogueGroup& group)
{
    value::OrderedJson items = value::OrderedJson::array();
    for (const CatalogueItem& item : group.items)
        items.push_back(jsonOf(item));
    return {{"id", group.id},
            {"name", group.name},
            {"location", group.location},
            {"permission", group.permission},
            {"alert", group.alert},
            {"items", items}};
}

CatalogueItem readItem(const config::JsonPlace& place)
{
    static const QStringList known = {u"id"_s, u"name"_s, u"type"_s, u"length"_s, u"alert"_s};
    place.allowOnly(known);
    CatalogueItem item;
    item.id = place.requiredText("id");
    item.name = place.requiredText("name");
    item.type = QString::fromLatin1(config::itemType(place).name);
    item.length = place.optionalNumber("length", 0, std::numeric_limits<int>::min(),
                                       std::numeric_limits<int>::max());
    item.alert = place.optionalFlag("alert", false);
    return item;
}

CatalogueGroup readGroup(const config::JsonPlace& place)
{
    place.allowOnly({"id", "name", "location", "permission", "alert", "items"});
    CatalogueGroup group;
    group.id = place.requiredText("id");
    group.name = place.requiredText("name");
    group.location = place.optionalText("location");
    group.permission = place.optionalText("permission", u"RW"_s);
    group.alert = place.optionalFlag("alert", false);
    for (const config::JsonPlace& item : place.at("items").elements())
        group.items << readItem(item);
    return group;
}

} // namespace

QString catalogueJson(const Catalogue& catalogue)
{
    value::OrderedJson groups = value::OrderedJson::array();
    for (const CatalogueGroup& group : catalogue.groups)
        groups.push_back(jsonOf(group));
    const QString url = QUrl(catalogue.account.url).toString(QUrl::RemoveUserInfo);
    return value::jsonText({{"version", value::json_version},
                            {"service",
                             {{"url", url},
                              {"project", catalogue.account.project},
                              {"email", catalogue.account.email}}},
                            {"groups", groups}});
}

bool isCatalogue(const config::JsonFile& file)
{
    return config::JsonPlace(file).has("groups");
}

Catalogue readCatalogue(const config::JsonFile& file)
{
    const config::JsonPlace root(file);
    if (root.has("items")) {
        root.fail(
            u"is a configuration, and a catalogue is wanted, such as tovik-host catalogue --json "
            "prints"_s);
    }
    root.allowOnly({"version", "service", "groups"});
    root.optionalNumber("version", value::json_version, value::json_version, value::json_version);
    const config::JsonPlace service = root.at("service");
    service.allowOnly({"url", "project", "email"});
    Catalogue catalogue;
    if (service.has("url"))
        catalogue.account.url =
            config::checkedUrl(service.at("url").text(), service.at("url").where());
    catalogue.account.project = service.optionalText("project");
    catalogue.account.email = service.optionalText("email");
    for (const config::JsonPlace& group : root.at("groups").elements())
        catalogue.groups << readGroup(group);
    return catalogue;
}

namespace {

QString heading(const Catalogue& catalogue)
{
    return u"%1  project %2: %3, %4\n"_s.arg(
        QUrl(catalogue.account.url).toString(QUrl::RemoveUserInfo),
        terminal::printable(catalogue.account.project),
        counted(catalogue.groups.size(), u"group"_s), counted(catalogue.itemCount(), u"item"_s));
}

QString remarks(const CatalogueGroup& group, bool alert)
{
    QStringList remarks;
    if (group.isReadOnly())
        remarks << u"read-only"_s;
    if (alert)
        remarks << u"alert"_s;
    return remarks.join(u", "_s);
}

QString text(const QStringList& lines)
{
    return lines.join(u'\n') + u'\n';
}

QString groupTree(const CatalogueGroup& group)
{
    QStringList parts = {terminal::printable(group.name),
                         u"(%1)"_s.arg(terminal::printable(group.id)),
                         terminal::printable(group.location), remarks(group, group.alert)};
    parts.removeAll(QString());
    const QString line = parts.join(u"  "_s) + u'\n';
    if (group.items.isEmpty())
        return line + u"  (no items)\n"_s;
    QVector<QStringList> rows;
    for (const CatalogueItem& item : group.items)
        rows << QStringList{terminal::printable(item.name), terminal::printable(item.id),
                            item.shownType(), remarks(group, item.alert)};
    return line + text(terminal::columns(rows, u"  "_s));
}

} // namespace

QString catalogueTree(const Catalogue& catalogue)
{
    QString tree = heading(catalogue);
    for (const CatalogueGroup& group : catalogue.groups)
        tree += u'\n' + groupTree(group);
    return tree;
}

QString catalogueTable(const Catalogue& catalogue)
{
    QVector<QStringList> rows = {{u"GROUP"_s, u"ITEM"_s, u"ID"_s, u"TYPE"_s, u"REMARKS"_s}};
    for (const CatalogueGroup& group : catalogue.groups) {
        for (const CatalogueItem& item : group.items) {
            rows << QStringList{terminal::printable(group.name), terminal::printable(item.name),
                                terminal::printable(item.id), item.shownType(),
                                remarks(group, item.alert)};
        }
    }
    return text(terminal::columns(rows));
}

} // namespace tovik_host::service
