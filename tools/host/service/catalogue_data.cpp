#include "tools/host/service/catalogue_data.h"

namespace tovik_host::service {

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

QString counted(int count, const QString& noun)
{
    return QStringLiteral("%1 %2%3").arg(count).arg(noun,
                                                    count == 1 ? QString() : QStringLiteral("s"));
}

} // namespace tovik_host::service
