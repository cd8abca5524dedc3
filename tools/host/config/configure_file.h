#ifndef TOOLS_HOST_CONFIG_CONFIGURE_FILE_H
#define TOOLS_HOST_CONFIG_CONFIGURE_FILE_H

#include "tools/host/config/config.h"
#include "tools/host/config/service_account.h"

#include <QString>
#include <QVector>

namespace tovik_host::config {

/// A configuration as loadConfig() reads it; ends with a line break. Without the password it says
/// where to find it.
QString configJson(const Account& account, const QVector<ItemConfig>& items, bool with_password);

} // namespace tovik_host::config

#endif
