#ifndef TOOLS_SERVICE_PLANT_VALUE_TYPE_H
#define TOOLS_SERVICE_PLANT_VALUE_TYPE_H

#include "tools/service/plant/json.h"

#include <optional>
#include <string>

namespace tovik_service::plant {

/// The data item types of the service.
enum class ValueType
{
    Bit,
    Bcd16,
    Int16,
    Uint16,
    Hex16,
    Bcd32,
    Int32,
    Uint32,
    Hex32,
    Float32,
    AsciiString,
    String
};

/// Smallest and largest number that a type can carry.
struct NumberRange
{
    double low;
    double high;
};

/// The outcome of a check: a value in its normal form, or what is wrong with it.
struct CheckedValue
{
    Json value;
    std::string problem;

    bool ok() const { return problem.empty(); }
};

/// The name of a type as the service writes it, such as "16Bit-UINT".
std::string typeName(ValueType type);

/// The type with this name, if there is one.
std::optional<ValueType> typeFromName(const std::string& name);

/// All names, separated by commas, for messages.
std::string allTypeNames();

/// True for the types whose values are free text.
bool isText(ValueType type);

/// The number range of a type; texts have an empty range.
NumberRange numberRange(ValueType type);

/// Bits of a number, or the longest text that is taken unless the project says otherwise.
int defaultLength(ValueType type);

/// The value that an item has when the project file gives none.
Json defaultValue(ValueType type);

/// Turns a number into a value of the type: rounded, clamped, hexadecimal where needed.
Json valueFromNumber(ValueType type, double number);

/// Checks kind, range and, for texts, the length in characters.
CheckedValue checkValue(ValueType type, int length, const Json& value);

} // namespace tovik_service::plant

#endif
