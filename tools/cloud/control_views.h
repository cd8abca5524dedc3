#ifndef TOOLS_CLOUD_CONTROL_VIEWS_H
#define TOOLS_CLOUD_CONTROL_VIEWS_H

#include "tools/cloud/fault_table.h"
#include "tools/cloud/json.h"
#include "tools/cloud/plant.h"
#include "tools/cloud/token_store.h"

namespace tovik_cloud {

/// An item with its value of this moment.
Json itemJson(const ItemView& view);

/// All groups with what never changes of their items.
Json groupsJson(const Project& project);

/// The values of all items, by their ids.
Json valuesJson(Plant& plant);

/// The faults, with how often each has struck.
Json faultsJson(const FaultTable& faults);

/// The clients that were heard of last, with the beginnings of their tokens.
Json clientsJson(TokenStore& tokens);

} // namespace tovik_cloud

#endif
