#ifndef TOOLS_SERVICE_APPLICATION_H
#define TOOLS_SERVICE_APPLICATION_H

#include "tools/service/options.h"

namespace tovik_service {

/// Runs the service until a signal ends it, or only checks its project file; gives the exit code.
int run(const Options& options);

} // namespace tovik_service

#endif
