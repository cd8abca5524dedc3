#include "tools/service/control/fault_kinds.h"

#include "tools/service/faults/fault.h"

namespace tovik_service::control {

namespace {

/// What a key means when it is left out; an empty text is no limit.
std::string defaultOf(const faults::FaultSpec& spec, const std::string& key)
{
    if (key == "ms")
        return std::to_string(spec.ms);
    if (key == "code")
        return std::to_string(spec.code);
    if (key == "status")
        return std::to_string(spec.status);
    if (key == "member")
        return spec.member;
    if (key == "after")
        return std::to_string(spec.after);
    if (key == "count" && spec.count)
        return std::to_string(*spec.count);
    return key == "path" ? "all" : "";
}

} // namespace

plant::Json faultKindsJson(bool has_tls)
{
    plant::Json kinds = plant::Json::array();
    for (const faults::FaultDefinition& definition : faults::faultDefinitions()) {
        const faults::FaultSpec spec = faults::parseFault(definition.name);
        plant::Json keys = plant::Json::array();
        for (const std::string& key : faults::faultKeys(definition))
            keys.push_back({{"name", key}, {"default", defaultOf(spec, key)}});
        kinds.push_back({{"name", definition.name},
                         {"help", definition.help},
                         {"usable", has_tls || definition.stage != faults::FaultStage::Handshake},
                         {"keys", std::move(keys)}});
    }
    return kinds;
}

} // namespace tovik_service::control
