#ifndef CLOUD_JSON_NUMBER_H
#define CLOUD_JSON_NUMBER_H

#include <QtGlobal>

#include <string>

/// \file
/// Numbers between JSON, where all are doubles, and the widths of the data items.
///
/// A C++ cast of a double that does not fit is undefined and differs between processors; these
/// conversions give the same result on every one.
namespace json_number {

/// Cuts the fraction and saturates at the limits of 32 bits, signed. Not a number gives 0.
qint32 toInt32(double number);
/// Cuts the fraction and saturates at 0 and 4294967295. Not a number gives 0.
quint32 toUInt32(double number);
/// Narrows as IEEE-754 rounds; what a single cannot hold becomes an infinity.
float toFloat(double number);
/// The number as the service expects it in a request: integral and below 2^53 in magnitude without
/// a point, anything else with six decimals; always with a decimal point, whatever the locale.
std::string toWire(double number);

} // namespace json_number

#endif
