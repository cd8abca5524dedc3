#include "tools/service/plant/value_type.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace tovik_service::plant {

namespace {

struct TypeRow
{
    ValueType type;
    const char* name;
    NumberRange range;
    int length;
};

constexpr std::array<TypeRow, 12> type_rows{{
    {ValueType::Bit, "Bit", {0, 1}, 1},
    {ValueType::Bcd16, "16Bit-BCD", {0, 9999}, 16},
    {ValueType::Int16, "16Bit-INT", {-32768, 32767}, 16},
    {ValueType::Uint16, "16Bit-UINT", {0, 65535}, 16},
    {ValueType::Hex16, "16Bit-HEX", {0, 65535}, 16},
    {ValueType::Bcd32, "32Bit-BCD", {0, 99999999}, 32},
    {ValueType::Int32, "32Bit-INT", {-2147483648.0, 2147483647.0}, 32},
    {ValueType::Uint32, "32Bit-UINT", {0, 4294967295.0}, 32},
    {ValueType::Hex32, "32Bit-HEX", {0, 4294967295.0}, 32},
    {ValueType::Float32, "32Bit-FLOAT", {-FLT_MAX, FLT_MAX}, 32},
    {ValueType::AsciiString, "Ascii String", {0, 0}, 32},
    {ValueType::String, "String", {0, 0}, 32},
}};

const TypeRow& rowOf(ValueType type)
{
    return type_rows.at(static_cast<std::size_t>(type));
}

bool isHex(ValueType type)
{
    return type == ValueType::Hex16 || type == ValueType::Hex32;
}

int hexDigits(ValueType type)
{
    return type == ValueType::Hex16 ? 4 : 8;
}

std::string hexText(ValueType type, std::uint64_t number)
{
    std::array<char, 20> text{};
    std::snprintf(text.data(), text.size(), "%0*llX", hexDigits(type),
                  static_cast<unsigned long long>(number));
    return text.data();
}

// Seven significant digits are what a 32 bit float can promise; without this 21.3 would
// travel as 21.299999237060547.
double shortestFloat(double number)
{
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%.7g", number);
    return std::strtod(text.data(), nullptr);
}

std::string rangeText(ValueType type)
{
    const NumberRange range = rowOf(type).range;
    std::array<char, 80> text{};
    std::snprintf(text.data(), text.size(), "%.10g to %.10g", range.low, range.high);
    return text.data();
}

CheckedValue wrong(std::string problem)
{
    return {Json(), std::move(problem)};
}

CheckedValue checkNumber(ValueType type, const Json& value)
{
    if (!value.is_number())
        return wrong("needs a number, not " + std::string(value.type_name()));
    const double number = value.get<double>();
    const NumberRange range = rowOf(type).range;
    if (!(number >= range.low && number <= range.high))
        return wrong("needs a number from " + rangeText(type));
    if (type == ValueType::Float32)
        return {Json(shortestFloat(number)), {}};
    if (std::floor(number) != number)
        return wrong("needs a whole number");
    return {Json(static_cast<std::int64_t>(number)), {}};
}

CheckedValue checkHex(ValueType type, const Json& value)
{
    const std::string expected =
        "needs a string of 1 to " + std::to_string(hexDigits(type)) + " hexadecimal digits";
    if (!value.is_string())
        return wrong(expected + ", not " + value.type_name());
    const auto& text = value.get_ref<const std::string&>();
    const bool digits_only = text.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
    if (text.empty() || text.size() > static_cast<std::size_t>(hexDigits(type)) || !digits_only)
        return wrong(expected);
    return {Json(hexText(type, std::stoull(text, nullptr, 16))), {}};
}

CheckedValue checkText(ValueType type, int length, const Json& value)
{
    if (!value.is_string())
        return wrong("needs a string, not " + std::string(value.type_name()));
    const auto& text = value.get_ref<const std::string&>();
    const auto is_continuation = [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
    };
    const auto continuations = std::count_if(text.begin(), text.end(), is_continuation);
    if (static_cast<std::ptrdiff_t>(text.size()) - continuations > length)
        return wrong("needs at most " + std::to_string(length) + " characters");
    const auto is_printable = [](char c) { return c >= 0x20 && c <= 0x7E; };
    if (type == ValueType::AsciiString && !std::all_of(text.begin(), text.end(), is_printable))
        return wrong("needs printable ASCII characters only");
    return {value, {}};
}

} // namespace

std::string typeName(ValueType type)
{
    return rowOf(type).name;
}

std::optional<ValueType> typeFromName(const std::string& name)
{
    for (const TypeRow& row : type_rows) {
        if (name == row.name)
            return row.type;
    }
    return std::nullopt;
}

std::string allTypeNames()
{
    std::string names;
    for (const TypeRow& row : type_rows)
        names += (names.empty() ? "\"" : ", \"") + std::string(row.name) + "\"";
    return names;
}

bool isText(ValueType type)
{
    return type == ValueType::AsciiString || type == ValueType::String;
}

NumberRange numberRange(ValueType type)
{
    return rowOf(type).range;
}

int defaultLength(ValueType type)
{
    return rowOf(type).length;
}

Json defaultValue(ValueType type)
{
    return isText(type) ? Json("") : valueFromNumber(type, 0);
}

Json valueFromNumber(ValueType type, double number)
{
    if (isText(type))
        return Json("");
    if (type == ValueType::Bit)
        return Json(number >= 0.5);
    const NumberRange range = rowOf(type).range;
    const double clamped = std::clamp(number, range.low, range.high);
    if (type == ValueType::Float32)
        return Json(shortestFloat(clamped));
    const auto whole = static_cast<std::int64_t>(std::llround(clamped));
    if (isHex(type))
        return Json(hexText(type, static_cast<std::uint64_t>(whole)));
    return Json(whole);
}

CheckedValue checkValue(ValueType type, int length, const Json& value)
{
    if (type == ValueType::Bit) {
        return value.is_boolean()
                   ? CheckedValue{value, {}}
                   : wrong("needs true or false, not " + std::string(value.type_name()));
    }
    if (isText(type))
        return checkText(type, length, value);
    return isHex(type) ? checkHex(type, value) : checkNumber(type, value);
}

} // namespace tovik_service::plant
