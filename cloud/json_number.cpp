#include "cloud/json_number.h"

#include <cmath>
#include <locale>
#include <sstream>

namespace json_number {

namespace {

/// Integral doubles from here on are no longer exact.
const double exact_limit = 9007199254740992.0;

} // namespace

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
