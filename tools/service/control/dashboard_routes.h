#ifndef TOOLS_SERVICE_CONTROL_DASHBOARD_ROUTES_H
#define TOOLS_SERVICE_CONTROL_DASHBOARD_ROUTES_H

#include "tools/service/http/http_engine.h"

namespace tovik_service::control {

/// Serves the page at / and what it is made of under /dashboard/. All replies of the engine get the
/// headers that confine a page to what comes from here.
void addDashboardRoutes(http::HttpEngine& engine);

} // namespace tovik_service::control

#endif
