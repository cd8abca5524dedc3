#ifndef TOOLS_HOST_CONFIG_H
#define TOOLS_HOST_CONFIG_H

#include "tools/host/host_value.h"

#include <QString>
#include <QVector>

namespace tovik_host {

/// Where the service is, and the account. The password is never printed.
struct ServiceConfig
{
    QString url;
    QString project;
    QString email;
    QString password;
};

/// One data item that the driver is to serve.
struct ItemConfig
{
    QString name;                   ///< The host addresses the item by it.
    QString id;                     ///< The service's id of the item.
    const ItemType* type = nullptr; ///< Never null in a loaded configuration.
    int length = 0;                 ///< Characters that a text has room for; 0: as many as come.
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
inline const ItemConfig* findItem(const HostConfig& config, const QString& name)
{
    for (const ItemConfig& item : config.items) {
        if (item.name == name)
            return &item;
    }
    return nullptr;
}

} // namespace tovik_host

#endif
