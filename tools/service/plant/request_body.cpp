#include "tools/service/plant/request_body.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <set>
#include <vector>

namespace tovik_service::plant {

namespace {

constexpr std::size_t shown_token_size = 6;
constexpr std::size_t shown_name_size = 60;
constexpr std::size_t shown_text_size = 500;

const std::vector<const char*>& membersOf(ApiPath path)
{
    static const std::array<std::vector<const char*>, 5> members{{
        {"email", "password", "project"},
        {"token"},
        {"group_id", "token"},
        {"dataitem_id", "token"},
        {"dataitem_id", "token", "value"},
    }};
    return members.at(static_cast<std::size_t>(path));
}

std::string quotedName(const std::string& name)
{
    return toText(Json(name.substr(0, shown_name_size)));
}

/// A value that is no secret, as long as it is one: lists and objects can hold anything.
Json shownValue(const Json& value)
{
    if (value.is_structured())
        return "***";
    return value.is_string() ? Json(shownText(value.get<std::string>())) : value;
}

} // namespace

std::string RequestBody::text(const char* name) const
{
    if (!object.is_object() || !object.contains(name) || !object.at(name).is_string())
        return {};
    return object.at(name).get<std::string>();
}

RequestBody parseBody(const std::string& bytes)
{
    RequestBody body;
    body.size = bytes.size();
    std::set<std::string> seen;
    std::string twice;
    const auto watch = [&seen, &twice](int depth, Json::parse_event_t event, Json& parsed) {
        if (event == Json::parse_event_t::key && depth == 1) {
            const auto name = parsed.get<std::string>();
            twice = seen.insert(name).second ? twice : name;
        }
        return true;
    };
    try {
        Json parsed = Json::parse(bytes, watch);
        if (!parsed.is_object())
            body.problem = "the body is no JSON object but " + std::string(parsed.type_name());
        else if (!twice.empty())
            body.problem = "member " + quotedName(twice) + " comes twice";
        body.object = parsed.is_object() ? std::move(parsed) : Json();
    } catch (const Json::parse_error& error) {
        // The library's message quotes the body, and with it perhaps a password.
        body.problem = "the body is no valid JSON in UTF-8, see byte " +
                       std::to_string(error.byte) + " of " + std::to_string(bytes.size());
    }
    return body;
}

std::string bodyProblem(ApiPath path, const RequestBody& body)
{
    if (!body.problem.empty())
        return body.problem;
    const auto& members = membersOf(path);
    for (const char* name : members) {
        if (!body.object.contains(name))
            return std::string("member \"") + name + "\" is missing";
        const Json& value = body.object.at(name);
        if (std::string(name) == "value" ? value.is_structured() || value.is_null()
                                         : !value.is_string()) {
            return std::string("member \"") + name + "\" has the wrong kind, " + value.type_name();
        }
    }
    for (const auto& entry : body.object.items()) {
        const auto same = [&entry](const char* name) { return entry.key() == name; };
        if (std::none_of(members.begin(), members.end(), same))
            return "member " + quotedName(entry.key()) + " does not belong there";
    }
    return {};
}

std::string contentTypeProblem(const std::string& content_type)
{
    std::string type = content_type.substr(0, content_type.find(';'));
    while (!type.empty() && type.back() == ' ')
        type.pop_back();
    std::transform(type.begin(), type.end(), type.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (type == "application/json")
        return {};
    return "the content type is " + (type.empty() ? "missing" : quotedName(type)) +
           ", not application/json";
}

Json maskedBody(const RequestBody& body)
{
    if (!body.object.is_object())
        return "(" + std::to_string(body.size) + " bytes, no JSON object)";
    static const std::set<std::string> harmless{"email", "project", "group_id", "dataitem_id",
                                                "value"};
    Json masked = Json::object();
    for (const auto& entry : body.object.items()) {
        if (entry.key() == "token" && entry.value().is_string()) {
            masked["token"] = shortToken(entry.value().get<std::string>());
        } else {
            // A misspelt "pasword" is a secret too.
            masked[entry.key().substr(0, shown_name_size)] =
                harmless.count(entry.key()) > 0 ? shownValue(entry.value()) : Json("***");
        }
    }
    return masked;
}

std::string shownText(const std::string& text)
{
    if (text.size() <= shown_text_size)
        return text;
    std::size_t end = shown_text_size;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) {
        --end; // not into the middle of a character
    }
    return text.substr(0, end) + "... (" + std::to_string(text.size()) + " bytes)";
}

std::string shortToken(const std::string& token)
{
    return token.size() <= shown_token_size ? "***" : token.substr(0, shown_token_size) + "...";
}

} // namespace tovik_service::plant
