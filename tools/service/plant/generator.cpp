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

} // namespace

std::optional<GeneratorKind> generatorKindFromName(const std::string& name)
{
    for (const auto& [kind, kindName] : kind_names) {
        if (name == kindName)
            return kind;
    }
    return std::nullopt;
}

std::string allGeneratorNames()
{
    std::string names;
    for (const auto& row : kind_names)
        names += (names.empty() ? "\"" : ", \"") + std::string(row.second) + "\"";
    return names;
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
