#ifndef TOOLS_SERVICE_PLANT_JSON_READER_H
#define TOOLS_SERVICE_PLANT_JSON_READER_H

#include "tools/service/plant/json.h"

#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

namespace tovik_service::plant {

/// A project file that cannot be used; the text says where and why.
class ProjectError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Reads the members of one JSON object and knows where in the file that object stands.
class JsonReader
{
public:
    /// Throws ProjectError unless the node is an object.
    JsonReader(const Json& node, std::string path);

    /// Throws ProjectError for a member that is not among these names.
    void allowOnly(std::initializer_list<const char*> names) const;

    bool has(const char* name) const;
    const Json& member(const char* name) const;

    std::string text(const char* name) const;
    std::string text(const char* name, const std::string& fallback) const;
    bool boolean(const char* name, bool fallback) const;
    double number(const char* name, double fallback) const;
    int integer(const char* name, int fallback, int low, int high) const;

    /// The elements of a list of objects, which must not be empty.
    std::vector<JsonReader> objects(const char* name) const;

    /// The object in a member.
    JsonReader object(const char* name) const;

    [[noreturn]] void fail(const char* name, const std::string& problem) const;

private:
    [[noreturn]] void failKind(const char* name, const char* needed) const;

    const Json& node_;
    std::string path_;
};

} // namespace tovik_service::plant

#endif
