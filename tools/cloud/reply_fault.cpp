#include "tools/cloud/reply_fault.h"

namespace tovik_cloud {

namespace {

constexpr const char* htmlPage =
    "<html><head><title>Maintenance</title></head><body>Back soon.</body></html>\n";

/// Calls change() for each object that has the member: the reply itself, or else the
/// entries of its lists, so that a fault can also reach into a list of items.
template <typename Change>
void changeMember(Json& reply, const std::string& member, Change change)
{
    if (reply.contains(member)) {
        change(reply);
        return;
    }
    for (auto& entry : reply.items()) {
        if (!entry.value().is_array()) {
            continue;
        }
        for (Json& element : entry.value()) {
            if (element.contains(member)) {
                change(element);
            }
        }
    }
}

/// A value of some other JSON type that a lenient reader would not convert.
Json otherType(const Json& value)
{
    if (value.is_number()) {
        return "wrong";
    }
    return value.is_string() ? Json::array({1}) : Json("wrong");
}

std::string withoutMember(Json json, const std::string& member)
{
    changeMember(json, member, [&member](Json& object) { object.erase(member); });
    return toText(json);
}

std::string withMistypedMember(Json json, const std::string& member)
{
    changeMember(json, member,
                 [&member](Json& object) { object[member] = otherType(object[member]); });
    return toText(json);
}

} // namespace

bool replacesService(FaultKind kind)
{
    return kind == FaultKind::ErrorCode || kind == FaultKind::Http500 ||
           kind == FaultKind::Http500Empty;
}

HttpReply replacementReply(const FaultSpec& fault)
{
    if (fault.kind() == FaultKind::ErrorCode) {
        return {200, toText(Json{{"errorcode", fault.code}}), "application/json"};
    }
    const bool empty = fault.kind() == FaultKind::Http500Empty;
    return {fault.status, empty ? "" : "The service is out of order.\n", "text/plain"};
}

HttpReply spoiltReply(const FaultSpec& fault, const Json& json)
{
    HttpReply reply;
    reply.body = toText(json);
    switch (fault.kind()) {
    case FaultKind::Empty:
        reply.body.clear();
        break;
    case FaultKind::Truncated:
        reply.body.resize(reply.body.size() / 2);
        break;
    case FaultKind::NotJson:
        return {200, htmlPage, "text/html"};
    case FaultKind::NotObject:
        reply.body = toText(Json::array({json}));
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

} // namespace tovik_cloud
