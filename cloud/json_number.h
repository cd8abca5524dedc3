#ifndef CLOUD_JSON_NUMBER_H
#define CLOUD_JSON_NUMBER_H

#include <QtGlobal>

#include <cmath>
#include <limits>
#include <string>

/// \file
/// Numbers between JSON, where all are doubles, and the widths of the data items.
///
/// A C++ cast of a double that does not fit is undefined and differs between processors; these
/// conversions give the same result on every one. Those that every polled value goes through stand
/// here, so that they become part of it.
namespace json_number {

/// Cuts the fraction and saturates at the limits of 32 bits, signed. Not a number gives 0.
inline qint32 toInt32(double number)
{
    typedef std::numeric_limits<qint32> Limits;
    if (number != number)
        return 0;
    if (number <= double(Limits::min()))
        return Limits::min();
    if (number >= double(Limits::max()))
        return Limits::max();
    return static_cast<qint32>(number);
}

/// Cuts the fraction and saturates at 0 and 4294967295. Not a number gives 0.
inline quint32 toUInt32(double number)
{
    typedef std::numeric_limits<quint32> Limits;
    if (number != number || number <= 0)
        return 0;
    if (number >= double(Limits::max()))
        return Limits::max();
    return static_cast<quint32>(number);
}

/// Narrows as IEEE-754 rounds; what a single cannot hold becomes an infinity.
inline float toFloat(double number)
{
    typedef std::numeric_limits<float> Limits;
    // Halfway between the largest single and the next power of two: rounds to the infinity.
    const double overflow = 340282356779733661637539395458142568448.0;
    if (std::fabs(number) >= overflow)
        return number < 0 ? -Limits::infinity() : Limits::infinity();
    if (number > double(Limits::max()))
        return Limits::max();
    if (number < -double(Limits::max()))
        return -Limits::max();
    return static_cast<float>(number);
}

/// The number as the service expects it in a request: integral and below 2^53 in magnitude without
/// a point, anything else with six decimals; always with a decimal point, whatever the locale.
std::string toWire(double number);

} // namespace json_number

#endif
