#include "property/property_tovik_iot_group.h"

#include "property/list_stream.h"
#include "property/stream_registration.h"

PropertyTovikIotGroup::PropertyTovikIotGroup() : alert(false), marked(false)
{
    PropertyTovikIotGroup::Initial();
}

PropertyTovikIotGroup::PropertyTovikIotGroup(const PropertyTovikIotGroup& other)
    : alert(false),
      marked(false)
{
    RenewAllmemeber(other);
}

PropertyTovikIotGroup& PropertyTovikIotGroup::operator=(const PropertyTovikIotGroup& other)
{
    if (this != &other)
        RenewAllmemeber(other);
    return *this;
}

void PropertyTovikIotGroup::Initial()
{
    group_id = QString();
    name = QString();
    location = QString();
    ddLocation = QString();
    alert = false;
    permission = QLatin1String("RW");
    marked = false;
}

void PropertyTovikIotGroup::RenewAllmemeber(const PropertyTovikIotGroup& other)
{
    group_id = other.group_id;
    name = other.name;
    location = other.location;
    ddLocation = other.ddLocation;
    alert = other.alert;
    permission = other.permission;
    marked = other.marked;
    dataitems = other.dataitems;
}

bool PropertyTovikIotGroup::operator==(const PropertyTovikIotGroup& other)
{
    if (this == &other)
        return true;
    return group_id == other.group_id && name == other.name && location == other.location &&
           ddLocation == other.ddLocation && alert == other.alert &&
           permission == other.permission && marked == other.marked && dataitems == other.dataitems;
}

bool PropertyTovikIotGroup::operator!=(const PropertyTovikIotGroup& other)
{
    return !(*this == other);
}

QDataStream& operator<<(QDataStream& stream, const PropertyTovikIotGroup& group)
{
    RegisterConfigurationStreaming();
    stream << group.group_id << group.name << group.location << group.ddLocation << group.alert
           << group.permission << group.marked;
    return WriteList(stream, group.dataitems);
}

QDataStream& operator>>(QDataStream& stream, PropertyTovikIotGroup& group)
{
    RegisterConfigurationStreaming();
    QString buffer;
    ReadMembers(stream, &group, &buffer);
    return stream;
}

void ReadMembers(QDataStream& stream, PropertyTovikIotGroup* group, QString* buffer)
{
    ReadText(stream, &group->group_id, buffer);
    ReadText(stream, &group->name, buffer);
    ReadText(stream, &group->location, buffer);
    ReadText(stream, &group->ddLocation, buffer);
    stream >> group->alert >> group->permission >> group->marked;
    ReadList(stream, &group->dataitems, smallest_dataitem_record, &PropertyTovikIotDataItem::type);
}
