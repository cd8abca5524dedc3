#include "tools/host/config/config.h"

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

value::EncodedValue bytesOf(const ItemConfig& item, const QString& text)
{
    if (item.elements == 1)
        return value::encodeValue(*item.type, text, item.length);
    const QStringList values = text.split(u' ', Qt::SkipEmptyParts);
    value::EncodedValue all;
    if (values.size() != item.elements) {
        all.problem = u"the item has %1 elements, and here are %2 values"_s.arg(item.elements)
                          .arg(values.size());
    }
    for (const QString& value : values) {
        const value::EncodedValue one = value::encodeValue(*item.type, value, 0);
        if (all.ok())
            all.problem = one.problem;
        all.bytes += one.bytes;
    }
    return all;
}

} // namespace tovik_host::config
