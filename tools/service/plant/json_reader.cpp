#include "tools/service/plant/json_reader.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tovik_service::plant {

JsonReader::JsonReader(const Json& node, std::string path) : node_(node), path_(std::move(path))
{
    if (!node_.is_object())
        throw ProjectError(path_ + ": needs an object, not " + node_.type_name());
}

void JsonReader::allowOnly(std::initializer_list<const char*> names) const
{
    for (const auto& entry : node_.items()) {
        const auto same = [&entry](const char* name) { return entry.key() == name; };
        if (std::any_of(names.begin(), names.end(), same))
            continue;
        std::string known;
        for (const char* name : names)
            known += (known.empty() ? "" : ", ") + std::string(name);
        fail(entry.key().c_str(), "unknown member; known here are " + known);
    }
}

bool JsonReader::has(const char* name) const
{
    return node_.contains(name);
}

const Json& JsonReader::member(const char* name) const
{
    const auto found = node_.find(name);
    if (found == node_.end())
        fail(name, "is missing");
    return *found;
}

std::string JsonReader::text(const char* name) const
{
    const Json& value = member(name);
    if (!value.is_string())
        failKind(name, "a string");
    if (value.get_ref<const std::string&>().empty())
        fail(name, "must not be empty");
    return value.get<std::string>();
}

std::string JsonReader::text(const char* name, const std::string& fallback) const
{
    if (!has(name))
        return fallback;
    if (!member(name).is_string())
        failKind(name, "a string");
    return member(name).get<std::string>();
}

bool JsonReader::boolean(const char* name, bool fallback) const
{
    if (!has(name))
        return fallback;
    if (!member(name).is_boolean())
        failKind(name, "true or false");
    return member(name).get<bool>();
}

double JsonReader::number(const char* name, double fallback) const
{
    if (!has(name))
        return fallback;
    if (!member(name).is_number())
        failKind(name, "a number");
    return member(name).get<double>();
}

int JsonReader::integer(const char* name, int fallback, int low, int high) const
{
    const double value = number(name, fallback);
    if (std::floor(value) != value || value < low || value > high) {
        fail(name,
             "needs a whole number from " + std::to_string(low) + " to " + std::to_string(high));
    }
    return static_cast<int>(value);
}

std::vector<JsonReader> JsonReader::objects(const char* name) const
{
    const Json& list = member(name);
    if (!list.is_array() || list.empty())
        failKind(name, "a list with at least one object");
    std::vector<JsonReader> readers;
    for (std::size_t i = 0; i < list.size(); ++i)
        readers.emplace_back(list[i], path_ + "." + name + "[" + std::to_string(i) + "]");
    return readers;
}

JsonReader JsonReader::object(const char* name) const
{
    return {member(name), path_ + "." + name};
}

void JsonReader::fail(const char* name, const std::string& problem) const
{
    throw ProjectError(path_ + ", member \"" + name + "\": " + problem);
}

void JsonReader::failKind(const char* name, const char* needed) const
{
    const Json& value = member(name);
    const char* found = value.is_array() && value.empty() ? "an empty list" : value.type_name();
    fail(name, std::string("needs ") + needed + ", not " + found);
}

} // namespace tovik_service::plant
