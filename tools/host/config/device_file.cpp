#include "tools/host/config/device_file.h"

#include "tools/host/config/config_file.h"
#include "tools/host/config/member_reader.h"
#include "tools/host/config/options.h"
#include "tools/host/terminal/exit_code.h"

#include <limits>

namespace tovik_host::config {

namespace {

using Pointer = nlohmann::json::json_pointer;

const int lowest = std::numeric_limits<int>::min();
const int highest = std::numeric_limits<int>::max();

std::optional<QString> textIn(const MemberReader& members, const char* name)
{
    if (!members.has(name))
        return std::nullopt;
    return members.requiredText(name);
}

std::optional<int> numberIn(const MemberReader& members, const char* name, int low, int high)
{
    if (!members.has(name))
        return std::nullopt;
    return members.optionalNumber(name, low, low, high);
}

LinkOptions readLink(const JsonFile& file)
{
    LinkOptions link;
    if (!file.root.contains("link"))
        return link;
    const MemberReader members(file, Pointer("/link"));
    members.refuseOthers({QStringLiteral("address"), QStringLiteral("unit"),
                          QStringLiteral("request_delay"), QStringLiteral("response_timeout"),
                          QStringLiteral("retries"), QStringLiteral("link_param_a"),
                          QStringLiteral("link_param_b")});
    link.address = textIn(members, "address");
    link.unit = textIn(members, "unit");
    link.request_delay = numberIn(members, "request_delay", 0, limits::request_delay);
    link.response_timeout = numberIn(members, "response_timeout", 1, limits::response_timeout);
    link.retries = numberIn(members, "retries", 0, limits::retries);
    link.link_param_a = numberIn(members, "link_param_a", lowest, highest);
    link.link_param_b = numberIn(members, "link_param_b", lowest, highest);
    return link;
}

int readLength(const JsonFile& file, const Pointer& pointer, const value::ItemType& type,
               const RequestOptions& defaults)
{
    const MemberReader members(file, pointer);
    if (type.size > 0) {
        if (members.has("length"))
            members.fail("length", QStringLiteral("only items of type String have a length"));
        return 0;
    }
    if (!members.has("length") && !defaults.length) {
        file.fail(pointer, QStringLiteral("a String needs the member \"length\": how many bytes "
                                          "the device has for it"));
    }
    return members.optionalNumber("length", defaults.length.value_or(0), 1, limits::length);
}

ItemConfig readItem(const JsonFile& file, const Pointer& pointer, const RequestOptions& defaults)
{
    const MemberReader members(file, pointer);
    members.refuseOthers({QStringLiteral("name"), QStringLiteral("address"), QStringLiteral("type"),
                          QStringLiteral("length"), QStringLiteral("station"),
                          QStringLiteral("field1"), QStringLiteral("extra1"),
                          QStringLiteral("extra2")});
    ItemConfig item;
    item.name = members.requiredText("name");
    ItemRequest& request = item.request;
    request.address = textIn(members, "address").value_or(item.name);
    item.type =
        members.has("type")
            ? &itemType(members.requiredText("type"), file.place(pointer / std::string("type")))
            : &itemType(defaults.type.value_or(QStringLiteral("16Bit-UINT")),
                        QStringLiteral("--type"));
    item.length = readLength(file, pointer, *item.type, defaults);
    const auto number = [&members](const char* name, const std::optional<int>& option, int fallback,
                                   int low, int high) {
        return members.optionalNumber(name, option.value_or(fallback), low, high);
    };
    request.station = number("station", defaults.station, request.station, 0, limits::station);
    request.field1 = number("field1", defaults.field1, request.field1, lowest, highest);
    request.extra1 = number("extra1", defaults.extra1, request.extra1, lowest, highest);
    request.extra2 = number("extra2", defaults.extra2, request.extra2, lowest, highest);
    return item;
}

QVector<ItemConfig> readItems(const JsonFile& file, const RequestOptions& defaults,
                              QStringList* warnings)
{
    if (!file.root.contains("items"))
        file.fail(Pointer(), QStringLiteral("the member \"items\" is missing"));
    return readItemList(
        file, [&](const Pointer& pointer) { return readItem(file, pointer, defaults); },
        QStringLiteral("by name the first one only is found"), warnings);
}

} // namespace

const value::ItemType& itemType(const QString& name, const QString& origin)
{
    if (const value::ItemType* type = value::findItemType(name))
        return *type;
    throw terminal::UsageError(QStringLiteral("%1: \"%2\" is no type; the types are: %3")
                                   .arg(origin, name, value::allItemTypeNames()));
}

bool namesLink(const QString& path)
{
    const JsonFile file = readJson(path);
    return file.root.is_object() && file.root.contains("link");
}

DeviceFile loadDeviceFile(const QString& path, const RequestOptions& defaults)
{
    const JsonFile file = readJson(path);
    const MemberReader members(file, Pointer());
    for (const char* name : {"service", "error_handling"}) {
        if (members.has(name)) {
            members.fail(name, QStringLiteral("is for a cloud driver; the configuration of a "
                                              "device on a link has \"link\" and \"items\" only"));
        }
    }
    members.refuseOthers({QStringLiteral("link"), QStringLiteral("items")});
    DeviceFile loaded;
    loaded.link = readLink(file);
    loaded.link_place = file.place(Pointer("/link/address"));
    loaded.items = readItems(file, defaults, &loaded.warnings);
    return loaded;
}

} // namespace tovik_host::config
