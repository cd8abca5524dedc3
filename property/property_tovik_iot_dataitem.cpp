#include "property/property_tovik_iot_dataitem.h"

#include "property/list_stream.h"
#include "property/members.h"

namespace {

typedef PropertyTovikIotDataItem Item;

/// The members in the order in which they are copied, compared and streamed.
template <typename Visitor>
bool visitMembers(const Visitor& visit)
{
    return visit(&Item::name) && visit(&Item::dataitem_id) && visit(&Item::type) &&
           visit(&Item::length) && visit(&Item::value) && visit(&Item::cloud_status) &&
           visit(&Item::alert) && visit(&Item::update_time) && visit(&Item::marked);
}

/// One text for all items, instead of a new one for each that is made. Never destroyed: items may
/// be made in another thread while the process ends.
const QString& defaultType()
{
    static const QString& type = *new QString(QLatin1String("16Bit-INT"));
    return type;
}

} // namespace

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): Initial() gives every member a value
PropertyTovikIotDataItem::PropertyTovikIotDataItem()
{
    PropertyTovikIotDataItem::Initial();
}

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): RenewAllmemeber() does
PropertyTovikIotDataItem::PropertyTovikIotDataItem(const PropertyTovikIotDataItem& other)
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
    visitMembers(MemberCopy<Item>{this, &other});
}

bool PropertyTovikIotDataItem::operator==(const PropertyTovikIotDataItem& other)
{
    return this == &other || visitMembers(MemberComparison<Item>{this, &other});
}

bool PropertyTovikIotDataItem::operator!=(const PropertyTovikIotDataItem& other)
{
    return !(*this == other);
}

QDataStream& operator<<(QDataStream& stream, const PropertyTovikIotDataItem& item)
{
    RegisterConfigurationStreaming();
    visitMembers(MemberWriter<Item>{stream, item});
    return stream;
}

QDataStream& operator>>(QDataStream& stream, PropertyTovikIotDataItem& item)
{
    RegisterConfigurationStreaming();
    Reading reading;
    ReadMembers(stream, &item, &reading);
    return stream;
}

void ReadMembers(QDataStream& stream, PropertyTovikIotDataItem* item, Reading* reading)
{
    visitMembers(MemberReader<Item>{stream, item, reading});
}
