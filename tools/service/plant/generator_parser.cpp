#include "tools/service/plant/project.h"

#include <algorithm>

namespace tovik_service::plant {

namespace {

constexpr double shortest_period = 0.01;
constexpr std::uint64_t hash_start = 14695981039346656037ULL;
constexpr std::uint64_t hash_factor = 1099511628211ULL;

/// A seed that differs from item to item and is the same in every run.
std::uint64_t seedFromId(const std::string& id)
{
    std::uint64_t hash = hash_start;
    for (const char c : id)
        hash = (hash ^ static_cast<unsigned char>(c)) * hash_factor;
    return hash;
}

Json checkedValue(const JsonReader& reader, const char* name, ValueType type, int length,
                  const Json& value)
{
    const CheckedValue checked = checkValue(type, length, value);
    if (!checked.ok())
        reader.fail(name, typeName(type) + " " + checked.problem);
    return checked.value;
}

void readPeriod(const JsonReader& reader, double fallback, GeneratorSettings& settings)
{
    settings.period = reader.number("period", fallback);
    if (settings.period < shortest_period)
        reader.fail("period", "needs at least 0.01 seconds");
}

void readRange(const JsonReader& reader, ValueType type, GeneratorSettings& settings)
{
    const NumberRange range = numberRange(type);
    const auto clamp = [&range](double number) {
        return std::clamp(number, range.low, range.high);
    };
    settings.min = clamp(reader.number("min", 0));
    settings.max = clamp(reader.number("max", std::max(100.0, settings.min)));
    if (settings.min > settings.max)
        reader.fail("min", "is greater than \"max\"");
    settings.start = reader.number("start", settings.min);
    if (settings.start < settings.min || settings.start > settings.max)
        reader.fail("start", "is outside \"min\" to \"max\"");
}

void readList(const JsonReader& reader, ValueType type, int length, GeneratorSettings& settings)
{
    reader.allowOnly({"generator", "values", "period"});
    const Json& values = reader.member("values");
    if (!values.is_array() || values.empty())
        reader.fail("values", "needs a list with at least one value");
    for (const Json& value : values)
        settings.values.push_back(checkedValue(reader, "values", type, length, value));
    readPeriod(reader, 5, settings);
}

void readCounter(const JsonReader& reader, ValueType type, GeneratorSettings& settings)
{
    reader.allowOnly({"generator", "min", "max", "start", "step", "period"});
    readRange(reader, type, settings);
    settings.step = reader.number("step", 1);
    readPeriod(reader, 1, settings);
}

void readRandomWalk(const JsonReader& reader, ValueType type, GeneratorSettings& settings)
{
    reader.allowOnly({"generator", "min", "max", "start", "step", "period", "seed"});
    readRange(reader, type, settings);
    if (!reader.has("start"))
        settings.start = settings.min + (settings.max - settings.min) / 2;
    settings.step = reader.number("step", (settings.max - settings.min) / 20);
    readPeriod(reader, 1, settings);
    if (reader.has("seed"))
        settings.seed = static_cast<std::uint64_t>(reader.integer("seed", 0, 0, 2147483647));
}

void readMoving(const JsonReader& reader, ValueType type, GeneratorSettings& settings)
{
    switch (settings.kind) {
    case GeneratorKind::Counter:
        return readCounter(reader, type, settings);
    case GeneratorKind::RandomWalk:
        return readRandomWalk(reader, type, settings);
    case GeneratorKind::Sine:
        reader.allowOnly({"generator", "min", "max", "period", "phase"});
        settings.phase = reader.number("phase", 0);
        break;
    default:
        reader.allowOnly({"generator", "min", "max", "period"});
        break;
    }
    readRange(reader, type, settings);
    readPeriod(reader, 60, settings);
}

} // namespace

GeneratorSettings parseGenerator(const JsonReader& item, ValueType type, int length,
                                 const std::string& item_id)
{
    GeneratorSettings settings;
    settings.seed = seedFromId(item_id);
    if (!item.has("value")) {
        settings.values.push_back(defaultValue(type));
        return settings;
    }
    if (!item.member("value").is_object()) {
        settings.values.push_back(checkedValue(item, "value", type, length, item.member("value")));
        return settings;
    }
    const JsonReader reader = item.object("value");
    const std::string name = reader.text("generator");
    const auto kind = generatorKindFromName(name);
    if (!kind)
        reader.fail("generator", "unknown \"" + name + "\"; use one of " + allGeneratorNames());
    settings.kind = *kind;
    if (*kind == GeneratorKind::Constant) {
        reader.allowOnly({"generator", "value"});
        settings.values.push_back(
            checkedValue(reader, "value", type, length, reader.member("value")));
    } else if (*kind == GeneratorKind::List) {
        readList(reader, type, length, settings);
    } else if (isText(type)) {
        reader.fail("generator", "\"" + name + "\" makes numbers; a text needs constant or list");
    } else {
        readMoving(reader, type, settings);
    }
    return settings;
}

} // namespace tovik_service::plant
