#include "property/property_tovik_iot_dataitem.h"

#include "property/list_stream.h"
#include "property/stream_registration.h"
#include "property/value_stream.h"

namespace {

/// One text for all items, instead of a new one for each that is made. Never destroyed: items may
/// be made in another thread while the process ends.
const QString& defaultType()
{
    static const QString& type = *new QString(QLatin1String("16Bit-INT"));
    return type;
}

} // namespace

PropertyTovikIotDataItem::PropertyTovikIotDataItem()
    : length(0),
      cloud_status(0),
      alert(false),
      update_time(0),
      marked(false)
{
    PropertyTovikIotDataItem::Initial();
}

PropertyTovikIotDataItem::PropertyTovikIotDataItem(const PropertyTovikIotDataItem& other)
    : length(0),
      cloud_status(0),
      alert(false),
      update_time(0),
      marked(false)
{
    RenewAllmemeber(other);
}

PropertyTovikIotDataItem& PropertyTovikIotDataItem::operator=(const PropertyTovikIotDataItem& other)
{
    if (this != &other)
        RenewAllmemeber(other);
    return *this;
}

void PropertyTovikIotDataItem::Initial()
{
    name = QString();
    dataitem_id = QString();
    type = defaultType();
    length = 1;
    value = QVariant(QString(QLatin1String("")));
    cloud_status = 0;
    alert = false;
    update_time = 0;
    marked = false;
}

void PropertyTovikIotDataItem::RenewAllmemeber(const PropertyTovikIotDataItem& other)
{
    name = other.name;
    dataitem_id = other.dataitem_id;
    type = other.type;
    length = other.length;
    value = other.value;
    cloud_status = other.cloud_status;
    alert = other.alert;
    update_time = other.update_time;
    marked = other.marked;
}

bool PropertyTovikIotDataItem::operator==(const PropertyTovikIotDataItem& other)
{
    if (this == &other)
        return true;
    return name == other.name && dataitem_id == other.dataitem_id && type == other.type &&
           length == other.length && value == other.value && cloud_status == other.cloud_status &&
           alert == other.alert && update_time == other.update_time && marked == other.marked;
}

bool PropertyTovikIotDataItem::operator!=(const PropertyTovikIotDataItem& other)
{
    return !(*this == other);
}

QDataStream& operator<<(QDataStream& stream, const PropertyTovikIotDataItem& item)
{
    RegisterConfigurationStreaming();
    stream << item.name << item.dataitem_id << item.type << qint32(item.length) << item.value
           << qint32(item.cloud_status) << item.alert << qint32(item.update_time) << item.marked;
    return stream;
}

QDataStream& operator>>(QDataStream& stream, PropertyTovikIotDataItem& item)
{
    RegisterConfigurationStreaming();
    QString buffer;
    ReadMembers(stream, &item, &buffer);
    return stream;
}

void ReadMembers(QDataStream& stream, PropertyTovikIotDataItem* item, QString* buffer)
{
    ReadText(stream, &item->name, buffer);
    ReadText(stream, &item->dataitem_id, buffer);
    stream >> item->type >> item->length;
    ReadValue(stream, &item->value);
    stream >> item->cloud_status >> item->alert >> item->update_time >> item->marked;
}
