#ifndef TOOLS_HOST_READ_H
#define TOOLS_HOST_READ_H

#include "tools/host/config/options.h"

namespace tovik_host {

/// Reads items once, as the service has them, and prints them. Returns the exit code; throws
/// UsageError.
int runRead(const config::CommonOptions& common, const config::ReadOptions& options);

} // namespace tovik_host

#endif
