#ifndef TOOLS_HOST_WATCH_H
#define TOOLS_HOST_WATCH_H

#include "tools/host/config/options.h"

namespace tovik_host {

/// Reads all items again and again and shows what changes, until a signal or the end of the time.
/// Returns the exit code; throws UsageError.
int runWatch(const config::CommonOptions& common, const config::WatchOptions& options);

} // namespace tovik_host

#endif
