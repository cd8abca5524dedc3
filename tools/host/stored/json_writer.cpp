#include "tools/host/stored/json.h"

#include <cmath>

namespace tovik_host::stored {

namespace {

const int null_flag_at = 4; ///< In the bytes of a value.

bool isWellFormed(const QString& text)
{
    // Qt drops a byte order mark at the start of what it decodes.
    const QString marked = QLatin1Char('x') + text;
    return QString::fromStdString(marked.toStdString()) == marked;
}

/// The values that items have; nothing for others, and for what JSON cannot say.
std::optional<value::OrderedJson> inWords(const QVariant& value)
{
    const QString text = value.toString();
    const double number = value.toDouble();
    switch (value.userType()) {
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Short:
    case QMetaType::Int:
        return value.toInt();
    case QMetaType::UShort:
    case QMetaType::UInt:
        return value.toUInt();
    case QMetaType::Float:
    case QMetaType::Double:
        if (std::isfinite(number))
            return number;
        return std::isnan(number) ? std::nullopt
                                  : std::optional<value::OrderedJson>(number > 0 ? "inf" : "-inf");
    case QMetaType::QString:
        if (isWellFormed(text))
            return text.isNull() ? value::OrderedJson() : value::OrderedJson(text.toStdString());
        return std::nullopt;
    case QMetaType::QByteArray:
        return value.toByteArray().isNull()
                   ? value::OrderedJson()
                   : value::OrderedJson(value.toByteArray().toHex().toStdString());
    default:
        return std::nullopt;
    }
}

/// A cached value with its type: in JSON's words, or as the bytes of a stream where it has none.
value::OrderedJson valueToJson(const QVariant& value)
{
    if (!value.isValid())
        return {{"type", "invalid"}};
    const QByteArray bytes = valueBytes(value);
    const std::optional<value::OrderedJson> words =
        bytes.at(null_flag_at) == 0 ? inWords(value) : std::nullopt;
    if (words)
        return {{"type", value.typeName()}, {"value", *words}};
    return {{"type", value.typeName()}, {"stream", bytes.toBase64().toStdString()}};
}

/// A record, or a part of one; of its members, those that are known.
template <typename T>
value::OrderedJson toJson(const T& part, int* known);

template <typename T>
value::OrderedJson toJson(const QList<T>& list, int* known)
{
    value::OrderedJson array = value::OrderedJson::array();
    for (const T& element : list)
        array.push_back(toJson(element, known));
    return array;
}

template <typename T>
value::OrderedJson toJson(const T& part, int* known)
{
    if constexpr (std::is_same_v<T, QVariant>) {
        return valueToJson(part);
    } else if constexpr (!is_structure<T>) {
        const std::optional<value::OrderedJson> words = inWords(part);
        return words ? *words : valueToJson(part);
    } else {
        value::OrderedJson object = value::OrderedJson::object();
        visitMembers(part, [&](const char* name, const auto& member) {
            if ((*known)-- <= 0)
                return false;
            object[name] = toJson(member, known);
            return true;
        });
        return object;
    }
}

} // namespace

value::OrderedJson recordToJson(const Record& record)
{
    int known = record.known;
    return toJson(record.property, &known);
}

value::OrderedJson formatToJson(const Hints& format)
{
    value::OrderedJson object = value::OrderedJson::object();
    for (const Choice& choice : choices) {
        const std::optional<bool>& value = format.*choice.hint;
        const bool is_usual = choice.hint == &Hints::single_precision && value == false;
        if (value && !is_usual)
            object[choice.name] = choice.word(*value).toStdString();
        if (choice.hint == &Hints::is_variant && format.versions) {
            object["version"] = format.versions->isOne()
                                    ? value::OrderedJson(format.versions->first)
                                    : value::OrderedJson(rangeText(*format.versions).toStdString());
        }
    }
    return object;
}

QByteArray fileText(const value::OrderedJson& json)
{
    return QByteArray::fromStdString(json.dump(2)) + '\n';
}

} // namespace tovik_host::stored
