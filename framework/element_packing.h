#ifndef FRAMEWORK_ELEMENT_PACKING_H
#define FRAMEWORK_ELEMENT_PACKING_H

#include <QByteArray>

#include <cstring>

/// \file
/// One way to pack elements into a frame and one to unpack them, for all of ProtocolBasic.
///
/// Both go in two steps: the bytes of whole elements change between the host's order and the
/// frame's in one pass, and change between bytes and characters in another. A last element that is
/// cut is filled up with zero bytes and goes by itself.
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
unsigned char digitValue(char c);

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

/// Two characters as a byte.
inline unsigned char byteOf(const char* characters)
{
    return static_cast<unsigned char>(digitValue(characters[0]) * 16 + digitValue(characters[1]));
}

/// Appends a number of \a size bytes; those beyond its own four are zero.
void appendNumber(QByteArray* out, quint32 number, int size, bool least_first, int ascii);

/// Appends \a len bytes of elements of 1, 2 or 4 bytes. They may lie in \a out.
void pack(QByteArray* out, const char* src, int len, int size, bool least_first, int ascii);

/// Writes the elements in \a len bytes or characters of \a src to \a dst, in the host's byte order,
/// and no more than \a room bytes. The size is 1, 2, 3 or 4.
void unpack(char* dst, int room, const char* src, int len, int size, bool least_first, int ascii);

} // namespace element_packing

#endif
