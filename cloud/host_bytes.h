#ifndef CLOUD_HOST_BYTES_H
#define CLOUD_HOST_BYTES_H

#include <QByteArray>

#include <cstring>

/// \file
/// Numbers in the host's bytes: least significant byte first, on every processor. All inline: a
/// conversion is hardly more than that.
namespace host_bytes {

/// The \a size low bytes of \a number (1, 2 or 4), least significant first.
inline QByteArray fromNumber(quint32 number, int size)
{
    char bytes[4];
    for (int i = 0; i < 4; ++i) {
        const unsigned char byte = static_cast<unsigned char>((number >> (8 * i)) & 0xFF);
        std::memcpy(bytes + i, &byte, 1);
    }
    return QByteArray(bytes, size);
}
/// The number in the first \a size bytes (1, 2 or 4). Extra bytes are ignored; too few give 0.
inline quint32 toNumber(const QByteArray& bytes, int size)
{
    if (bytes.size() < size)
        return 0;
    const char* first = bytes.constData();
    quint32 number = 0;
    for (int i = 0; i < size; ++i)
        number |= quint32(static_cast<unsigned char>(first[i])) << (8 * i);
    return number;
}

/// An IEEE-754 single as four bytes.
inline QByteArray fromFloat(float number)
{
    quint32 bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    return fromNumber(bits, 4);
}
/// The IEEE-754 single in the first four bytes; missing high bytes count as zero.
inline float toFloat(const QByteArray& bytes)
{
    const quint32 bits =
        bytes.size() < 4 ? toNumber(bytes.leftJustified(4, '\0'), 4) : toNumber(bytes, 4);
    float number = 0;
    std::memcpy(&number, &bits, sizeof number);
    return number;
}

} // namespace host_bytes

#endif
