#ifndef TOOLS_HOST_CONFIG_ITEM_LIST_H
#define TOOLS_HOST_CONFIG_ITEM_LIST_H

#include "tools/host/config/config.h"
#include "tools/host/config/member_reader.h"

#include <functional>

namespace tovik_host::config {

/// Reads one item of a configuration file.
using ItemReader = std::function<ItemConfig(const MemberReader::Pointer& pointer)>;

/// Reads the member "items" of \a file, which exists, each by \a read_item. Throws UsageError when
/// it is no list or an empty one.
/// \param if_named_twice what becomes of an item whose name another one has already, for the
///        warning about it
QVector<ItemConfig> readItemList(const JsonFile& file, const ItemReader& read_item,
                                 const QString& if_named_twice, QStringList* warnings);

} // namespace tovik_host::config

#endif
