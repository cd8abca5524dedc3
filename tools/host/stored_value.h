#ifndef TOOLS_HOST_STORED_VALUE_H
#define TOOLS_HOST_STORED_VALUE_H

#include "property/value_stream.h" // deepest_value: what the driver reads can be shown, and no more

#include <QByteArray>
#include <QString>
#include <QVector>

#include <optional>
#include <vector>

/// \file
/// A cached value as a stream holds it. A `QVariant` would lose some of that: which of two entries
/// of a map came first, the bits of a not-a-number, a double in the place of a float.
namespace tovik_host {

/// How the values of a type are laid out.
enum class ValueKind
{
    nothing,
    flag,
    signed_number,
    unsigned_number,
    floating,
    text,
    bytes,
    texts,
    list,
    map
};

/// One type that a cached value may have.
struct ValueType
{
    const char* name; ///< As Qt names it; "invalid" for none.
    quint32 id;       ///< In streams from version 13 on.
    ValueKind kind;
    int size; ///< Bytes of a number.

    /// The type's number in streams of the version.
    quint32 idIn(int version) const;
};

/// The type of that name, or null.
const ValueType* findValueType(const QString& name);
/// The type of that number in streams of the version, or null.
const ValueType* findValueType(quint32 id, int version);
/// All names, separated by commas, for messages.
QString allValueTypeNames();
/// Qt's name of the number in streams of the version, for messages; empty if it has none.
QString nameOfUnknownType(quint32 id, int version);
/// The number of values that are no type of Qt's own, in streams of the version.
quint32 userTypeId(int version);

/// A value; of the members behind the first two only that of the type's kind counts.
struct StoredValue
{
    /// An empty text, as a new item has it.
    StoredValue();
    /// A null flag as variants of the type usually have it.
    explicit StoredValue(const ValueType& value_type);

    const ValueType* type; ///< Never null.
    bool null_flag;        ///< Stands in streams from version 8 on.
    /// A number or a flag; a negative number as 64 bits. Of floating numbers, the bits of a double.
    quint64 bits = 0;
    QString text = QString();
    QByteArray bytes = QByteArray();
    QVector<QString> texts = {};            ///< Of a list of texts; of a map, the keys.
    std::vector<StoredValue> elements = {}; ///< Of a list or a map.

    bool hasUsualNullFlag() const { return null_flag == (type->kind == ValueKind::nothing); }
};

/// The bits of a double with the value of a single's bits, which keeps what a not-a-number carries.
quint64 widened(quint32 single_bits);
/// The opposite; nothing when the value is none that a single has.
std::optional<quint32> narrowed(quint64 double_bits);
double doubleOf(quint64 bits);
quint64 bitsOf(double number);

} // namespace tovik_host

#endif
