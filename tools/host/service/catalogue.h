#ifndef TOOLS_HOST_SERVICE_CATALOGUE_H
#define TOOLS_HOST_SERVICE_CATALOGUE_H

#include "tools/host/config/config.h"
#include "tools/host/config/json_file.h"

#include "property/property_tovik_iot_group.h"

#include <QList>
#include <QString>
#include <QVector>

namespace tovik_host::service {

/// What a service offers to an account, and whose view it is.
struct Catalogue
{
    config::Account account;
    QList<PropertyTovikIotGroup> groups;

    int itemCount() const;
};

/// An item of a catalogue together with its group, or one of a configuration, which has none.
struct OfferedItem
{
    QString id;
    QString name;
    QString type; ///< One of the driver's types.
    int length = 0;
    bool alert = false;
    QString group_id = QString();
    QString group = QString(); ///< The group's name.

    QString path() const { return group.isEmpty() ? name : group + u'/' + name; }
    /// The type as it is shown: of a text with its length.
    QString shownType() const;
};

/// All items of \a groups, in their order.
QVector<OfferedItem> offeredItems(const QList<PropertyTovikIotGroup>& groups);

/// The catalogue as JSON, for people and for readCatalogue(); ends with a line break. It holds no
/// password, nor a user name and password within the address.
QString catalogueJson(const Catalogue& catalogue);
/// Whether \a file looks like a saved catalogue, right or wrong.
bool isCatalogue(const config::JsonFile& file);
/// Reads what catalogueJson() has written. Throws UsageError with file, line and member.
Catalogue readCatalogue(const config::JsonFile& file);

/// The catalogue as a tree of groups and items, for reading.
QString catalogueTree(const Catalogue& catalogue);
/// The catalogue as a table with a line for each item, for reading and searching.
QString catalogueTable(const Catalogue& catalogue);

/// "1 group", "3 groups".
QString counted(int count, const QString& noun);

} // namespace tovik_host::service

#endif
