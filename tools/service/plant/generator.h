#ifndef TOOLS_SERVICE_PLANT_GENERATOR_H
#define TOOLS_SERVICE_PLANT_GENERATOR_H

#include "tools/service/plant/json_reader.h"
#include "tools/service/plant/value_type.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace tovik_service::plant {

/// The ways in which the value of an item can move.
enum class GeneratorKind
{
    Constant,
    Counter,
    Ramp,
    Sine,
    RandomWalk,
    List
};

/// The parameters of a generator, already checked; each kind uses its own part of them.
struct GeneratorSettings
{
    GeneratorKind kind = GeneratorKind::Constant;
    Json values = Json::array(); ///< constant: one value; list: all of them, in turn
    double min = 0;
    double max = 100;
    double start = 0;
    double step = 1;
    double period = 60; ///< seconds: a full cycle, or the time between two steps
    double phase = 0;   ///< sine: part of a period, 0 to 1
    std::uint64_t seed = 0;
};

/// Makes the value of one item from the seconds that passed since the start.
class Generator
{
public:
    virtual ~Generator() = default;

    /// The value at this time; times never run backwards.
    virtual Json valueAt(double seconds) = 0;
};

/// The kind with this name, such as "random-walk".
std::optional<GeneratorKind> generatorKindFromName(const std::string& name);

/// Reads the member "value" of an item: a plain value, or an object with a generator.
GeneratorSettings parseGenerator(const JsonReader& item, ValueType type, int length,
                                 const std::string& item_id);

/// Builds the generator for an item of this type.
std::unique_ptr<Generator> makeGenerator(const GeneratorSettings& settings, ValueType type);

} // namespace tovik_service::plant

#endif
