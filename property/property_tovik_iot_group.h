#ifndef PROPERTY_PROPERTY_TOVIK_IOT_GROUP_H
#define PROPERTY_PROPERTY_TOVIK_IOT_GROUP_H

#include "compat/export.h"
#include "property/property_tovik_iot_dataitem.h"

#include <QDataStream>
#include <QList>
#include <QString>

/// One group of the service's catalogue with its data items.
///
/// A plain value; not for sharing between threads without a lock. Members stand in the order in
/// which they are streamed and compared.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): hosts know the table without one
class TOVIK_EXPORT PropertyTovikIotGroup
{
public:
    /// A group with the defaults of Initial() and no items.
    PropertyTovikIotGroup();
    /// A copy of every member of \a other.
    PropertyTovikIotGroup(const PropertyTovikIotGroup& other);
    /// Copies every member of \a other.
    PropertyTovikIotGroup& operator=(const PropertyTovikIotGroup& other);

    /// Resets every member but the list of items to its default.
    virtual void Initial();
    /// Copies every member of \a other, the list included (shared until one side changes it).
    void RenewAllmemeber(const PropertyTovikIotGroup& other);

    /// Compares every member, `marked` and the items included.
    bool operator==(const PropertyTovikIotGroup& other);
    /// Whether any member differs.
    bool operator!=(const PropertyTovikIotGroup& other);

    QString group_id;   ///< The service's id of the group. Default: empty.
    QString name;       ///< As the service reports it. Default: empty.
    QString location;   ///< As the service reports it. Default: empty.
    QString ddLocation; ///< As the service reports it. Default: empty.
    bool alert;         ///< As the service reports it. Default false.
    QString permission; ///< Access right as the service reports it. Default "RW".
    bool marked;        ///< For configuration tools; the driver only carries it. Default false.
    QList<PropertyTovikIotDataItem> dataitems; ///< The group's items. Default: none.
};

/// Writes all members in order, with the stream's own version and byte order. Registers the stream
/// operators of the meta-type `PropertyTovikIot` first, as the three operators like it do.
TOVIK_EXPORT QDataStream& operator<<(QDataStream& stream, const PropertyTovikIotGroup& group);
/// Reads what the writer wrote; the list of items ends at the item in which the stream ended.
TOVIK_EXPORT QDataStream& operator>>(QDataStream& stream, PropertyTovikIotGroup& group);

#endif
