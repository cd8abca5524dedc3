#ifndef PROPERTY_PROPERTY_TOVIK_IOT_DATAITEM_H
#define PROPERTY_PROPERTY_TOVIK_IOT_DATAITEM_H

#include "compat/export.h"

#include <QDataStream>
#include <QString>
#include <QVariant>

/// One data item of the service: an entry of a group's catalogue, or one that the driver serves.
///
/// A plain value; not for sharing between threads without a lock. Members stand in the order in
/// which they are streamed and compared.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): hosts know the table without one
class TOVIK_EXPORT PropertyTovikIotDataItem
{
public:
    /// An item with the defaults of Initial().
    PropertyTovikIotDataItem();
    /// A copy of every member of \a other.
    PropertyTovikIotDataItem(const PropertyTovikIotDataItem& other);
    /// Copies every member of \a other.
    PropertyTovikIotDataItem& operator=(const PropertyTovikIotDataItem& other);

    /// Resets every member to its default.
    virtual void Initial();
    /// Copies every member of \a other; nothing of the old state is kept.
    void RenewAllmemeber(const PropertyTovikIotDataItem& other);

    /// Compares every member, `marked` included.
    bool operator==(const PropertyTovikIotDataItem& other);
    /// Whether any member differs.
    bool operator!=(const PropertyTovikIotDataItem& other);

    QString name;        ///< The host addresses the item by it. Default: empty.
    QString dataitem_id; ///< The service's id of the item. Default: empty.
    QString type;        ///< Type name, one of eleven (see docs/configuration.md). "16Bit-INT".
    int length;          ///< Length as the service reports it. Default 1.
    QVariant value;      ///< Latest known value. Default: an empty `QString`.
    int cloud_status;    ///< As the service reports it. Default 0.
    bool alert;          ///< As the service reports it. Default false.
    int update_time;     ///< As the service reports it. Default 0.
    bool marked;         ///< For configuration tools; the driver only carries it. Default false.
};

/// Writes all members in order, with the stream's own version and byte order. Registers the stream
/// operators of the meta-type `PropertyTovikIot` first, as the three operators like it do.
TOVIK_EXPORT QDataStream& operator<<(QDataStream& stream, const PropertyTovikIotDataItem& item);
/// Reads what the writer wrote. A stream that ends early leaves what Qt's failed reads give.
TOVIK_EXPORT QDataStream& operator>>(QDataStream& stream, PropertyTovikIotDataItem& item);

#endif
