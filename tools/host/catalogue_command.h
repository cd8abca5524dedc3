#ifndef TOOLS_HOST_CATALOGUE_COMMAND_H
#define TOOLS_HOST_CATALOGUE_COMMAND_H

#include "tools/host/service/service_place.h"

namespace tovik_host {

/// How a catalogue is printed.
enum class CatalogueForm
{
    automatic, ///< A tree on a terminal, a table elsewhere.
    tree,
    table,
    json
};

/// Prints the service's catalogue. Returns the exit code; throws UsageError.
int runCatalogue(const service::ServiceOptions& options, CatalogueForm form);

} // namespace tovik_host

#endif
