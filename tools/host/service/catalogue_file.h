#ifndef TOOLS_HOST_SERVICE_CATALOGUE_FILE_H
#define TOOLS_HOST_SERVICE_CATALOGUE_FILE_H

#include "tools/host/config/member_reader.h"
#include "tools/host/service/catalogue_data.h"

#include <QString>

namespace tovik_host::service {

/// The catalogue as JSON, for people and for readCatalogue(); ends with a line break. It holds no
/// password, nor a user name and password within the address.
QString catalogueJson(const Catalogue& catalogue);

/// Whether \a file looks like a saved catalogue, right or wrong.
bool isCatalogueFile(const config::JsonFile& file);

/// Reads what catalogueJson() has written. Throws UsageError with file, line and member.
Catalogue readCatalogue(const config::JsonFile& file);

/// Reads the JSON file \a path, of which \a what says what it should be. Throws UsageError.
config::JsonFile readJsonAs(const QString& path, const QString& what);

} // namespace tovik_host::service

#endif
