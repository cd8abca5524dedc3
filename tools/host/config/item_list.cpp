#include "tools/host/config/item_list.h"

#include <QHash>

namespace tovik_host::config {

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

} // namespace tovik_host::config
