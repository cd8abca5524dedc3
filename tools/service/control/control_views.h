#ifndef TOOLS_SERVICE_CONTROL_CONTROL_VIEWS_H
#define TOOLS_SERVICE_CONTROL_CONTROL_VIEWS_H

#include "tools/service/faults/fault_table.h"
#include "tools/service/plant/json.h"
#include "tools/service/plant/plant.h"
#include "tools/service/plant/token_store.h"

namespace tovik_service::control {

/// An item with its value of this moment.
plant::Json itemJson(const plant::ItemView& view);

/// All groups with what never changes of their items.
plant::Json groupsJson(const plant::Project& project);

/// The values of all items, by their ids.
plant::Json valuesJson(plant::Plant& plant);

/// The faults, with how often each has struck.
plant::Json faultsJson(const faults::FaultTable& faults);

/// All kinds of faults with their keys and the keys' defaults, for a form to choose from. Those of
/// the certificate are not usable without TLS.
plant::Json faultKindsJson(bool has_tls);

/// The clients that were heard of last, with the beginnings of their tokens.
plant::Json clientsJson(plant::TokenStore& tokens);

} // namespace tovik_service::control

#endif
