#include "tests/property/stream_model.h"

#include <cstring>

QByteArray StreamModel::take(int size)
{
    if (bytes_.size() - position_ < size) {
        position_ = bytes_.size();
        return QByteArray();
    }
    position_ += size;
    return bytes_.mid(position_ - size, size);
}

quint64 StreamModel::word(int size)
{
    const QByteArray taken = take(size);
    quint64 value = 0;
    for (int i = 0; i < taken.size(); ++i) {
        const int place = format_.order == QDataStream::BigEndian ? i : taken.size() - 1 - i;
        value = value << 8 | quint8(taken.at(place));
    }
    return value;
}

QString StreamModel::text()
{
    const quint64 size = word(4);
    if (size == 0xffffffff)
        return QString();
    const int end = position_ + int(size);
    QString value;
    if (end > bytes_.size())
        position_ = bytes_.size();
    while (position_ < end && !atEnd())
        value.append(QChar(ushort(word(2))));
    return value;
}

float StreamModel::floatingPoint()
{
    if (!format_.hasWideFloats()) {
        const quint32 bits = quint32(word(4));
        float value = 0;
        std::memcpy(&value, &bits, sizeof(value));
        return value;
    }
    const quint64 bits = word(8);
    double value = 0;
    std::memcpy(&value, &bits, sizeof(value));
    return float(value);
}

QVariant StreamModel::variantOf(int type)
{
    switch (type) {
    case 1:
        return flag();
    case 2:
        return number();
    case 3:
        return quint32(word(4));
    case 10:
        return text();
    case 12:
        return take(int(word(4)));
    case 130:
        return QVariant::fromValue(short(word(2)));
    case 133:
        return QVariant::fromValue(ushort(word(2)));
    case 135:
        return QVariant::fromValue(floatingPoint());
    default:
        return QVariant();
    }
}

QVariant StreamModel::variant()
{
    const int type = number();
    flag(); // says that the value is null
    if (type == 0 && format_.isQt4())
        text();
    // Qt 5 counts the small numbers from 33, where Qt 4 counted them from 130.
    return variantOf(type >= 33 && type < 128 ? type + 97 : type);
}

PropertyTovikIotDataItem StreamModel::item()
{
    PropertyTovikIotDataItem item;
    item.name = text();
    item.dataitem_id = text();
    item.type = text();
    item.length = number();
    item.value = variant();
    item.cloud_status = number();
    item.alert = flag();
    item.update_time = number();
    item.marked = flag();
    return item;
}

QList<PropertyTovikIotDataItem> StreamModel::items()
{
    QList<PropertyTovikIotDataItem> items;
    const int count = number();
    while (items.size() < count && (items.isEmpty() || !atEnd()))
        items.append(item());
    return items;
}

PropertyTovikIotGroup StreamModel::group()
{
    PropertyTovikIotGroup group;
    group.group_id = text();
    group.name = text();
    group.location = text();
    group.ddLocation = text();
    group.alert = flag();
    group.permission = text();
    group.marked = flag();
    group.dataitems = items();
    return group;
}

PropertyTovikIot StreamModel::root()
{
    PropertyTovikIot root;
    root.aux_flag = flag();
    root.host = text();
    root.aux_value = number();
    root.project = text();
    root.email = text();
    root.password = text();
    const int count = number();
    while (root.groups.size() < count && (root.groups.isEmpty() || !atEnd()))
        root.groups.append(group());
    root.dataitems = items();
    return root;
}
