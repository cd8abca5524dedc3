#ifndef TOOLS_HOST_JSON_TEXT_H
#define TOOLS_HOST_JSON_TEXT_H

#include "tools/host/driver_session.h"

#include <nlohmann/json.hpp>

#include <QDateTime>
#include <QString>

#include <optional>

/// \file
/// What the program says in JSON: one object on a line.
namespace tovik_host {

using OrderedJson = nlohmann::ordered_json;

/// A decoded value: a number where the type has numbers, else a text; null when there is none, and
/// for the infinities and not-a-number, which JSON does not have.
OrderedJson jsonValue(const ItemType& type, const std::optional<QString>& value);
/// Item, type, value, bytes and status of one answer, as members of \a line.
void addAnswer(OrderedJson& line, const ItemConfig& item, const Answer& answer,
               const std::optional<QString>& value);
/// The moment as UTC, with milliseconds.
std::string jsonTime(const QDateTime& time);
/// The object as one line of UTF-8.
QString jsonLine(const OrderedJson& line);

} // namespace tovik_host

#endif
