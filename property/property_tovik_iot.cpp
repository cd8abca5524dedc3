#include "property/property_tovik_iot.h"

#include "property/list_stream.h"
#include "property/members.h"

namespace {

typedef PropertyTovikIot Root;

/// The members in the order in which they are copied, compared and streamed.
template <typename Visitor>
bool visitMembers(const Visitor& visit)
{
    return visit(&Root::aux_flag) && visit(&Root::host) && visit(&Root::aux_value) &&
           visit(&Root::project) && visit(&Root::email) && visit(&Root::password) &&
           visit(&Root::groups) && visit(&Root::dataitems);
}

} // namespace

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): Initial() gives every member a value
PropertyTovikIot::PropertyTovikIot()
{
    PropertyTovikIot::Initial();
}

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): RenewAllmemeber() does
PropertyTovikIot::PropertyTovikIot(const PropertyTovikIot& other)
{
    RenewAllmemeber(other);
}

PropertyTovikIot& PropertyTovikIot::operator=(const PropertyTovikIot& other)
{
    if (this != &other)
        RenewAllmemeber(other);
    return *this;
}

PropertyTovikIot::~PropertyTovikIot() = default;

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
    visitMembers(MemberCopy<Root>{this, &other});
}

bool PropertyTovikIot::operator==(const PropertyTovikIot& other)
{
    return this == &other || visitMembers(MemberComparison<Root>{this, &other});
}

bool PropertyTovikIot::operator!=(const PropertyTovikIot& other)
{
    return !(*this == other);
}

QDataStream& operator<<(QDataStream& stream, const PropertyTovikIot& property)
{
    visitMembers(MemberWriter<Root>{stream, property});
    return stream;
}

QDataStream& operator>>(QDataStream& stream, PropertyTovikIot& property)
{
    Reading reading;
    visitMembers(MemberReader<Root>{stream, &property, &reading});
    return stream;
}
