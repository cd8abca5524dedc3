#ifndef TOOLS_HOST_SERVICE_CONFIGURE_NAMES_H
#define TOOLS_HOST_SERVICE_CONFIGURE_NAMES_H

#include "tools/host/config/config.h"
#include "tools/host/service/configure_choice.h"

#include <QStringList>
#include <QVector>

namespace tovik_host::service {

/// Items as a configuration has them, and what its user should know about their names.
struct NamedItems
{
    QVector<config::ItemConfig> items;
    QStringList warnings;
};

/// The name that a host gets for an item: "Group.Item", with an underscore for every control
/// character, which nobody could type.
QString naturalName(const QString& group, const QString& item);

/// Gives every item a name of its own. The first one of a name has it; the others get a number
/// behind it, and a warning each.
NamedItems nameItems(const QVector<OfferedItem>& chosen);

} // namespace tovik_host::service

#endif
