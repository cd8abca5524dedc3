#include "tools/host/config/config.h"

#include "tools/host/terminal/exit_code.h"

#include "property/property_tovik_iot.h"

#include <QSet>

#include <fnmatch.h>

namespace tovik_host::config {

std::optional<QString> valueOf(const ItemConfig& item, const QByteArray& bytes)
{
    if (item.elements == 1)
        return value::decodeValue(*item.type, bytes);
    QStringList values;
    for (int i = 0; i < item.elements; ++i) {
        const QByteArray one = bytes.mid(i * item.type->size, item.type->size);
        const std::optional<QString> value = value::decodeValue(*item.type, one);
        if (!value)
            return std::nullopt;
        values << *value;
    }
    return values.join(u' ');
}

QByteArray bytesOf(const ItemConfig& item, const QString& text)
{
    if (item.elements == 1)
        return value::encodeValue(*item.type, text, item.length);
    const QStringList values = text.split(u' ', Qt::SkipEmptyParts);
    if (values.size() != item.elements) {
        throw terminal::UsageError(
            u"the item has %1 elements, and here are %2 values"_s.arg(item.elements)
                .arg(values.size()));
    }
    QByteArray bytes;
    for (const QString& value : values)
        bytes += value::encodeValue(*item.type, value, 0);
    return bytes;
}

PropertyTovikIot recordOf(const Account& service, const QVector<ItemConfig>& items)
{
    PropertyTovikIot record;
    if (!service.url.isEmpty())
        record.host = service.url;
    record.project = service.project;
    record.email = service.email;
    record.password = service.password;
    for (const ItemConfig& config : items) {
        PropertyTovikIotDataItem item;
        item.name = config.name;
        item.dataitem_id = config.id;
        item.type = QLatin1String(config.type->name);
        if (config.length > 0)
            item.length = config.length;
        record.dataitems << item;
    }
    return record;
}

QVector<ItemConfig> chosenItems(const QVector<ItemConfig>& all, const QStringList& wanted,
                                const QString& whose, const QString& advice)
{
    QVector<ItemConfig> chosen;
    QSet<QString> taken;
    const auto take = [&](const ItemConfig& item) {
        if (!taken.contains(item.name))
            chosen << item;
        taken << item.name;
    };
    for (const QString& text : wanted) {
        if (const ItemConfig* item = findItem(all, text)) {
            take(*item);
            continue;
        }
        const QByteArray pattern = text.toUtf8();
        bool is_met = false;
        QStringList names;
        for (const ItemConfig& item : all) {
            names << item.name;
            if (::fnmatch(pattern.constData(), item.name.toUtf8().constData(), 0) != 0)
                continue;
            is_met = true;
            take(item);
        }
        if (is_met)
            continue;
        const QString near = terminal::nearText(text, names);
        throw terminal::UsageError(u"%1 has no item \"%2\""_s.arg(whose, text) +
                                   (near.isEmpty() ? advice : near));
    }
    return chosen;
}

void RequestOptions::fill(ItemRequest* request) const
{
    request->station = station.value_or(request->station);
    request->field1 = field1.value_or(request->field1);
    request->extra1 = extra1.value_or(request->extra1);
    request->extra2 = extra2.value_or(request->extra2);
}

} // namespace tovik_host::config
