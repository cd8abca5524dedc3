#include "modbus_value.h"

namespace modbus {

namespace {

// Byte i of a host's element is byte i ^ mask on the wire. For 16 bits the mask's lowest bit
// counts.
const int order_masks[] = {3, 1, 2, 0};
const int orders = sizeof(order_masks) / sizeof(order_masks[0]);

} // namespace

bool isElementSize(int size)
{
    return size == 0 || size == 2 || size == 4;
}

bool isOrder(int order)
{
    return order >= 0 && order < orders;
}

QByteArray reordered(const QByteArray& bytes, int size, int order)
{
    const int mask = order_masks[order] & (size - 1);
    QByteArray result(bytes.size(), Qt::Uninitialized);
    // Qt's own indexing asks before every byte whether the array is shared.
    char* const out = result.data();
    for (int i = 0; i < bytes.size(); ++i)
        out[i] = bytes.at(i ^ mask);
    return result;
}

QByteArray unpackedBits(const QByteArray& packed, int count)
{
    QByteArray bytes(count, '\0');
    for (int i = 0; i < count; ++i)
        bytes[i] = static_cast<char>((packed.at(i / 8) >> (i % 8)) & 1);
    return bytes;
}

QByteArray packedBits(const QByteArray& bytes)
{
    QByteArray packed((bytes.size() + 7) / 8, '\0');
    for (int i = 0; i < bytes.size(); ++i) {
        if (bytes.at(i) != 0)
            packed[i / 8] = static_cast<char>(packed.at(i / 8) | (1 << (i % 8)));
    }
    return packed;
}

} // namespace modbus
