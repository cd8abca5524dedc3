#include "tests/reliability/plant_of.h"

#include <QSaveFile>

#include <nlohmann/json.hpp>

#include <string>

using nlohmann::json;

namespace {

const int kinds = 5;

/// A constant of 16 bits first, for writes; the others move, a text among them.
json itemOf(int index)
{
    const std::string id = "item-" + std::to_string(index);
    json item = {{"id", id}, {"name", id}, {"type", plantTypeOf(index)}};
    switch (index % kinds) {
    case 0:
        item["value"] = index % 1000;
        break;
    case 1:
        item["value"] = {{"generator", "sine"}, {"min", -5}, {"max", 5}, {"period", 20}};
        break;
    case 2:
        item["value"] = {{"generator", "counter"}, {"max", 4000000000}};
        break;
    case 3:
        item["value"] = {{"generator", "list"},
                         {"values", {"short", "a text that needs memory of its own"}},
                         {"period", 1}};
        item["length"] = 60;
        break;
    default:
        item["value"] = {{"generator", "counter"}, {"max", 1}};
    }
    return item;
}

} // namespace

const char* plantTypeOf(int index)
{
    static const char* const types[kinds] = {"16Bit-INT", "32Bit-FLOAT", "32Bit-UINT", "String",
                                             "Bit"};
    return types[index % kinds];
}

bool isPlantItemWritable(int index)
{
    return index % kinds == 0;
}

bool writePlantOf(int items, const QString& file)
{
    json list = json::array();
    for (int i = 0; i < items; ++i)
        list.push_back(itemOf(i));
    const json project = {
        {"accounts",
         {{{"email", "operator@example.com"}, {"password", "tovik"}, {"project", "plant"}}}},
        {"groups", {{{"id", "all"}, {"name", "All"}, {"items", list}}}}};
    QSaveFile out(file);
    return out.open(QIODevice::WriteOnly) && out.write(project.dump().c_str()) > 0 && out.commit();
}
