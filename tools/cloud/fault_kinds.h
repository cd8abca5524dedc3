#ifndef TOOLS_CLOUD_FAULT_KINDS_H
#define TOOLS_CLOUD_FAULT_KINDS_H

#include "tools/cloud/json.h"

namespace tovik_cloud {

/// All kinds of faults with their keys and the keys' defaults, for a form to choose from. Those of
/// the certificate are not usable without TLS.
Json faultKindsJson(bool hasTls);

} // namespace tovik_cloud

#endif
