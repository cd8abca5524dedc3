#include "cloud/json_number.h"

#include <cmath>
#include <limits>
#include <locale>
#include <sstream>

namespace json_number {

namespace {

/// Integral doubles from here on are no longer exact.
const double exact_limit = 9007199254740992.0;

/// Halfway between the largest single and the next power of two: rounds to the infinity.
const double float_overflow = 340282356779733661637539395458142568448.0;

} // namespace

qint32 toInt32(double number)
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

quint32 toUInt32(double number)
{
    typedef std::numeric_limits<quint32> Limits;
    if (number != number || number <= 0)
        return 0;
    if (number >= double(Limits::max()))
        return Limits::max();
    return static_cast<quint32>(number);
}

float toFloat(double number)
{
    typedef std::numeric_limits<float> Limits;
    if (std::fabs(number) >= float_overflow)
        return number < 0 ? -Limits::infinity() : Limits::infinity();
    if (number > double(Limits::max()))
        return Limits::max();
    if (number < -double(Limits::max()))
        return -Limits::max();
    return static_cast<float>(number);
}

std::string toWire(double number)
{
    const bool integral = std::fabs(number) < exact_limit && std::floor(number) == number;
    std::ostringstream out;
    out.imbue(std::locale::classic());
    out.setf(std::ios_base::fixed, std::ios_base::floatfield);
    out.precision(integral ? 0 : 6);
    out << number;
    return out.str();
}

} // namespace json_number
