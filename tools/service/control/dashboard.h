#ifndef TOOLS_SERVICE_CONTROL_DASHBOARD_H
#define TOOLS_SERVICE_CONTROL_DASHBOARD_H

#include <string_view>
#include <vector>

namespace tovik_service::http {
class HttpEngine;
}

namespace tovik_service::control {

/// A file of the dashboard, carried inside the program.
struct DashboardFile
{
    std::string_view name; ///< without a folder
    std::string_view content;
};

/// All of them. The build makes this function, from the folder dashboard/ and the chart library.
const std::vector<DashboardFile>& dashboardFiles();

/// Serves the page at / and what it is made of under /dashboard/. All replies of the engine get the
/// headers that confine a page to what comes from here.
void addDashboardRoutes(http::HttpEngine& engine);

} // namespace tovik_service::control

#endif
