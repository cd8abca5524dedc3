#ifndef TOOLS_HOST_CHECK_LINK_WALK_H
#define TOOLS_HOST_CHECK_LINK_WALK_H

#include "tools/host/config/config.h"

namespace tovik_host::check {

/// Walks the way that a value takes from a device to a host, tells each step, and ends with a
/// verdict. Returns the exit code; throws UsageError.
/// \param addresses as for driver::deviceConfig()
int runLinkCheck(const config::CommonOptions& common, const QStringList& addresses);

} // namespace tovik_host::check

#endif
