#include "fuzz/item_values.h"

#include "fuzz/target.h"

#include <cmath>
#include <stdexcept>

namespace fuzz {

namespace {

/// What is known of a type beforehand.
struct Known
{
    int cached;   ///< Meta-type of the variant that the service's JSON becomes.
    int to_write; ///< Meta-type of the variant that the host's bytes become.
    int size;     ///< Bytes for the host; 0: as many as the text has, and the host wishes.
};

const Known known[] = {
    {QMetaType::Bool, QMetaType::Bool, 1},
    {QMetaType::UShort, QMetaType::Int, 2},
    {QMetaType::Short, QMetaType::Int, 2},
    {QMetaType::UShort, QMetaType::Int, 2},
    {QMetaType::QString, QMetaType::QByteArray, 2},
    {QMetaType::UInt, QMetaType::UInt, 4},
    {QMetaType::Int, QMetaType::Int, 4},
    {QMetaType::UInt, QMetaType::UInt, 4},
    {QMetaType::QString, QMetaType::QByteArray, 4},
    {QMetaType::Float, QMetaType::Float, 4},
    {QMetaType::QString, QMetaType::QString, 0},
};

int indexOf(const DataItemType& type)
{
    for (int i = 0; i < type_count; ++i) {
        if (&typeAt(i) == &type)
            return i;
    }
    return -1;
}

bool isFinite(const QVariant& value)
{
    return std::isfinite(value.toFloat());
}

/// The JSON of a write; only a float that is no number, or infinite, raises.
void checkWrite(const DataItemType& type, const QVariant& value)
{
    const bool is_float = known[indexOf(type)].to_write == QMetaType::Float;
    bool raised = false;
    try {
        const picojson::value json = type.to_json(value);
        require((json.*type.is_expected)(), "a write has the kind of JSON that the service sends");
    } catch (const std::overflow_error&) {
        raised = true;
    }
    require(raised == (is_float && !isFinite(value)),
            "a write raises exactly for a float that JSON does not have");
}

} // namespace

const char* const type_names[11] = {"Bit",       "16Bit-BCD",   "16Bit-INT", "16Bit-UINT",
                                    "16Bit-HEX", "32Bit-BCD",   "32Bit-INT", "32Bit-UINT",
                                    "32Bit-HEX", "32Bit-FLOAT", "String"};

const DataItemType& typeAt(int index)
{
    const DataItemType* type = findDataItemType(QString::fromLatin1(type_names[index]));
    require(type != nullptr, "each type is found by its name");
    return *type;
}

bool isCachedValue(const DataItemType& type, const QVariant& value)
{
    return value.userType() == known[indexOf(type)].cached;
}

void checkValue(const DataItemType& type, const QVariant& value, int data_length)
{
    const Known& expected = known[indexOf(type)];
    const QByteArray bytes = type.to_host(value, data_length);
    const int text_size = qMax(data_length, value.toString().size());
    require(bytes.size() == (expected.size > 0 ? expected.size : text_size),
            "a value has as many bytes for the host as its type");
    const QVariant written = type.from_host(bytes);
    require(written.userType() == expected.to_write, "the host's bytes become the type's variant");
    checkWrite(type, value);
    checkWrite(type, written);
}

} // namespace fuzz
