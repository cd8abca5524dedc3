#ifndef MODBUS_VALUE_H
#define MODBUS_VALUE_H

#include <QByteArray>

/// \file
/// Values between the host's bytes and the wire's.
namespace modbus {

/// Whether \a size is an element's size in bytes: 0 or 2 (16 bits), or 4 (32 bits).
bool isElementSize(int size);
/// Whether \a order is a number of an order, 0 to 3.
bool isOrder(int order);

/// Turns registers as on the wire into the host's elements, least significant byte first, and the
/// other way round: it is the same for both.
///
/// \param size bytes of an element: 2 or 4; \a bytes holds whole elements
/// \param order how an element ABCD, A the most significant byte, stands on the wire: 0 ABCD,
///        1 CDAB, 2 BADC, 3 DCBA. An element of 16 bits stands as AB with 0 and 1, as BA with 2
///        and 3.
QByteArray reordered(const QByteArray& bytes, int size, int order);

/// \a count bytes 0 or 1 from bits as on the wire; \a packed holds as many.
QByteArray unpackedBits(const QByteArray& packed, int count);
/// Bits as on the wire from bytes: any byte but 0 counts as 1.
QByteArray packedBits(const QByteArray& bytes);

} // namespace modbus

#endif
