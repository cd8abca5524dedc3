#ifndef TOOLS_SERVICE_PLANT_API_PATH_H
#define TOOLS_SERVICE_PLANT_API_PATH_H

#include <array>
#include <cstddef>
#include <optional>
#include <string>

namespace tovik_service::plant {

/// The requests that the service knows.
enum class ApiPath
{
    Login,
    Groups,
    Items,
    Value,
    Write
};

/// One request: its short name for faults and figures, and its place in the URL.
struct ApiPathRow
{
    ApiPath path;
    const char* name;
    const char* url;
};

constexpr std::array<ApiPathRow, 5> api_paths{{
    {ApiPath::Login, "login", "/qlix_api/auth/login"},
    {ApiPath::Groups, "groups", "/qlix_api/imonitor/group/list"},
    {ApiPath::Items, "items", "/qlix_api/imonitor/group/dataitems"},
    {ApiPath::Value, "value", "/qlix_api/imonitor/dataitem/value"},
    {ApiPath::Write, "write", "/qlix_api/imonitor/dataitem/setValue"},
}};

/// The short name of a request.
inline std::string apiPathName(ApiPath path)
{
    return api_paths.at(static_cast<std::size_t>(path)).name;
}

/// The request that a URL path stands for.
inline std::optional<ApiPath> apiPathFromUrl(const std::string& url)
{
    for (const ApiPathRow& row : api_paths) {
        if (url == row.url)
            return row.path;
    }
    return std::nullopt;
}

/// The request with this short name.
inline std::optional<ApiPath> apiPathFromName(const std::string& name)
{
    for (const ApiPathRow& row : api_paths) {
        if (name == row.name)
            return row.path;
    }
    return std::nullopt;
}

} // namespace tovik_service::plant

#endif
