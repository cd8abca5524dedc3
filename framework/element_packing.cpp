#include "framework/element_packing.h"

#include <QtEndian>

#include <algorithm>
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
    char* dst = out->data() + before;
    for (int at = 0; at < size; ++at) {
        const int place = least_first ? at : size - 1 - at;
        const quint32 part = place < longest_element ? (number >> (8 * place)) & 0xFF : 0;
        if (ascii)
            dst = std::copy_n(tables.characters[part], 2, dst);
        else
            *dst++ = toChar(static_cast<unsigned char>(part));
    }
}

void pack(QByteArray* out, const char* src, int len, int size, bool least_first, int ascii)
{
    // Growing the array may move the bytes that are to be packed.
    const QByteArray kept = liesIn(*out, src) ? QByteArray(src, len) : QByteArray();
    if (!kept.isNull())
        src = kept.constData();
    const int before = out->size();
    const int width = ascii ? 2 : 1;
    const int cut = len % size;
    const int whole = len - cut;
    out->resize(before + width * len);
    char* dst = out->data() + before;
    packWhole(dst, src, whole, size, least_first, ascii);
    if (cut == 0)
        return;
    char last[longest_element] = {};
    char packed[2 * longest_element];
    std::copy(src + whole, src + len, last);
    packWhole(packed, last, size, size, least_first, ascii);
    std::copy(packed, packed + qint64(width) * cut, dst + qint64(whole) * width);
}

void unpack(char* dst, int room, const char* src, int len, int size, bool least_first, int ascii)
{
    const int width = ascii ? 2 : 1;
    const int there = qMin(room, len / width);
    const int whole = isElementSize(size) ? there - there % size : 0;
    unpackWhole(dst, src, whole, size, least_first, ascii);
    // One of three bytes counts as one of four, of which the highest is zero.
    const int full = size == 3 ? 4 : size;
    const int missing = least_first ? 0 : (full - size) * width;
    for (int at = whole; at < room; at += size) {
        char filled[2 * longest_element] = {}; // zeros, which are worth 0 as characters, too
        char last[longest_element];
        const qint64 from = qMin(qint64(at) * width, qint64(len));
        const qint64 to = qMin(from + qint64(size) * width, qint64(len));
        std::copy(src + from, src + to, filled + missing);
        unpackWhole(last, filled, full, full, least_first, ascii);
        std::copy(last, last + qMin(size, room - at), dst + at);
    }
}

} // namespace element_packing
