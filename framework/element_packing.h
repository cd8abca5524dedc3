#ifndef FRAMEWORK_ELEMENT_PACKING_H
#define FRAMEWORK_ELEMENT_PACKING_H

#include <QByteArray>

#include <cstring>

/// \file
/// One way to pack an element into a frame and one to unpack it, for all of ProtocolBasic.
namespace element_packing {

inline unsigned char toByte(char c)
{
    return static_cast<unsigned char>(c);
}

/// The character of those bits; a cast leaves it open where characters are signed.
inline char toChar(unsigned char byte)
{
    char c = 0;
    std::memcpy(&c, &byte, 1);
    return c;
}

/// A hexadecimal digit as a number; any other character is 0.
inline unsigned char digitValue(char c)
{
    if (c >= '0' && c <= '9')
        return static_cast<unsigned char>(c - '0');
    if (c >= 'A' && c <= 'F')
        return static_cast<unsigned char>(c - 'A' + 10);
    if (c >= 'a' && c <= 'f')
        return static_cast<unsigned char>(c - 'a' + 10);
    return 0;
}

/// A number as a digit, 10 as A and on.
inline char digitCharacter(unsigned char value)
{
    return toChar(static_cast<unsigned char>(value + (value <= 9 ? '0' : 'A' - 10)));
}

/// The sizes that are read and written as numbers.
inline bool isElementSize(int size)
{
    return size == 1 || size == 2 || size == 4;
}

/// The byte at \a src, of which \a available characters or bytes are there; what is missing is 0.
inline unsigned char byteAt(const char* src, int available, int ascii)
{
    if (available <= 0)
        return 0;
    if (!ascii)
        return toByte(src[0]);
    const int low = available > 1 ? digitValue(src[1]) : 0;
    return static_cast<unsigned char>(digitValue(src[0]) * 16 + low);
}

/// An element of \a size bytes in the host's byte order, of which \a available are there.
quint32 load(const char* src, int available, int size);

/// Appends the first \a room bytes of an element of \a size bytes.
void pack(QByteArray* out, quint32 element, int size, int room, bool least_first, int ascii);

/// Writes the elements in \a len bytes or characters of \a src to \a dst, in the host's byte order,
/// and no more than \a room bytes.
void unpack(char* dst, int room, const char* src, int len, int size, bool least_first, int ascii);

} // namespace element_packing

#endif
