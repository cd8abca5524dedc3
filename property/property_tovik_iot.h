#ifndef PROPERTY_PROPERTY_TOVIK_IOT_H
#define PROPERTY_PROPERTY_TOVIK_IOT_H

#include "compat/export.h"
#include "property/property_tovik_iot_dataitem.h"
#include "property/property_tovik_iot_group.h"

#include <QDataStream>
#include <QList>
#include <QMetaType>
#include <QString>

/// The cloud driver's whole configuration: where the service is, the account, the catalogue that
/// the service reported, and the data items that the driver serves.
///
/// The host stores it as a variant under "tovik_iot" in the link's driver-specific data. A plain
/// value; members stand in the order in which they are streamed and compared. docs/hazards.md says
/// what driver and client share of it while a driver runs.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): hosts know the table without one
class TOVIK_EXPORT PropertyTovikIot
{
public:
    /// A configuration with the defaults of Initial(), no groups and no served items.
    PropertyTovikIot();
    /// A copy of every member of \a other.
    PropertyTovikIot(const PropertyTovikIot& other);
    /// Copies every member of \a other.
    PropertyTovikIot& operator=(const PropertyTovikIot& other);
    /// Not virtual: a configuration is never deleted through a base.
    ~PropertyTovikIot();

    /// Resets every member but the two lists to its default.
    virtual void Initial();
    /// Copies every member of \a other, the lists included (shared until one side changes them).
    void RenewAllmemeber(const PropertyTovikIot& other);

    /// Compares every member, the lists and `marked` flags included.
    bool operator==(const PropertyTovikIot& other);
    /// Whether any member differs.
    bool operator!=(const PropertyTovikIot& other);

    bool aux_flag;    ///< Carried, not used by the driver. Default false.
    QString host;     ///< Base URL of the service. Default "https://cloud.example".
    int aux_value;    ///< Carried, not used by the driver. Default 0.
    QString project;  ///< Project name, sent at login. Default: empty.
    QString email;    ///< Account, sent at login. Default: empty.
    QString password; ///< Sent at login; kept and stored as plain text. Default: empty.
    QList<PropertyTovikIotGroup> groups; ///< Catalogue; the client rebuilds it on every connect.
    QList<PropertyTovikIotDataItem> dataitems; ///< Served items, polled and found in this order.
};

Q_DECLARE_METATYPE(PropertyTovikIot)

/// Writes all members in order, with the stream's own version and byte order.
TOVIK_EXPORT QDataStream& operator<<(QDataStream& stream, const PropertyTovikIot& property);
/// Reads what the writer wrote; a list ends at the element in which the stream ended.
TOVIK_EXPORT QDataStream& operator>>(QDataStream& stream, PropertyTovikIot& property);

#endif
