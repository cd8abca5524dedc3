#include "modbus_address.h"

#include "modbus_status.h"

namespace modbus {

namespace {

const int bits_of_register = 16;

const Area areas[] = {
    {'0', false, 1, 5, 15}, // coils
    {'1', false, 2, 0, 0},  // discrete inputs
    {'3', true, 4, 0, 0},   // input registers
    {'4', true, 3, 6, 16},  // holding registers
};

const Area* areaOf(QChar digit)
{
    for (const Area& area : areas) {
        if (digit == QLatin1Char(area.digit))
            return &area;
    }
    return nullptr;
}

/// The number that \a text consists of; -1 if it is anything but ASCII digits, or \a limit or more.
int numberBelow(int limit, const QString& text)
{
    int number = 0;
    for (const QChar character : text) {
        const int digit = character.unicode() - '0';
        if (digit < 0 || digit > 9)
            return -1;
        number = number * 10 + digit;
        if (number >= limit)
            return -1;
    }
    return text.isEmpty() ? -1 : number;
}

} // namespace

int parseAddress(const QString& text, Address* address)
{
    if (text.size() < 3 || text.at(1).toLower() != QLatin1Char('x'))
        return BadAddress;
    const QString numbers = text.mid(2);
    const int point = numbers.indexOf(QLatin1Char('.'));
    Address parsed;
    parsed.area = areaOf(text.at(0));
    parsed.start = numberBelow(area_size + 1, numbers.left(point)) - 1;
    if (!parsed.area || parsed.start < 0)
        return BadAddress;
    if (point >= 0) {
        parsed.bit = numberBelow(bits_of_register, numbers.mid(point + 1));
        if (parsed.bit < 0 || !parsed.area->registers)
            return BadAddress;
    }
    *address = parsed;
    return Ok;
}

} // namespace modbus
