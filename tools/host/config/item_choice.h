#ifndef TOOLS_HOST_CONFIG_ITEM_CHOICE_H
#define TOOLS_HOST_CONFIG_ITEM_CHOICE_H

#include "tools/host/config/config.h"

namespace tovik_host::config {

/// Which of \a all the user means, in the order asked for, each once: an item by its whole name, or
/// those that match a pattern with * ? []. Of items with one name it is the first, as in the
/// driver. Throws UsageError for what means none, and says which name is near. \param whose what
/// has no such item, for the message \param advice what the message says if no name is near
QVector<ItemConfig> chosenItems(const QVector<ItemConfig>& all, const QStringList& wanted,
                                const QString& whose, const QString& advice = QString());

} // namespace tovik_host::config

#endif
