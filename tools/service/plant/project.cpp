#include "tools/service/plant/project.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <set>
#include <sstream>
#include <system_error>

namespace tovik_service::plant {

namespace {

constexpr int longest_text = 65535;

Account parseAccount(const JsonReader& reader)
{
    reader.allowOnly({"email", "password", "project"});
    return {reader.text("email"), reader.text("password"), reader.text("project")};
}

Item parseItem(const JsonReader& reader, std::set<std::string>& known_ids)
{
    reader.allowOnly(
        {"id", "name", "type", "length", "alert", "cloud_status", "readonly", "value"});
    Item item;
    item.id = reader.text("id");
    if (!known_ids.insert(item.id).second)
        reader.fail("id", "\"" + item.id + "\" is used by another item; ids must be unique");
    item.name = reader.text("name");
    const std::string type = reader.text("type");
    const auto known = typeFromName(type);
    if (!known)
        reader.fail("type", "unknown type \"" + type + "\"; use one of " + allTypeNames());
    item.type = *known;
    item.length = reader.integer("length", defaultLength(item.type), 1, longest_text);
    item.alert = reader.boolean("alert", false);
    item.cloud_status = reader.integer("cloud_status", 1, -32768, 32767);
    item.read_only = reader.boolean("readonly", false);
    item.generator = parseGenerator(reader, item.type, item.length, item.id);
    return item;
}

Group parseGroup(const JsonReader& reader, std::set<std::string>& group_ids,
                 std::set<std::string>& item_ids)
{
    reader.allowOnly({"id", "name", "location", "ddLocation", "alert", "permission", "items"});
    Group group;
    group.id = reader.text("id");
    if (!group_ids.insert(group.id).second)
        reader.fail("id", "\"" + group.id + "\" is used by another group; ids must be unique");
    group.name = reader.text("name");
    group.location = reader.text("location", "");
    group.dd_location = reader.text("ddLocation", "");
    group.alert = reader.boolean("alert", false);
    group.permission = reader.text("permission", "RW");
    if (!reader.has("items") || reader.member("items") == Json::array())
        return group;
    for (const JsonReader& item : reader.objects("items"))
        group.items.push_back(parseItem(item, item_ids));
    return group;
}

// The library's own message quotes the text around the error, which may be a password.
[[noreturn]] void failSyntax(const std::string& text, std::size_t byte)
{
    const std::size_t end = std::min(byte > 0 ? byte - 1 : 0, text.size());
    const auto stop = text.begin() + static_cast<std::ptrdiff_t>(end);
    const auto line = 1 + std::count(text.begin(), stop, '\n');
    const std::size_t last_break = end == 0 ? std::string::npos : text.rfind('\n', end - 1);
    const std::size_t column = last_break == std::string::npos ? end + 1 : end - last_break;
    throw ProjectError("line " + std::to_string(line) + ", column " + std::to_string(column) +
                       ": not valid JSON" +
                       (end >= text.size() ? " (the file ends too early)" : ""));
}

} // namespace

Project parseProject(const std::string& text)
{
    Json root;
    try {
        root = Json::parse(text);
    } catch (const Json::parse_error& error) {
        failSyntax(text, error.byte);
    }
    if (root.is_object() && root.contains("items") && !root.contains("groups"))
        throw ProjectError("is a configuration of tovik-host, and a project file is wanted");
    const JsonReader reader(root, "$");
    reader.allowOnly({"accounts", "groups"});
    Project project;
    for (const JsonReader& account : reader.objects("accounts"))
        project.accounts.push_back(parseAccount(account));
    std::set<std::string> group_ids;
    std::set<std::string> item_ids;
    for (const JsonReader& group : reader.objects("groups"))
        project.groups.push_back(parseGroup(group, group_ids, item_ids));
    return project;
}

Project loadProject(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    if (stream)
        text << stream.rdbuf();
    if (!stream) {
        const std::string reason =
            errno != 0 ? std::generic_category().message(errno) : "it is empty or unreadable";
        throw ProjectError(file + ": cannot read the project file: " + reason);
    }
    try {
        return parseProject(text.str());
    } catch (const ProjectError& error) {
        throw ProjectError(file + ": " + error.what());
    }
}

} // namespace tovik_service::plant
