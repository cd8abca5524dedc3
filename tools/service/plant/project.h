#ifndef TOOLS_SERVICE_PLANT_PROJECT_H
#define TOOLS_SERVICE_PLANT_PROJECT_H

#include "tools/service/plant/generator.h"
#include "tools/service/plant/json_reader.h"
#include "tools/service/plant/value_type.h"

#include <string>
#include <vector>

namespace tovik_service::plant {

/// Someone who may log in, and to which project.
struct Account
{
    std::string email;
    std::string password;
    std::string project;
};

/// One data item as the project file describes it.
struct Item
{
    std::string id;
    std::string name;
    ValueType type = ValueType::Bit;
    int length = 1;
    bool alert = false;
    int cloud_status = 1;
    bool read_only = false;
    GeneratorSettings generator;
};

/// A group of data items.
struct Group
{
    std::string id;
    std::string name;
    std::string location;
    std::string dd_location;
    bool alert = false;
    std::string permission = "RW";
    std::vector<Item> items;

    bool isWritable() const { return permission.find('W') != std::string::npos; }
};

/// All that a project file holds.
struct Project
{
    std::vector<Account> accounts;
    std::vector<Group> groups;
};

/// Reads a project from JSON text; throws ProjectError.
Project parseProject(const std::string& text);

/// Reads a project file; the text of the ProjectError begins with the file name.
Project loadProject(const std::string& file);

} // namespace tovik_service::plant

#endif
