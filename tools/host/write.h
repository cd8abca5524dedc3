#ifndef TOOLS_HOST_WRITE_H
#define TOOLS_HOST_WRITE_H

#include "tools/host/config/options.h"

namespace tovik_host {

/// Writes one value, waits until the driver has sent it and, if wanted, until the service shows it.
/// Returns the exit code; throws UsageError.
int runWrite(const config::CommonOptions& common, const config::WriteOptions& options);

} // namespace tovik_host

#endif
