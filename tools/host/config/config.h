#ifndef TOOLS_HOST_CONFIG_CONFIG_H
#define TOOLS_HOST_CONFIG_CONFIG_H

#include "tools/host/value/host_value.h"

#include <QString>
#include <QVector>

namespace tovik_host::config {

/// Where the service is, and the account. The password is never printed.
struct ServiceConfig
{
    QString url;
    QString project;
    QString email;
    QString password;
};

/// How a host asks a device on a link for an item; what the numbers mean is the driver's.
struct ItemRequest
{
    QString address = QString();
    int station = 1;
    int field1 = 0;
    int extra1 = 0;
    int extra2 = 0;
};

/// One data item that the driver is to serve.
struct ItemConfig
{
    QString name; ///< The host addresses the item by it.
    QString id;   ///< The service's id of the item; a device's items have none.
    const value::ItemType* type = nullptr; ///< Never null in a loaded configuration.
    int length = 0;           ///< Characters that a text has room for; 0: as many as come.
    ItemRequest request = {}; ///< Of a device's item only.
};

/// The driver's error-handling keys.
struct ErrorHandling
{
    int type = 0;
    int return_time = 5; ///< Seconds.
    int retry_count = 3;
    bool return_time_enabled = true;
    bool restore_switch_enabled = false;
};

/// A whole configuration file.
struct HostConfig
{
    ServiceConfig service;
    QVector<ItemConfig> items;
    ErrorHandling error_handling;
};

/// The item of that name (the first, as in the driver), or null.
inline const ItemConfig* findItem(const QVector<ItemConfig>& items, const QString& name)
{
    for (const ItemConfig& item : items) {
        if (item.name == name)
            return &item;
    }
    return nullptr;
}

inline const ItemConfig* findItem(const HostConfig& config, const QString& name)
{
    return findItem(config.items, name);
}

} // namespace tovik_host::config

#endif
