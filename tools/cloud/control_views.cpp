#include "tools/cloud/control_views.h"

namespace tovik_cloud {

namespace {

constexpr std::size_t mostClients = 100;

Json factsOf(const Item& item)
{
    return {{"id", item.id},
            {"name", item.name},
            {"type", typeName(item.type)},
            {"readonly", item.readOnly},
            {"moving", item.generator.kind != GeneratorKind::Constant}};
}

} // namespace

Json itemJson(const ItemView& view)
{
    return {{"id", view.item->id},
            {"group", view.group->id},
            {"name", view.item->name},
            {"type", typeName(view.item->type)},
            {"value", view.value}};
}

Json groupsJson(const Project& project)
{
    Json groups = Json::array();
    for (const Group& group : project.groups) {
        Json items = Json::array();
        for (const Item& item : group.items) {
            items.push_back(factsOf(item));
        }
        groups.push_back({{"id", group.id},
                          {"name", group.name},
                          {"location", group.location},
                          {"permission", group.permission},
                          {"items", std::move(items)}});
    }
    return groups;
}

Json valuesJson(Plant& plant)
{
    Json values = Json::object();
    for (ItemView& view : plant.allItems()) {
        values[view.item->id] = std::move(view.value);
    }
    return values;
}

Json faultsJson(const FaultTable& faults)
{
    Json list = Json::array();
    for (const FaultStatus& fault : faults.list()) {
        list.push_back({{"id", fault.id},
                        {"fault", fault.text},
                        {"active", fault.active},
                        {"applied", fault.applied}});
    }
    return list;
}

Json clientsJson(TokenStore& tokens)
{
    Json list = Json::array();
    for (const TokenStatus& token : tokens.list(mostClients)) {
        list.push_back({{"token", token.shortToken},
                        {"account", token.owner.account},
                        {"address", token.owner.address},
                        {"age", token.age},
                        {"idle", token.idle},
                        {"uses", token.uses}});
    }
    return list;
}

} // namespace tovik_cloud
