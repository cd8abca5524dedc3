#ifndef TOOLS_SERVICE_CONTROL_FAULT_KINDS_H
#define TOOLS_SERVICE_CONTROL_FAULT_KINDS_H

#include "tools/service/plant/json.h"

namespace tovik_service::control {

/// All kinds of faults with their keys and the keys' defaults, for a form to choose from. Those of
/// the certificate are not usable without TLS.
plant::Json faultKindsJson(bool has_tls);

} // namespace tovik_service::control

#endif
