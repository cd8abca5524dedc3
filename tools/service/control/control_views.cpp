#include "tools/service/control/control_views.h"

namespace tovik_service::control {

namespace {

constexpr std::size_t most_clients = 100;

plant::Json factsOf(const plant::Item& item)
{
    return {{"id", item.id},
            {"name", item.name},
            {"type", plant::typeName(item.type)},
            {"readonly", item.read_only},
            {"moving", item.generator.kind != plant::GeneratorKind::Constant}};
}

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
    if (key == "version")
        return spec.version;
    if (key == "after")
        return std::to_string(spec.after);
    if (key == "count" && spec.count)
        return std::to_string(*spec.count);
    return key == "path" ? "all" : "";
}

} // namespace

plant::Json itemJson(const plant::ItemView& view)
{
    return {{"id", view.item->id},
            {"group", view.group->id},
            {"name", view.item->name},
            {"type", plant::typeName(view.item->type)},
            {"value", view.value}};
}

plant::Json groupsJson(const plant::Project& project)
{
    plant::Json groups = plant::Json::array();
    for (const plant::Group& group : project.groups) {
        plant::Json items = plant::Json::array();
        for (const plant::Item& item : group.items)
            items.push_back(factsOf(item));
        groups.push_back({{"id", group.id},
                          {"name", group.name},
                          {"location", group.location},
                          {"permission", group.permission},
                          {"items", std::move(items)}});
    }
    return groups;
}

plant::Json valuesJson(plant::Plant& plant)
{
    plant::Json values = plant::Json::object();
    for (plant::ItemView& view : plant.allItems())
        values[view.item->id] = std::move(view.value);
    return values;
}

plant::Json faultsJson(const faults::FaultTable& faults)
{
    plant::Json list = plant::Json::array();
    for (const faults::FaultStatus& fault : faults.list()) {
        list.push_back({{"id", fault.id},
                        {"fault", fault.text},
                        {"active", fault.active},
                        {"applied", fault.applied}});
    }
    return list;
}

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

plant::Json clientsJson(plant::TokenStore& tokens)
{
    plant::Json list = plant::Json::array();
    for (const plant::TokenStatus& token : tokens.list(most_clients)) {
        list.push_back({{"token", token.short_token},
                        {"account", token.owner.account},
                        {"address", token.owner.address},
                        {"age", token.age},
                        {"idle", token.idle},
                        {"uses", token.uses}});
    }
    return list;
}

} // namespace tovik_service::control
