#ifndef TOOLS_SERVICE_PLANT_JSON_H
#define TOOLS_SERVICE_PLANT_JSON_H

#include <nlohmann/json.hpp>

#include <string>

namespace tovik_service::plant {

using Json = nlohmann::json;

/// Serialises without ever throwing: bytes that are not UTF-8 become U+FFFD.
inline std::string toText(const Json& json)
{
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace tovik_service::plant

#endif
