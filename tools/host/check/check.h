#ifndef TOOLS_HOST_CHECK_CHECK_H
#define TOOLS_HOST_CHECK_CHECK_H

#include "tools/host/config/options.h"

namespace tovik_host::check {

struct CheckOptions
{
    QStringList items;   ///< Patterns of the names to look at; none: all items.
    double timeout = 10; ///< Seconds, for each step.
};

/// Walks the way that a value takes from the service to a host, tells each step, and ends with a
/// verdict. Returns the exit code; throws UsageError.
int runCheck(const config::CommonOptions& common, const CheckOptions& options);

} // namespace tovik_host::check

#endif
