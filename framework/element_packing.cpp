#include "framework/element_packing.h"

#include <QtEndian>

#include <functional>

namespace element_packing {

namespace {

const int longest_element = 4;
/// Bytes that are reordered before they become characters, or after they were such.
const int chunk = 256;

/// The two tables by which bytes and characters change into each other. They are constants, not the
/// result of an initialiser: a driver's own initialisers may run before this library's.
struct Tables
{
    unsigned char values[256];
    char characters[256][2];
};

constexpr unsigned char valueOf(int character)
{
    return static_cast<unsigned char>(character >= '0' && character <= '9'   ? character - '0'
                                      : character >= 'A' && character <= 'F' ? character - 'A' + 10
                                      : character >= 'a' && character <= 'f' ? character - 'a' + 10
                                                                             : 0);
}

constexpr char characterOf(int digit)
{
    return "0123456789ABCDEF"[digit];
}

/// Counts \a byte up from 0 to 255: C++11 has no loops in constants.
template <int count, int... byte>
struct ForEachByte : ForEachByte<count - 1, count - 1, byte...>
{};

template <int... byte>
struct ForEachByte<0, byte...>
{
    static constexpr Tables tables()
    {
        return {{valueOf(byte)...}, {{characterOf(byte / 16), characterOf(byte % 16)}...}};
    }
};

constexpr Tables tables = ForEachByte<256>::tables();

template <typename Number>
void swapEach(char* dst, const char* src, int bytes)
{
    for (int at = 0; at < bytes; at += int(sizeof(Number))) {
        Number number;
        std::memcpy(&number, src + at, sizeof number);
        number = qbswap(number);
        std::memcpy(dst + at, &number, sizeof number);
    }
}

/// Changes whole elements from the host's byte order to the frame's, or back: it is the same.
void reorder(char* dst, const char* src, int bytes, int size, bool least_first)
{
    const bool host_is_least_first = Q_BYTE_ORDER == Q_LITTLE_ENDIAN;
    if (size == 1 || least_first == host_is_least_first)
        std::memmove(dst, src, size_t(bytes)); // an array may be unpacked in place
    else if (size == 2)
        swapEach<quint16>(dst, src, bytes);
    else
        swapEach<quint32>(dst, src, bytes);
}

void toCharacters(char* dst, const char* src, int bytes)
{
    for (int i = 0; i < bytes; ++i, dst += 2)
        std::memcpy(dst, tables.characters[toByte(src[i])], 2);
}

void fromCharacters(char* dst, const char* src, int bytes)
{
    for (int i = 0; i < bytes; ++i, src += 2)
        dst[i] = toChar(byteOf(src));
}

/// Where byte \a index of an element in the frame belongs in the number.
int place(int index, int size, bool least_first)
{
    return least_first ? index : size - 1 - index;
}

unsigned char partOf(quint32 number, int index)
{
    if (index >= longest_element)
        return 0;
    return static_cast<unsigned char>((number >> (8 * index)) & 0xFF);
}

/// A number of the host's; those of three bytes count as four of which one is zero.
quint32 load(const char* src, int size)
{
    quint16 half = 0;
    quint32 number = 0;
    if (size == 1)
        return toByte(src[0]);
    if (size == 2) {
        std::memcpy(&half, src, sizeof half);
        return half;
    }
    std::memcpy(&number, src, sizeof number);
    return number;
}

void store(char* dst, quint32 number, int size)
{
    const quint16 half = static_cast<quint16>(number & 0xFFFF);
    if (size == 1)
        dst[0] = toChar(static_cast<unsigned char>(number & 0xFF));
    else if (size == 2)
        std::memcpy(dst, &half, sizeof half);
    else
        std::memcpy(dst, &number, sizeof number);
}

/// Writes the first \a room bytes of a number, or twice as many characters.
void packNumber(char* dst, quint32 number, int size, int room, bool least_first, int ascii)
{
    for (int j = 0; j < room; ++j) {
        const char byte = toChar(partOf(number, place(j, size, least_first)));
        if (ascii)
            toCharacters(dst + qint64(j) * 2, &byte, 1);
        else
            dst[j] = byte;
    }
}

/// The bytes of whole elements, \a bytes of them.
void packWhole(char* dst, const char* src, int bytes, int size, bool least_first, int ascii)
{
    if (!ascii) {
        reorder(dst, src, bytes, size, least_first);
        return;
    }
    char ordered[chunk];
    for (int at = 0; at < bytes; at += chunk) {
        const int part = qMin(chunk, bytes - at);
        reorder(ordered, src + at, part, size, least_first);
        toCharacters(dst + qint64(at) * 2, ordered, part);
    }
}

void unpackWhole(char* dst, const char* src, int bytes, int size, bool least_first, int ascii)
{
    if (!ascii) {
        reorder(dst, src, bytes, size, least_first);
        return;
    }
    char ordered[chunk];
    for (int at = 0; at < bytes; at += chunk) {
        const int part = qMin(chunk, bytes - at);
        fromCharacters(ordered, src + 2 * qint64(at), part);
        reorder(dst + at, ordered, part, size, least_first);
    }
}

/// One element of which \a len bytes or characters are there; the rest is zero.
quint32 unpackNumber(const char* src, int len, int size, bool least_first, int ascii)
{
    quint32 number = 0;
    for (int j = 0; j < size; ++j) {
        char pair[2] = {'0', '0'};
        const int at = ascii ? 2 * j : j;
        if (at < len)
            std::memcpy(pair, src + at, size_t(qMin(ascii ? 2 : 1, len - at)));
        else if (!ascii)
            pair[0] = '\0';
        const unsigned char byte = ascii ? byteOf(pair) : toByte(pair[0]);
        number |= quint32(byte) << (8 * place(j, size, least_first));
    }
    return number;
}

bool liesIn(const QByteArray& array, const char* bytes)
{
    // Pointers into different arrays have no order but this one.
    const std::less<const char*> before = std::less<const char*>();
    const char* begin = array.constData();
    return !before(bytes, begin) && before(bytes, begin + array.size());
}

} // namespace

unsigned char digitValue(char c)
{
    return tables.values[toByte(c)];
}

void appendNumber(QByteArray* out, quint32 number, int size, bool least_first, int ascii)
{
    const int before = out->size();
    out->resize(before + (ascii ? 2 * size : size));
    packNumber(out->data() + before, number, size, size, least_first, ascii);
}

void pack(QByteArray* out, const char* src, int len, int size, bool least_first, int ascii)
{
    // Growing the array may move the bytes that are to be packed.
    const QByteArray kept = liesIn(*out, src) ? QByteArray(src, len) : QByteArray();
    if (!kept.isNull())
        src = kept.constData();
    const int before = out->size();
    const int width = ascii ? 2 : 1;
    const int whole = len - len % size;
    out->resize(before + width * len);
    char* dst = out->data() + before;
    packWhole(dst, src, whole, size, least_first, ascii);
    if (whole < len) {
        char last[longest_element] = {0, 0, 0, 0};
        std::memcpy(last, src + whole, size_t(len - whole));
        packNumber(dst + qint64(whole) * width, load(last, size), size, len - whole, least_first,
                   ascii);
    }
}

void unpack(char* dst, int room, const char* src, int len, int size, bool least_first, int ascii)
{
    const int width = ascii ? 2 : 1;
    const int there = qMin(room, len / width);
    const int whole = isElementSize(size) ? there - there % size : 0;
    unpackWhole(dst, src, whole, size, least_first, ascii);
    for (int at = whole; at < room; at += size) {
        const int left = int(qMax(qint64(0), len - qint64(at) * width));
        char last[longest_element] = {0, 0, 0, 0};
        store(last, unpackNumber(src + qint64(at) * width, left, size, least_first, ascii), size);
        std::memcpy(dst + at, last, size_t(qMin(size, room - at)));
    }
}

} // namespace element_packing
