#ifndef TOOLS_HOST_SERVICE_CATALOGUE_DATA_H
#define TOOLS_HOST_SERVICE_CATALOGUE_DATA_H

#include "property/property_tovik_iot_group.h"

#include <QList>
#include <QString>
#include <QVector>

namespace tovik_host::service {

/// A data item as the service's catalogue has it.
struct CatalogueItem
{
    QString id;
    QString name;
    QString type; ///< One of the driver's types.
    int length = 0;
    bool alert = false;
};

/// A group of the catalogue.
struct CatalogueGroup
{
    QString id;
    QString name;
    QString location;
    QString permission; ///< Without a W, its items cannot be written to.
    bool alert = false;
    QVector<CatalogueItem> items;

    bool isReadOnly() const { return !permission.contains(QLatin1Char('W'), Qt::CaseInsensitive); }
};

/// What a service offers to an account, and whose view it is.
struct Catalogue
{
    QString url;
    QString project;
    QString email;
    QVector<CatalogueGroup> groups;

    int itemCount() const;
};

/// The groups as the client has loaded them.
QVector<CatalogueGroup> catalogueGroups(const QList<PropertyTovikIotGroup>& loaded);

/// "1 group", "3 groups".
QString counted(int count, const QString& noun);

} // namespace tovik_host::service

#endif
