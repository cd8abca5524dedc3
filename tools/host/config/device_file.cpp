#include "tools/host/config/config_file.h"

#include <limits>

namespace tovik_host::config {

namespace {

const int lowest = std::numeric_limits<int>::min();
const int highest = std::numeric_limits<int>::max();

std::optional<QString> textIn(const JsonPlace& place, const char* name)
{
    return place.has(name) ? std::optional<QString>(place.requiredText(name)) : std::nullopt;
}

std::optional<int> numberIn(const JsonPlace& place, const char* name, int low, int high)
{
    return place.has(name) ? std::optional<int>(place.optionalNumber(name, low, low, high))
                           : std::nullopt;
}

LinkOptions readLink(const JsonPlace& place)
{
    place.allowOnly({"address", "unit", "request_delay", "response_timeout", "retries",
                     "link_param_a", "link_param_b"});
    LinkOptions link;
    link.address = textIn(place, "address");
    link.unit = textIn(place, "unit");
    link.request_delay = numberIn(place, "request_delay", 0, limits::request_delay);
    link.response_timeout = numberIn(place, "response_timeout", 1, limits::response_timeout);
    link.retries = numberIn(place, "retries", 0, limits::retries);
    link.link_param_a = numberIn(place, "link_param_a", lowest, highest);
    link.link_param_b = numberIn(place, "link_param_b", lowest, highest);
    return link;
}

int readLength(const JsonPlace& place, const value::ItemType& type, const RequestOptions& defaults)
{
    if (type.size > 0) {
        if (place.has("length"))
            place.at("length").fail(u"only items of type String have a length"_s);
        return 0;
    }
    if (!place.has("length") && !defaults.length)
        place.fail(u"a String needs the member \"length\": how many bytes the device has for it"_s);
    return place.optionalNumber("length", defaults.length.value_or(0), 1, limits::length);
}

int readElements(const JsonPlace& place, const value::ItemType& type,
                 const RequestOptions& defaults)
{
    if (type.size > 0)
        return place.optionalNumber("elements", defaults.elements.value_or(1), 1, limits::elements);
    if (place.has("elements"))
        place.at("elements").fail(u"a String has a length, and no elements"_s);
    return 1;
}

ItemConfig readItem(const JsonPlace& place, const RequestOptions& defaults)
{
    place.allowOnly(
        {"name", "address", "type", "length", "elements", "station", "field1", "extra1", "extra2"});
    ItemConfig item;
    item.name = place.requiredText("name");
    ItemRequest& request = item.request;
    request.address = textIn(place, "address").value_or(item.name);
    item.type = place.has("type") ? &itemType(place) : &itemType(defaults.typeName(), u"--type"_s);
    item.length = readLength(place, *item.type, defaults);
    item.elements = readElements(place, *item.type, defaults);
    defaults.fill(&request);
    request.station = place.optionalNumber("station", request.station, 0, limits::station);
    request.field1 = place.optionalNumber("field1", request.field1, lowest, highest);
    request.extra1 = place.optionalNumber("extra1", request.extra1, lowest, highest);
    request.extra2 = place.optionalNumber("extra2", request.extra2, lowest, highest);
    return item;
}

} // namespace

bool namesLink(const QString& path)
{
    const JsonFile file = readJson(path);
    return JsonPlace(file).has("link");
}

DeviceFile loadDeviceFile(const QString& path, const RequestOptions& defaults)
{
    const JsonFile file = readJson(path);
    const JsonPlace root(file);
    for (const char* name : {"service", "error_handling"}) {
        if (root.has(name)) {
            root.at(name).fail(
                u"is for a cloud driver; the configuration of a device on a link has \"link\" and "
                "\"items\" only"_s);
        }
    }
    root.allowOnly({"link", "items"});
    DeviceFile loaded;
    if (root.has("link")) {
        loaded.link = readLink(root.at("link"));
        if (loaded.link.address)
            loaded.link_place = root.at("link").at("address").where();
    }
    loaded.items = readItemList(
        root, [&](const JsonPlace& place) { return readItem(place, defaults); },
        u"by name the first one only is found"_s, &loaded.warnings);
    return loaded;
}

} // namespace tovik_host::config
