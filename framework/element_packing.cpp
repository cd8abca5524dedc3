#include "framework/element_packing.h"

namespace element_packing {

namespace {

/// Where byte \a index of an element in the frame belongs in the number.
int place(int index, int size, bool least_first)
{
    return least_first ? index : size - 1 - index;
}

/// Bytes beyond a number's own four are zero.
unsigned char byteOf(quint32 element, int index)
{
    if (index >= 4)
        return 0;
    return static_cast<unsigned char>((element >> (8 * index)) & 0xFF);
}

void store(char* dst, quint32 element, int size, int room)
{
    const quint16 half = static_cast<quint16>(element & 0xFFFF);
    char bytes[4];
    std::memcpy(bytes, &element, 4);
    if (size == 1)
        bytes[0] = toChar(static_cast<unsigned char>(element & 0xFF));
    else if (size == 2)
        std::memcpy(bytes, &half, 2);
    std::memcpy(dst, bytes, size_t(qMin(size, room)));
}

} // namespace

quint32 load(const char* src, int available, int size)
{
    char bytes[4] = {0, 0, 0, 0};
    std::memcpy(bytes, src, size_t(qMin(available, 4)));
    if (size == 2) {
        quint16 half = 0;
        std::memcpy(&half, bytes, sizeof half);
        return half;
    }
    if (size != 4)
        return toByte(bytes[0]);
    quint32 element = 0;
    std::memcpy(&element, bytes, sizeof element);
    return element;
}

void pack(QByteArray* out, quint32 element, int size, int room, bool least_first, int ascii)
{
    for (int j = 0; j < room; ++j) {
        const unsigned char byte = byteOf(element, place(j, size, least_first));
        if (ascii) {
            out->append(digitCharacter(byte >> 4));
            out->append(digitCharacter(byte & 0x0F));
        } else {
            out->append(toChar(byte));
        }
    }
}

void unpack(char* dst, int room, const char* src, int len, int size, bool least_first, int ascii)
{
    const int width = ascii ? 2 : 1;
    for (int written = 0; written < room; written += size) {
        quint32 element = 0;
        for (int j = 0; j < size; ++j) {
            const qint64 at = qint64(written + j) * width;
            const unsigned char byte = at < len ? byteAt(src + at, int(len - at), ascii) : 0;
            element |= quint32(byte) << (8 * place(j, size, least_first));
        }
        store(dst + written, element, size, room - written);
    }
}

} // namespace element_packing
