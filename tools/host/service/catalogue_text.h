#ifndef TOOLS_HOST_SERVICE_CATALOGUE_TEXT_H
#define TOOLS_HOST_SERVICE_CATALOGUE_TEXT_H

#include "tools/host/service/catalogue_data.h"

#include <QString>

namespace tovik_host::service {

/// The catalogue as a tree of groups and items, for reading.
QString catalogueTree(const Catalogue& catalogue);
/// The catalogue as a table with a line for each item, for reading and searching.
QString catalogueTable(const Catalogue& catalogue);
/// The type as it is shown: of a text with its length.
QString shownType(const CatalogueItem& item);

} // namespace tovik_host::service

#endif
