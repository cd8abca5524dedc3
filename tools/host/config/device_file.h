#ifndef TOOLS_HOST_CONFIG_DEVICE_FILE_H
#define TOOLS_HOST_CONFIG_DEVICE_FILE_H

#include "tools/host/config/config.h"
#include "tools/host/config/options.h"

#include <QStringList>
#include <QVector>

namespace tovik_host::config {

/// A configuration file of a device.
struct DeviceFile
{
    LinkOptions link;   ///< What the member "link" says.
    QString link_place; ///< Where the link's address stands, for messages.
    QVector<ItemConfig> items;
    QStringList warnings;
};

/// Whether the configuration file \a path has a member "link". Throws UsageError.
bool namesLink(const QString& path);

/// Reads and checks the configuration file \a path of a device. Throws UsageError with file, line
/// and member for anything that is wrong.
/// \param defaults what an item has that does not say it.
DeviceFile loadDeviceFile(const QString& path, const RequestOptions& defaults);

/// An item's type as options and files name it. Throws UsageError.
/// \param origin what the message names as the source.
const value::ItemType& itemType(const QString& name, const QString& origin);

} // namespace tovik_host::config

#endif
