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

std::string withoutMember(plant::Json json, const std::string& member)
{
    changeMember(json, member, [&member](plant::Json& object) { object.erase(member); });
    return plant::toText(json);
}

std::string withMistypedMember(plant::Json json, const std::string& member)
{
    changeMember(json, member,
                 [&member](plant::Json& object) { object[member] = otherType(object[member]); });
    return plant::toText(json);
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

HttpReply spoiltReply(const FaultSpec& fault, const plant::Json& json)
{
    HttpReply reply;
    reply.body = plant::toText(json);
    switch (fault.kind()) {
    case FaultKind::Empty:
        reply.body.clear();
        break;
    case FaultKind::Truncated:
        reply.body.resize(reply.body.size() / 2);
        break;
    case FaultKind::NotJson:
        return {200, html_page, "text/html"};
    case FaultKind::NotObject:
        reply.body = plant::toText(plant::Json::array({json}));
        break;
    case FaultKind::Missing:
        reply.body = withoutMember(json, fault.member);
        break;
    case FaultKind::Mistyped:
        reply.body = withMistypedMember(json, fault.member);
        break;
    default:
        break;
    }
    return reply;
}

} // namespace tovik_service::faults
