#ifndef FRAMEWORK_PROTOCOL_BASIC_H
#define FRAMEWORK_PROTOCOL_BASIC_H

#include "compat/export.h"

#include <QByteArray>

/// Helpers with which protocol drivers build and take apart frames: byte order, characters that
/// stand for bytes, numbers as text, arrays of 1-, 2- and 4-byte elements.
///
/// Holds no state; every operation may be called in any thread. None raises an exception, and none
/// reads or writes outside of what it is given.
///
/// Arguments that several operations share:
/// - `ascii`: non-zero carries each byte as two hexadecimal characters, high nibble first, upper
///   case on output; zero carries raw bytes.
/// - `order`: which byte of a number comes first. There are three readings, and drivers rely on
///   each: byteOrderChange() swaps for every value but 1; array2Number() and addNumber() take every
///   non-zero value as least significant first; the data areas take exactly 1 as least significant
///   first and every other value as most significant first.
/// - `size`: bytes of one element, 1, 2 or 4. Elements in memory are in the host's byte order.
class TOVIK_EXPORT ProtocolBasic
{
public:
    virtual ~ProtocolBasic();

    /// Always 1: least significant byte first.
    static int hostByteOrder();
    /// Swaps the bytes unless \a order is hostByteOrder(): 0x1234 with 0 gives 0x3412.
    static unsigned short byteOrderChange(unsigned short value, int order);
    /// The same for four bytes: 0x12345678 with 0 gives 0x78563412.
    static unsigned int byteOrderChange(unsigned int value, int order);

    /// The digit 0-9, A-F or a-f as a number; any other character gives 0.
    static char ascii2Hex(char c);
    /// A number as a digit: 0-9, then A, B and on (16 gives G), without a range check.
    static char hex2Ascii(char v);
    /// Converts \a len characters in place. False, and nothing done, for null or \a len below 1.
    static bool ascii2Hex(char* buf, int len);
    /// Converts \a len numbers in place. False, and nothing done, for null or \a len below 1.
    static bool hex2Ascii(char* buf, int len);

    /// Reads a number of up to 32 bits; of a longer array, the four least significant bytes count.
    /// An odd last character counts once more as the high nibble of the first byte; a single one
    /// gives 0. Example: 78 56 34 12 with \a order 1 gives 0x12345678.
    static int array2Number(const QByteArray& data, int order, int ascii);
    /// Appends one byte.
    static void addNumber(QByteArray& out, unsigned char value, int ascii);
    /// Appends two bytes: 0x1234 with \a order 0 gives 12 34, with any other 34 12.
    static void addNumber(QByteArray& out, unsigned short value, int order, int ascii);
    /// Appends four bytes: 0x12345678 with \a order 1 gives 78 56 34 12.
    static void addNumber(QByteArray& out, unsigned int value, int order, int ascii);

    /// \a value as text in \a base (2 to 36), padded with zeros to \a width (at most 32).
    ///
    /// A zero without a width is no digit at all. A negative number has a sign in base 10 only; its
    /// zeros stand in front of the sign and fill one character less than the width: -5 in width 6
    /// is "000-5". In other bases it is taken as unsigned. A bad base or width is logged and gives
    /// a null array.
    static QByteArray number2Str(int value, int width, int base);
    /// The same for an unsigned number.
    static QByteArray number2Str(unsigned int value, int width, int base);
    /// Reads a number up to the first zero byte. A minus anywhere makes it negative; digits are not
    /// checked against the base. A bad base (2 to 36 are good) is logged and gives 0.
    static int str2Number(const QByteArray& text, int base);
    /// Takes \a value for digits of \a fromBase (at most 8) and reads them in \a toBase: 1234 from
    /// 10 to 16 is 0x1234, and back. A base of 0 to take digits from gives 0.
    int digitBaseTransform(int value, int toBase, int fromBase);

    /// Appends \a count elements of \a size bytes from \a data. Any other positive size takes one
    /// byte of the source for each element, and zeros. Always returns 0.
    int composeDataArea(QByteArray* out, char* data, int size, int count, int order, int ascii);
    /// Appends \a len bytes of elements. A last element that is cut counts as filled up with zero
    /// bytes, of which only the ones that fit are written. False, with a line in the log, for null
    /// or a size outside 1 to 4; false for a size of 3 when there is anything to pack.
    static bool addArray(QByteArray& out, const char* data, int len, int size, int order,
                         int ascii);
    /// The inverse of addArray(): \a out becomes \a len bytes (half of it with characters). On
    /// failure it is cleared.
    static bool extractArray(QByteArray& out, const char* src, int len, int size, int order,
                             int ascii);
    /// The inverse of composeDataArea(): reads \a len bytes (characters) of \a src from \a offset
    /// on, no more than there are, and writes the elements to \a dst, which must have room for
    /// \a len bytes (half of it with characters).
    /// \return 0, or 0x400CFFFF for a size above 4 (logged), null or a negative offset.
    int extractDataArea(char* dst, QByteArray* src, int offset, int len, int size, int order,
                        int ascii);
};

#endif
