#include "property/property_tovik_iot.h"

#include "property/list_stream.h"

PropertyTovikIot::PropertyTovikIot() : aux_flag(false), aux_value(0)
{
    PropertyTovikIot::Initial();
}

PropertyTovikIot::PropertyTovikIot(const PropertyTovikIot& other) : aux_flag(false), aux_value(0)
{
    RenewAllmemeber(other);
}

PropertyTovikIot& PropertyTovikIot::operator=(const PropertyTovikIot& other)
{
    if (this != &other)
        RenewAllmemeber(other);
    return *this;
}

PropertyTovikIot::~PropertyTovikIot()
{
    groups.clear();
}

void PropertyTovikIot::Initial()
{
    aux_flag = false;
    host = QLatin1String("https://cloud.example");
    aux_value = 0;
    project = QString();
    email = QString();
    password = QString();
}

void PropertyTovikIot::RenewAllmemeber(const PropertyTovikIot& other)
{
    aux_flag = other.aux_flag;
    host = other.host;
    aux_value = other.aux_value;
    project = other.project;
    email = other.email;
    password = other.password;
    groups = other.groups;
    dataitems = other.dataitems;
}

bool PropertyTovikIot::operator==(const PropertyTovikIot& other)
{
    if (this == &other)
        return true;
    return aux_flag == other.aux_flag && host == other.host && aux_value == other.aux_value &&
           project == other.project && email == other.email && password == other.password &&
           groups == other.groups && dataitems == other.dataitems;
}

bool PropertyTovikIot::operator!=(const PropertyTovikIot& other)
{
    return !(*this == other);
}

QDataStream& operator<<(QDataStream& stream, const PropertyTovikIot& property)
{
    stream << property.aux_flag << property.host << qint32(property.aux_value) << property.project
           << property.email << property.password;
    WriteList(stream, property.groups);
    return WriteList(stream, property.dataitems);
}

QDataStream& operator>>(QDataStream& stream, PropertyTovikIot& property)
{
    stream >> property.aux_flag >> property.host >> property.aux_value >> property.project >>
        property.email >> property.password;
    ReadList(stream, &property.groups, smallest_group_record, &PropertyTovikIotGroup::permission);
    return ReadList(stream, &property.dataitems, smallest_dataitem_record,
                    &PropertyTovikIotDataItem::type);
}
