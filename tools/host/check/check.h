#ifndef TOOLS_HOST_CHECK_CHECK_H
#define TOOLS_HOST_CHECK_CHECK_H

#include "tools/host/config/config.h"

namespace tovik_host::check {

/// Walks the way that a value takes from the service to a host, tells each step, and ends with a
/// verdict. Returns the exit code; throws UsageError.
int runCheck(const config::CommonOptions& common, const QStringList& items);

} // namespace tovik_host::check

#endif
