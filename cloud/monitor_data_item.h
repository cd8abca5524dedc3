#ifndef CLOUD_MONITOR_DATA_ITEM_H
#define CLOUD_MONITOR_DATA_ITEM_H

#include <QString>
#include <QVariant>

/// One value read from the service, on its way from the client's thread to the driver's.
struct MonitorDataItem
{
    QString dataitem_id; ///< The service's id of the item.
    QVariant value;      ///< The value, of the variant type that the item's type prescribes.
};

#endif
