#ifndef TOOLS_HOST_VALUE_JSON_TEXT_H
#define TOOLS_HOST_VALUE_JSON_TEXT_H

#include "tools/host/value/host_value.h"

#include <nlohmann/json.hpp>

#include <QDateTime>
#include <QString>

#include <optional>

/// \file
/// What the program says in JSON: one object on a line.
namespace tovik_host::value {

using OrderedJson = nlohmann::ordered_json;

/// A decoded value: a number where the type has numbers, else a text; null when there is none, and
/// for the infinities and not-a-number, which JSON does not have.
OrderedJson jsonValue(const ItemType& type, const std::optional<QString>& value);
/// The moment as UTC, with milliseconds.
std::string jsonTime(const QDateTime& time);
/// The object as one line of UTF-8.
QString jsonLine(const OrderedJson& line);
/// The whole text of a file, with a line break at its end.
QString jsonText(const OrderedJson& json);

} // namespace tovik_host::value

#endif
