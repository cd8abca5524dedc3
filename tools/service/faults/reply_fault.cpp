#include "tools/service/faults/reply_fault.h"

namespace tovik_service::faults {

namespace {

constexpr const char* html_page =
    "<html><head><title>Maintenance</title></head><body>Back soon.</body></html>\n";

/// Calls change() for each object that has the member: the reply itself, or else the
/// entries of its lists, so that a fault can also reach into a list of items.
template <typename Change>
void changeMember(plant::Json& reply, const std::string& member, Change change)
{
    if (reply.contains(member)) {
        change(reply);
        return;
    }
    for (auto& entry : reply.items()) {
        if (!entry.value().is_array())
            continue;
        for (plant::Json& element : entry.value()) {
            if (element.contains(member))
                change(element);
        }
    }
}

/// A value of some other JSON type that a lenient reader would not convert.
plant::Json otherType(const plant::Json& value)
{
    if (value.is_number())
        return "wrong";
    return value.is_string() ? plant::Json::array({1}) : plant::Json("wrong");
}

} // namespace

bool replacesService(FaultKind kind)
{
    return kind == FaultKind::ErrorCode || kind == FaultKind::Http500 ||
           kind == FaultKind::Http500Empty;
}

HttpReply replacementReply(const FaultSpec& fault)
{
    if (fault.kind() == FaultKind::ErrorCode)
        return {200, plant::toText(plant::Json{{"errorcode", fault.code}}), "application/json"};
    const bool empty = fault.kind() == FaultKind::Http500Empty;
    return {fault.status, empty ? "" : "The service is out of order.\n", "text/plain"};
}

HttpReply spoiltReply(const FaultSpec& fault, plant::Json json)
{
    const std::string& member = fault.member;
    switch (fault.kind()) {
    case FaultKind::NotJson:
        return {200, html_page, "text/html"};
    case FaultKind::NotObject:
        json = plant::Json::array({json});
        break;
    case FaultKind::Missing:
        changeMember(json, member, [&member](plant::Json& object) { object.erase(member); });
        break;
    case FaultKind::Mistyped:
        changeMember(json, member, [&member](plant::Json& object) {
            object[member] = otherType(object[member]);
        });
        break;
    default:
        break;
    }
    HttpReply reply;
    if (fault.kind() != FaultKind::Empty)
        reply.body = plant::toText(json);
    if (fault.kind() == FaultKind::Truncated)
        reply.body.resize(reply.body.size() / 2);
    return reply;
}

} // namespace tovik_service::faults
