#include "tools/host/service/catalogue.h"

#include "tools/host/config/config_file.h"
#include "tools/host/terminal/text.h"
#include "tools/host/value/json_text.h"

#include <QUrl>

#include <limits>

namespace tovik_host::service {

QString OfferedItem::shownType() const
{
    return type == QLatin1String("String") ? u"%1(%2)"_s.arg(type).arg(length) : type;
}

int Catalogue::itemCount() const
{
    int count = 0;
    for (const PropertyTovikIotGroup& group : groups)
        count += group.dataitems.size();
    return count;
}

QVector<OfferedItem> offeredItems(const QList<PropertyTovikIotGroup>& groups)
{
    QVector<OfferedItem> offered;
    for (const PropertyTovikIotGroup& group : groups) {
        for (const PropertyTovikIotDataItem& item : group.dataitems)
            offered << OfferedItem{item.dataitem_id, item.name,      item.type, item.length,
                                   item.alert,       group.group_id, group.name};
    }
    return offered;
}

QString counted(int count, const QString& noun)
{
    return u"%1 %2%3"_s.arg(count).arg(noun, count == 1 ? QString() : u"s"_s);
}

namespace {

value::OrderedJson jsonOf(const PropertyTovikIotGroup& group)
{
    value::OrderedJson items = value::OrderedJson::array();
    for (const PropertyTovikIotDataItem& item : group.dataitems) {
        items.push_back({{"id", item.dataitem_id},
                         {"name", item.name},
                         {"type", item.type},
                         {"length", item.length},
                         {"alert", item.alert}});
    }
    return {{"id", group.group_id},           {"name", group.name},   {"location", group.location},
            {"permission", group.permission}, {"alert", group.alert}, {"items", items}};
}

PropertyTovikIotDataItem readItem(const config::JsonPlace& place)
{
    static const QStringList known = {u"id"_s, u"name"_s, u"type"_s, u"length"_s, u"alert"_s};
    place.allowOnly(known);
    PropertyTovikIotDataItem item;
    item.dataitem_id = place.requiredText("id");
    item.name = place.requiredText("name");
    item.type = QString::fromLatin1(config::itemType(place).name);
    item.length = place.optionalNumber("length", 0, std::numeric_limits<int>::min(),
                                       std::numeric_limits<int>::max());
    item.alert = place.optionalFlag("alert", false);
    return item;
}

PropertyTovikIotGroup readGroup(const config::JsonPlace& place)
{
    place.allowOnly({"id", "name", "location", "permission", "alert", "items"});
    PropertyTovikIotGroup group;
    group.group_id = place.requiredText("id");
    group.name = place.requiredText("name");
    group.location = place.optionalText("location");
    group.permission = place.optionalText("permission", u"RW"_s);
    group.alert = place.optionalFlag("alert", false);
    for (const config::JsonPlace& item : place.at("items").elements())
        group.dataitems << readItem(item);
    return group;
}

} // namespace

QString catalogueJson(const Catalogue& catalogue)
{
    value::OrderedJson groups = value::OrderedJson::array();
    for (const PropertyTovikIotGroup& group : catalogue.groups)
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

/// \param alert of the group, or of one of its items
QString remarks(const PropertyTovikIotGroup& group, bool alert)
{
    QStringList remarks;
    if (!group.permission.contains(u'W', Qt::CaseInsensitive))
        remarks << u"read-only"_s;
    if (alert)
        remarks << u"alert"_s;
    return remarks.join(u", "_s);
}

QString text(const QStringList& lines)
{
    return lines.join(u'\n') + u'\n';
}

QString groupTree(const PropertyTovikIotGroup& group)
{
    QStringList parts = {terminal::printable(group.name),
                         u"(%1)"_s.arg(terminal::printable(group.group_id)),
                         terminal::printable(group.location), remarks(group, group.alert)};
    parts.removeAll(QString());
    const QString line = parts.join(u"  "_s) + u'\n';
    if (group.dataitems.isEmpty())
        return line + u"  (no items)\n"_s;
    QVector<QStringList> rows;
    for (const OfferedItem& item : offeredItems({group}))
        rows << QStringList{terminal::printable(item.name), terminal::printable(item.id),
                            item.shownType(), remarks(group, item.alert)};
    return line + text(terminal::columns(rows, u"  "_s));
}

} // namespace

QString catalogueTree(const Catalogue& catalogue)
{
    QString tree = heading(catalogue);
    for (const PropertyTovikIotGroup& group : catalogue.groups)
        tree += u'\n' + groupTree(group);
    return tree;
}

QString catalogueTable(const Catalogue& catalogue)
{
    QVector<QStringList> rows = {{u"GROUP"_s, u"ITEM"_s, u"ID"_s, u"TYPE"_s, u"REMARKS"_s}};
    for (const PropertyTovikIotGroup& group : catalogue.groups) {
        for (const OfferedItem& item : offeredItems({group})) {
            rows << QStringList{terminal::printable(group.name), terminal::printable(item.name),
                                terminal::printable(item.id), item.shownType(),
                                remarks(group, item.alert)};
        }
    }
    return text(terminal::columns(rows));
}

} // namespace tovik_host::service
