#include "tools/cloud/fault_kinds.h"

#include "tools/cloud/fault.h"

namespace tovik_cloud {

namespace {

/// What a key means when it is left out; an empty text is no limit.
std::string defaultOf(const FaultSpec& spec, const std::string& key)
{
    if (key == "ms") {
        return std::to_string(spec.ms);
    }
    if (key == "code") {
        return std::to_string(spec.code);
    }
    if (key == "status") {
        return std::to_string(spec.status);
    }
    if (key == "member") {
        return spec.member;
    }
    if (key == "after") {
        return std::to_string(spec.after);
    }
    if (key == "count" && spec.count) {
        return std::to_string(*spec.count);
    }
    return key == "path" ? "all" : "";
}

} // namespace

Json faultKindsJson(bool hasTls)
{
    Json kinds = Json::array();
    for (const FaultDefinition& definition : faultDefinitions()) {
        const FaultSpec spec = parseFault(definition.name);
        Json keys = Json::array();
        for (const std::string& key : faultKeys(definition)) {
            keys.push_back({{"name", key}, {"default", defaultOf(spec, key)}});
        }
        kinds.push_back({{"name", definition.name},
                         {"help", definition.help},
                         {"usable", hasTls || definition.stage != FaultStage::Handshake},
                         {"keys", std::move(keys)}});
    }
    return kinds;
}

} // namespace tovik_cloud
