#include "tools/host/stored_value.h"

#include <QDataStream>
#include <QMetaType>
#include <QStringList>

#include <cstring>

namespace tovik_host {

namespace {

const ValueType types[] = {
    {"invalid", QMetaType::UnknownType, ValueKind::nothing, 0},
    {"bool", QMetaType::Bool, ValueKind::flag, 1},
    {"int", QMetaType::Int, ValueKind::signed_number, 4},
    {"uint", QMetaType::UInt, ValueKind::unsigned_number, 4},
    {"qlonglong", QMetaType::LongLong, ValueKind::signed_number, 8},
    {"qulonglong", QMetaType::ULongLong, ValueKind::unsigned_number, 8},
    {"double", QMetaType::Double, ValueKind::floating, 8},
    {"QChar", QMetaType::QChar, ValueKind::unsigned_number, 2},
    {"QVariantMap", QMetaType::QVariantMap, ValueKind::map, 0},
    {"QVariantList", QMetaType::QVariantList, ValueKind::list, 0},
    {"QString", QMetaType::QString, ValueKind::text, 0},
    {"QStringList", QMetaType::QStringList, ValueKind::texts, 0},
    {"QByteArray", QMetaType::QByteArray, ValueKind::bytes, 0},
    {"QVariantHash", QMetaType::QVariantHash, ValueKind::map, 0},
    {"long", QMetaType::Long, ValueKind::signed_number, 8},
    {"short", QMetaType::Short, ValueKind::signed_number, 2},
    {"char", QMetaType::Char, ValueKind::signed_number, 1},
    {"ulong", QMetaType::ULong, ValueKind::unsigned_number, 8},
    {"ushort", QMetaType::UShort, ValueKind::unsigned_number, 2},
    {"uchar", QMetaType::UChar, ValueKind::unsigned_number, 1},
    {"float", QMetaType::Float, ValueKind::floating, 4},
    {"signed char", QMetaType::SChar, ValueKind::signed_number, 1},
};

/// Qt 5 moved the types from here on down by \ref moved_by.
const quint32 first_moved = QMetaType::VoidStar;
const quint32 moved_by = 97;

const ValueType& textType()
{
    static const ValueType& type = *findValueType(QStringLiteral("QString"));
    return type;
}

} // namespace

quint32 ValueType::idIn(int version) const
{
    return version < QDataStream::Qt_5_0 && id >= first_moved ? id + moved_by : id;
}

const ValueType* findValueType(const QString& name)
{
    for (const ValueType& type : types) {
        if (name == QLatin1String(type.name))
            return &type;
    }
    return nullptr;
}

const ValueType* findValueType(quint32 id, int version)
{
    for (const ValueType& type : types) {
        if (type.idIn(version) == id)
            return &type;
    }
    return nullptr;
}

QString allValueTypeNames()
{
    QStringList names;
    for (const ValueType& type : types)
        names << QString::fromLatin1(type.name);
    return names.join(QStringLiteral(", "));
}

QString nameOfUnknownType(quint32 id, int version)
{
    const bool is_moved = version < QDataStream::Qt_5_0 && id >= first_moved + moved_by;
    const quint32 own_id = is_moved ? id - moved_by : id;
    // Qt 4 numbered the types of its graphical part differently: better no name than a wrong one.
    const bool is_sure = own_id < quint32(QMetaType::FirstGuiType);
    return is_sure ? QString::fromLatin1(QMetaType::typeName(int(own_id))) : QString();
}

quint32 userTypeId(int version)
{
    return version < QDataStream::Qt_5_0 ? 127 : quint32(QMetaType::User);
}

StoredValue::StoredValue() : StoredValue(textType())
{
    text = QLatin1String("");
}

StoredValue::StoredValue(const ValueType& value_type)
    : type(&value_type),
      null_flag(value_type.kind == ValueKind::nothing)
{}

quint64 widened(quint32 single_bits)
{
    const quint64 sign = quint64(single_bits >> 31) << 63;
    const quint64 mantissa = single_bits & 0x7FFFFF;
    // A processor would quieten a signalling not-a-number on the way.
    if ((single_bits & 0x7F800000) == 0x7F800000)
        return sign | Q_UINT64_C(0x7FF0000000000000) | mantissa << 29;
    float number = 0;
    std::memcpy(&number, &single_bits, sizeof(number));
    return bitsOf(double(number));
}

std::optional<quint32> narrowed(quint64 double_bits)
{
    const quint64 exponent = Q_UINT64_C(0x7FF0000000000000);
    quint32 bits = 0;
    if ((double_bits & exponent) == exponent) {
        bits =
            quint32(double_bits >> 63) << 31 | 0x7F800000 | quint32(double_bits >> 29 & 0x7FFFFF);
    } else {
        const double number = doubleOf(double_bits);
        const double largest = doubleOf(widened(0x7F7FFFFF));
        if (number > largest || number < -largest)
            return std::nullopt;
        const float single = float(number);
        std::memcpy(&bits, &single, sizeof(bits));
    }
    return widened(bits) == double_bits ? std::optional<quint32>(bits) : std::nullopt;
}

double doubleOf(quint64 bits)
{
    double number = 0;
    std::memcpy(&number, &bits, sizeof(number));
    return number;
}

quint64 bitsOf(double number)
{
    quint64 bits = 0;
    std::memcpy(&bits, &number, sizeof(bits));
    return bits;
}

} // namespace tovik_host
