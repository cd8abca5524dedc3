#include "tools/service/control/dashboard.h"

#include "tools/service/http/http_engine.h"

#include <array>
#include <string>

namespace tovik_service::control {

namespace {

struct ContentType
{
    std::string_view ending;
    const char* type;
};

constexpr std::array<ContentType, 4> content_types{{
    {".html", "text/html; charset=utf-8"},
    {".css", "text/css; charset=utf-8"},
    {".js", "text/javascript; charset=utf-8"},
    {".svg", "image/svg+xml"},
}};

const char* contentTypeOf(std::string_view name)
{
    const std::string_view ending = name.substr(name.rfind('.'));
    for (const ContentType& type : content_types) {
        if (ending == type.ending)
            return type.type;
    }
    return "application/octet-stream";
}

void addRoute(http::HttpEngine& engine, const std::string& path, const DashboardFile& file)
{
    engine.Get(path, [&file](const httplib::Request&, httplib::Response& response) {
        response.set_content(file.content.data(), file.content.size(), contentTypeOf(file.name));
    });
}

/// The text as a regular expression that matches nothing else.
std::string quoted(std::string_view text)
{
    std::string pattern;
    for (const char c : text)
        pattern += c == '.' ? "\\." : std::string(1, c);
    return pattern;
}

} // namespace

void addDashboardRoutes(http::HttpEngine& engine)
{
    engine.set_default_headers(
        {{"Content-Security-Policy",
          "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; "
          "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
         {"X-Content-Type-Options", "nosniff"},
         {"X-Frame-Options", "DENY"},
         {"Referrer-Policy", "no-referrer"},
         {"Cross-Origin-Resource-Policy", "same-origin"},
         {"Cache-Control", "no-store"}});
    for (const DashboardFile& file : dashboardFiles())
        addRoute(engine, file.name == "index.html" ? "/" : "/dashboard/" + quoted(file.name), file);
}

} // namespace tovik_service::control
