#ifndef TOOLS_CLOUD_DASHBOARD_ROUTES_H
#define TOOLS_CLOUD_DASHBOARD_ROUTES_H

#include "tools/cloud/http_engine.h"

namespace tovik_cloud {

/// Serves the page at / and what it is made of under /dashboard/. All replies of the engine get the
/// headers that confine a page to what comes from here.
void addDashboardRoutes(HttpEngine& engine);

} // namespace tovik_cloud

#endif
