#ifndef BENCHMARKS_PACKING_PEERS_H
#define BENCHMARKS_PACKING_PEERS_H

#include <QByteArray>

namespace bench {

/// The bytes of elements of 1, 2 or 4 bytes in a new array, their order kept or swapped.
QByteArray packedRaw(const char* data, int len, int size, bool swap);
/// The same as characters, by Qt's toHex(), whose digits are small.
QByteArray packedCharacters(const char* data, int len, int size, bool swap);
/// The bytes of characters by Qt's fromHex(), and their order kept or swapped.
QByteArray unpackedCharacters(const char* characters, int len, int size, bool swap);

} // namespace bench

#endif
