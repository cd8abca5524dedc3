#include "property/property_tovik_iot_group.h"

#include "property/list_stream.h"
#include "property/members.h"

namespace {

typedef PropertyTovikIotGroup Group;

/// The members in the order in which they are copied, compared and streamed.
template <typename Visitor>
bool visitMembers(const Visitor& visit)
{
    return visit(&Group::group_id) && visit(&Group::name) && visit(&Group::location) &&
           visit(&Group::ddLocation) && visit(&Group::alert) && visit(&Group::permission) &&
           visit(&Group::marked) && visit(&Group::dataitems);
}

} // namespace

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): Initial() gives every member a value
PropertyTovikIotGroup::PropertyTovikIotGroup()
{
    PropertyTovikIotGroup::Initial();
}

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): RenewAllmemeber() does
PropertyTovikIotGroup::PropertyTovikIotGroup(const PropertyTovikIotGroup& other)
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
    visitMembers(MemberCopy<Group>{this, &other});
}

bool PropertyTovikIotGroup::operator==(const PropertyTovikIotGroup& other)
{
    return this == &other || visitMembers(MemberComparison<Group>{this, &other});
}

bool PropertyTovikIotGroup::operator!=(const PropertyTovikIotGroup& other)
{
    return !(*this == other);
}

QDataStream& operator<<(QDataStream& stream, const PropertyTovikIotGroup& group)
{
    RegisterConfigurationStreaming();
    visitMembers(MemberWriter<Group>{stream, group});
    return stream;
}

QDataStream& operator>>(QDataStream& stream, PropertyTovikIotGroup& group)
{
    RegisterConfigurationStreaming();
    Reading reading;
    ReadMembers(stream, &group, &reading);
    return stream;
}

void ReadMembers(QDataStream& stream, PropertyTovikIotGroup* group, Reading* reading)
{
    visitMembers(MemberReader<Group>{stream, group, reading});
}
