#include "tools/service/plant/service.h"

#include <algorithm>

namespace tovik_service::plant {

namespace {

Json groupJson(const Group& group)
{
    return {{"group_id", group.id},       {"name", group.name},
            {"location", group.location}, {"ddLocation", group.dd_location},
            {"alert", group.alert},       {"permission", group.permission}};
}

Json itemJson(const ItemView& view)
{
    return {{"name", view.item->name},
            {"dataitem_id", view.item->id},
            {"type", typeName(view.item->type)},
            {"length", view.item->length},
            {"value", view.value},
            {"cloud_status", view.item->cloud_status},
            {"alert", view.item->alert},
            {"update_time", view.update_time}};
}

Reply success(Json json)
{
    json["errorcode"] = static_cast<int>(codeSuccess);
    return {std::move(json), {}};
}

Reply unknownItem(const std::string& id)
{
    return refusal(codeUnknownId, "there is no item " + toText(Json(shownText(id))));
}

} // namespace

Reply refusal(ErrorCode code, const std::string& problem)
{
    return {Json{{"errorcode", static_cast<int>(code)}}, problem};
}

Service::Service(Plant& plant, TokenStore& tokens) : plant_(plant), tokens_(tokens) {}

Reply Service::answer(ApiPath path, const std::string& content_type, const RequestBody& body,
                      const std::string& client)
{
    std::string problem = contentTypeProblem(content_type);
    if (problem.empty())
        problem = bodyProblem(path, body);
    if (!problem.empty())
        return refusal(codeMalformed, problem);
    if (path == ApiPath::Login)
        return login(body, client);
    const std::string token = body.text("token");
    if (!tokens_.isKnown(token))
        return refusal(codeUnknownToken, "token " + shortToken(token) + " is unknown or expired");
    switch (path) {
    case ApiPath::Items:
        return items(body.text("group_id"));
    case ApiPath::Value:
        return value(body.text("dataitem_id"));
    case ApiPath::Write:
        return write(body.text("dataitem_id"), body.object.at("value"));
    default:
        return groups();
    }
}

Reply Service::login(const RequestBody& body, const std::string& client)
{
    const auto& accounts = plant_.project().accounts;
    const auto is_person = [&body](const Account& account) {
        return account.email == body.text("email") && account.password == body.text("password");
    };
    const auto is_account = [&body, &is_person](const Account& account) {
        return is_person(account) && account.project == body.text("project");
    };
    if (std::none_of(accounts.begin(), accounts.end(), is_person))
        return refusal(codeWrongAccount, "no account has this e-mail address and password");
    if (std::none_of(accounts.begin(), accounts.end(), is_account)) {
        return refusal(codeUnknownProject,
                       "the account has no project " + toText(Json(body.text("project"))));
    }
    return success({{"token", tokens_.create({body.text("email"), client})}});
}

Reply Service::groups()
{
    Json list = Json::array();
    for (const Group& group : plant_.project().groups)
        list.push_back(groupJson(group));
    const std::size_t count = list.size();
    return success({{"Number", count}, {"groups", std::move(list)}});
}

Reply Service::items(const std::string& group_id)
{
    const Group* group = plant_.findGroup(group_id);
    if (group == nullptr)
        return refusal(codeUnknownId, "there is no group " + toText(Json(shownText(group_id))));
    Json list = Json::array();
    for (const ItemView& view : plant_.itemsOf(*group))
        list.push_back(itemJson(view));
    const std::size_t count = list.size();
    return success({{"Number", count}, {"dataitems", std::move(list)}});
}

Reply Service::value(const std::string& item_id)
{
    const auto view = plant_.item(item_id);
    return view ? success({{"value", view->value}}) : unknownItem(item_id);
}

Reply Service::write(const std::string& item_id, const Json& value)
{
    const WriteResult result = plant_.write(item_id, value, Writer::Client);
    switch (result.outcome) {
    case WriteOutcome::UnknownItem:
        return unknownItem(item_id);
    case WriteOutcome::ReadOnly:
        return refusal(codeReadOnly, result.problem);
    case WriteOutcome::BadValue:
        return refusal(codeBadValue, result.problem);
    case WriteOutcome::Done:
        break;
    }
    return success(Json::object());
}

} // namespace tovik_service::plant
