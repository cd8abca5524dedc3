#ifndef TOOLS_HOST_VALUE_JSON_TEXT_H
#define TOOLS_HOST_VALUE_JSON_TEXT_H

#include "tools/host/value/host_value.h"

#include <nlohmann/json.hpp>

#include <QDateTime>
#include <QString>

#include <optional>

/// \file
/// What the program says in JSON: one object on a line.

namespace nlohmann {

template <>
struct adl_serializer<QString>
{
    template <typename Json>
    static void to_json(Json& json, const QString& text)
    {
        json = text.toStdString();
    }
};

/// Nothing is null.
template <typename Value>
struct adl_serializer<std::optional<Value>>
{
    template <typename Json>
    static void to_json(Json& json, const std::optional<Value>& value)
    {
        json = value ? Json(*value) : Json(nullptr);
    }
};

} // namespace nlohmann

namespace tovik_host::value {

using OrderedJson = nlohmann::ordered_json;

/// What every line and every object for a program begins with. Within a version members may be
/// added; none goes or comes to mean something else.
const int json_version = 1;

/// The beginning of a line: the version, and what is given of event and time.
OrderedJson jsonReport(const char* event, const QDateTime& time = QDateTime());
/// A decoded value: a number where the type has numbers, else a text; null when there is none, and
/// for the infinities and not-a-number, which JSON does not have.
OrderedJson jsonValue(const ItemType& type, const std::optional<QString>& value);
/// The moment as UTC, with milliseconds.
QString jsonTime(const QDateTime& time);
/// The object as one line of UTF-8.
QString jsonLine(const OrderedJson& line);
/// The whole text of a file, with a line break at its end.
QString jsonText(const OrderedJson& json);

} // namespace tovik_host::value

#endif
