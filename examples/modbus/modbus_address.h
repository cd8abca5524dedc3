#ifndef MODBUS_ADDRESS_H
#define MODBUS_ADDRESS_H

#include <QString>

namespace modbus {

/// Numbers of one area.
const int area_size = 65536;

/// One of the four areas of a device, with the functions that reach it; 0: there is none.
struct Area
{
    char digit;
    bool registers; ///< Else bits.
    int read;
    int write_one;
    int write_many;
};

/// A parsed address.
struct Address
{
    const Area* area = nullptr;
    int start = 0; ///< As on the wire: 0 for number 1.
    int bit = -1;  ///< A bit of a register, 0 to 15, 0 the least significant; -1: none.
};

/// Parses `0x17`, `1x17`, `3x17`, `4x17` or `4x17.3`: the area's digit, an x of either case, a
/// number from 1 to 65536, for registers also a bit from 0 to 15. Zeros may stand before a number,
/// nothing else may.
/// \return Ok or BadAddress; then \a address is as it was.
int parseAddress(const QString& text, Address* address);

} // namespace modbus

#endif
