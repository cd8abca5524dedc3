#include "tools/service/plant/generator.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <utility>

namespace tovik_service::plant {

namespace {

constexpr std::array<std::pair<GeneratorKind, const char*>, 6> kind_names{{
    {GeneratorKind::Constant, "constant"},
    {GeneratorKind::Counter, "counter"},
    {GeneratorKind::Ramp, "ramp"},
    {GeneratorKind::Sine, "sine"},
    {GeneratorKind::RandomWalk, "random-walk"},
    {GeneratorKind::List, "list"},
}};

constexpr double full_turn = 6.283185307179586;
constexpr double shortest_period = 0.01;
constexpr std::uint64_t hash_start = 14695981039346656037ULL;
constexpr std::uint64_t hash_factor = 1099511628211ULL;

/// Steps that are complete after this time; the small surplus keeps 0.3 / 0.1 at three.
std::uint64_t stepsAt(double seconds, double period)
{
    return static_cast<std::uint64_t>(std::floor(std::max(0.0, seconds) / period + 1e-9));
}

class ListGenerator : public Generator
{
public:
    explicit ListGenerator(const GeneratorSettings& settings) : settings_(settings) {}

    Json valueAt(double seconds) override
    {
        // The remainder is below the size, which need not have the 64 bits of the steps.
        const auto index = stepsAt(seconds, settings_.period) % settings_.values.size();
        return settings_.values.at(static_cast<Json::size_type>(index));
    }

private:
    GeneratorSettings settings_;
};

class NumberGenerator : public Generator
{
public:
    NumberGenerator(const GeneratorSettings& settings, ValueType type)
        : settings_(settings),
          type_(type)
    {}

    Json valueAt(double seconds) override { return valueFromNumber(type_, numberAt(seconds)); }

protected:
    virtual double numberAt(double seconds) = 0;
    const GeneratorSettings& settings() const { return settings_; }
    double span() const { return settings_.max - settings_.min; }

private:
    GeneratorSettings settings_;
    ValueType type_;
};

class CounterGenerator : public NumberGenerator
{
public:
    using NumberGenerator::NumberGenerator;

protected:
    // The wrap is over the numbers min to max inclusive, so one step leads from max to min.
    double numberAt(double seconds) override
    {
        const double steps = static_cast<double>(stepsAt(seconds, settings().period));
        const double size = span() + 1;
        const double offset =
            std::fmod(settings().start - settings().min + steps * settings().step, size);
        return settings().min + (offset < 0 ? offset + size : offset);
    }
};

class RampGenerator : public NumberGenerator
{
public:
    using NumberGenerator::NumberGenerator;

protected:
    double numberAt(double seconds) override
    {
        const double part = std::fmod(seconds, settings().period) / settings().period;
        return settings().min + span() * part;
    }
};

class SineGenerator : public NumberGenerator
{
public:
    using NumberGenerator::NumberGenerator;

protected:
    double numberAt(double seconds) override
    {
        const double turns = seconds / settings().period + settings().phase;
        return settings().min + span() * (1 + std::sin(turns * full_turn)) / 2;
    }
};

class RandomWalkGenerator : public NumberGenerator
{
public:
    RandomWalkGenerator(const GeneratorSettings& chosen, ValueType type)
        : NumberGenerator(chosen, type),
          random_(chosen.seed),
          number_(chosen.start)
    {}

protected:
    double numberAt(double seconds) override
    {
        for (const std::uint64_t due = stepsAt(seconds, settings().period); done_ < due; ++done_) {
            const double move = (2 * nextPart() - 1) * settings().step;
            number_ = std::clamp(number_ + move, settings().min, settings().max);
        }
        return number_;
    }

private:
    // Not a standard distribution: those may differ from one library to the next, and a
    // seed shall give the same walk everywhere.
    double nextPart() { return std::ldexp(static_cast<double>(random_() >> 11U), -53); }

    std::mt19937_64 random_;
    double number_;
    std::uint64_t done_ = 0;
};

std::string allGeneratorNames()
{
    std::string names;
    for (const auto& row : kind_names)
        names += (names.empty() ? "\"" : ", \"") + std::string(row.second) + "\"";
    return names;
}

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

std::optional<GeneratorKind> generatorKindFromName(const std::string& name)
{
    for (const auto& [kind, kind_name] : kind_names) {
        if (name == kind_name)
            return kind;
    }
    return std::nullopt;
}

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

std::unique_ptr<Generator> makeGenerator(const GeneratorSettings& settings, ValueType type)
{
    switch (settings.kind) {
    case GeneratorKind::Counter:
        return std::make_unique<CounterGenerator>(settings, type);
    case GeneratorKind::Ramp:
        return std::make_unique<RampGenerator>(settings, type);
    case GeneratorKind::Sine:
        return std::make_unique<SineGenerator>(settings, type);
    case GeneratorKind::RandomWalk:
        return std::make_unique<RandomWalkGenerator>(settings, type);
    case GeneratorKind::Constant:
    case GeneratorKind::List:
        break;
    }
    return std::make_unique<ListGenerator>(settings);
}

} // namespace tovik_service::plant
