#include "property/stream_registration.h"

#include "property/property_tovik_iot.h"

namespace {

void Save(QDataStream& stream, const void* property)
{
    stream << *static_cast<const PropertyTovikIot*>(property);
}

void Load(QDataStream& stream, void* property)
{
    stream >> *static_cast<PropertyTovikIot*>(property);
}

} // namespace

void RegisterConfigurationStreaming()
{
    QMetaType::registerStreamOperators(qMetaTypeId<PropertyTovikIot>(), Save, Load);
}
