#include "tests/property/stream_bytes.h"

#include <cstring>

StreamBytes& StreamBytes::word(quint64 value, int size)
{
    for (int i = 0; i < size; ++i) {
        const int place = format_.order == QDataStream::BigEndian ? size - 1 - i : i;
        bytes_.append(char((value >> (8 * place)) & 0xff));
    }
    return *this;
}

StreamBytes& StreamBytes::flag(bool value)
{
    return word(value ? 1 : 0, 1);
}

StreamBytes& StreamBytes::number(int value)
{
    return word(quint32(value), 4);
}

StreamBytes& StreamBytes::text(const QString& value)
{
    if (value.isNull())
        return word(0xffffffff, 4);
    word(2 * quint64(value.size()), 4);
    for (const QChar character : value)
        word(character.unicode(), 2);
    return *this;
}

StreamBytes& StreamBytes::typeTag(int qt4_number, int qt5_number)
{
    return word(quint64(format_.isQt4() ? qt4_number : qt5_number), 4).flag(false);
}

StreamBytes& StreamBytes::floatingPoint(float value)
{
    if (!format_.hasWideFloats()) {
        quint32 bits = 0;
        std::memcpy(&bits, &value, sizeof(bits));
        return word(bits, 4);
    }
    const double wide = double(value);
    quint64 bits = 0;
    std::memcpy(&bits, &wide, sizeof(bits));
    return word(bits, 8);
}

StreamBytes& StreamBytes::variant(const QVariant& value)
{
    switch (value.userType()) {
    case QMetaType::Bool:
        return typeTag(1, 1).flag(value.toBool());
    case QMetaType::Int:
        return typeTag(2, 2).number(value.toInt());
    case QMetaType::UInt:
        return typeTag(3, 3).word(value.toUInt(), 4);
    case QMetaType::QString:
        return typeTag(10, 10).text(value.toString());
    case QMetaType::QByteArray:
        typeTag(12, 12).word(quint64(value.toByteArray().size()), 4);
        bytes_.append(value.toByteArray());
        return *this;
    case QMetaType::Short:
        return typeTag(130, 33).word(quint16(value.value<short>()), 2);
    case QMetaType::UShort:
        return typeTag(133, 36).word(value.value<ushort>(), 2);
    case QMetaType::Float:
        return typeTag(135, 38).floatingPoint(value.value<float>());
    default: // none: Qt 4 wrote a null text after it
        word(0, 4).flag(true);
        return format_.isQt4() ? text(QString()) : *this;
    }
}

StreamBytes& StreamBytes::item(const PropertyTovikIotDataItem& item)
{
    text(item.name).text(item.dataitem_id).text(item.type).number(item.length);
    variant(item.value);
    return number(item.cloud_status).flag(item.alert).number(item.update_time).flag(item.marked);
}

StreamBytes& StreamBytes::items(const QList<PropertyTovikIotDataItem>& items)
{
    number(items.size());
    for (const PropertyTovikIotDataItem& one : items)
        item(one);
    return *this;
}

StreamBytes& StreamBytes::group(const PropertyTovikIotGroup& group)
{
    text(group.group_id).text(group.name).text(group.location).text(group.ddLocation);
    flag(group.alert).text(group.permission).flag(group.marked);
    return items(group.dataitems);
}

StreamBytes& StreamBytes::root(const PropertyTovikIot& root)
{
    flag(root.aux_flag).text(root.host).number(root.aux_value);
    text(root.project).text(root.email).text(root.password);
    number(root.groups.size());
    for (const PropertyTovikIotGroup& one : root.groups)
        group(one);
    return items(root.dataitems);
}
