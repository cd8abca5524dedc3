#include "framework/protocol_basic.h"

#include "compat/twos_complement.h"
#include "framework/element_packing.h"
#include "framework/result_code.h"

#include <QDebug>

#include <cmath>
#include <limits>

using namespace element_packing;
using twos_complement::signed32;

namespace {

const int least_base = 2;
const int largest_base = 36;
const int largest_width = 32;
const int longest_array = std::numeric_limits<int>::max() / 4; // bytes

bool isBase(int base)
{
    return base >= least_base && base <= largest_base;
}

bool isFormat(int width, int base)
{
    if (!isBase(base)) {
        qDebug() << "number2Str: Numerical base error!";
        return false;
    }
    if (width > largest_width) {
        qDebug() << "number2Str: Filed width error!";
        return false;
    }
    return true;
}

/// Whether an element may be of so many bytes as far as the caller is told.
bool isSize(int size)
{
    return size >= 1 && size <= 4;
}

/// The digits of a number other than 0, most significant first.
QByteArray digitsOf(quint32 magnitude, int base)
{
    char digits[32];
    int first = 32;
    for (; magnitude != 0; magnitude /= quint32(base))
        digits[--first] = ProtocolBasic::hex2Ascii(char(magnitude % quint32(base)));
    return QByteArray(digits + first, 32 - first);
}

QByteArray zeros(int count)
{
    return QByteArray(qMax(count, 0), '0');
}

/// A power in single precision, without its fraction.
qint64 wholePower(int base, int exponent)
{
    const double power = std::floor(std::pow(float(base), float(exponent)));
    const double limit = 9.2e18;
    return qint64(qBound(-limit, power, limit));
}

} // namespace

ProtocolBasic::~ProtocolBasic() {}

int ProtocolBasic::hostByteOrder()
{
    return 1;
}

unsigned short ProtocolBasic::byteOrderChange(unsigned short value, int order)
{
    if (order == hostByteOrder())
        return value;
    return static_cast<unsigned short>(((value << 8) | (value >> 8)) & 0xFFFF);
}

unsigned int ProtocolBasic::byteOrderChange(unsigned int value, int order)
{
    if (order == hostByteOrder())
        return value;
    return (value << 24) | ((value & 0xFF00) << 8) | ((value >> 8) & 0xFF00) | (value >> 24);
}

char ProtocolBasic::ascii2Hex(char c)
{
    return toChar(digitValue(c));
}

char ProtocolBasic::hex2Ascii(char v)
{
    return digitCharacter(toByte(v));
}

bool ProtocolBasic::ascii2Hex(char* buf, int len)
{
    if (!buf || len <= 0)
        return false;
    for (int i = 0; i < len; ++i)
        buf[i] = ascii2Hex(buf[i]);
    return true;
}

bool ProtocolBasic::hex2Ascii(char* buf, int len)
{
    if (!buf || len <= 0)
        return false;
    for (int i = 0; i < len; ++i)
        buf[i] = hex2Ascii(buf[i]);
    return true;
}

int ProtocolBasic::array2Number(const QByteArray& data, int order, int ascii)
{
    const int width = ascii ? 2 : 1;
    const int count = data.size() / width;
    quint32 number = 0;
    const char* bytes = data.constData();
    for (int k = 0; k < count; ++k, bytes += width) {
        const int place = order != 0 ? k : count - 1 - k;
        if (place < 4)
            number |= quint32(ascii ? byteOf(bytes) : toByte(bytes[0])) << (8 * place);
    }
    // An odd character is read again from the first byte on, with nothing after it.
    const int place = order != 0 ? 0 : count - 1;
    if (ascii && data.size() % 2 == 1 && count > 0 && place < 4)
        number |= quint32(digitValue(data.at(data.size() - 1))) << (8 * place + 4);
    return signed32(number);
}

void ProtocolBasic::addNumber(QByteArray& out, unsigned char value, int ascii)
{
    appendNumber(&out, value, 1, true, ascii);
}

void ProtocolBasic::addNumber(QByteArray& out, unsigned short value, int order, int ascii)
{
    appendNumber(&out, value, 2, order != 0, ascii);
}

void ProtocolBasic::addNumber(QByteArray& out, unsigned int value, int order, int ascii)
{
    appendNumber(&out, value, 4, order != 0, ascii);
}

QByteArray ProtocolBasic::number2Str(int value, int width, int base)
{
    if (base != 10 || value >= 0)
        return number2Str(static_cast<unsigned int>(value), width, base);
    if (!isFormat(width, base))
        return QByteArray();
    const QByteArray text = '-' + digitsOf(0U - quint32(value), base);
    return zeros(width - 1 - text.size()) + text;
}

QByteArray ProtocolBasic::number2Str(unsigned int value, int width, int base)
{
    if (!isFormat(width, base))
        return QByteArray();
    const QByteArray digits = digitsOf(value, base);
    return zeros(width - digits.size()) + digits;
}

int ProtocolBasic::str2Number(const QByteArray& text, int base)
{
    if (!isBase(base)) {
        qDebug() << "str2Number: Numerical base error!";
        return 0;
    }
    quint32 number = 0;
    bool negative = false;
    for (int i = 0; i < text.size() && text.at(i) != '\0'; ++i) {
        if (text.at(i) == '-')
            negative = true;
        else
            number = number * quint32(base) + digitValue(text.at(i));
    }
    return signed32(negative ? 0U - number : number);
}

int ProtocolBasic::digitBaseTransform(int value, int toBase, int fromBase)
{
    if (fromBase == 0)
        return 0;
    const int most_digits = 8;
    qint64 rest = value; // wider than int: the smallest one cannot be divided by -1
    quint64 sum = 0;
    for (int i = 0; i < most_digits && rest != 0; ++i) {
        sum += quint64(rest % fromBase) * quint64(wholePower(toBase, i));
        rest /= fromBase;
    }
    return signed32(quint32(sum & 0xFFFFFFFF));
}

int ProtocolBasic::composeDataArea(QByteArray* out, char* data, int size, int count, int order,
                                   int ascii)
{
    if (!out || !data || size <= 0)
        return 0;
    // No array holds more than that, in characters.
    if (count <= 0 || count > std::numeric_limits<int>::max() / 2 / size)
        return 0;
    if (isElementSize(size)) {
        pack(out, data, count * size, size, order == 1, ascii);
        return 0;
    }
    QByteArray packed; // not into the array at once: it may hold the source
    for (int i = 0; i < count; ++i)
        appendNumber(&packed, toByte(data[qint64(i) * size]), size, order == 1, ascii);
    out->append(packed);
    return 0;
}

bool ProtocolBasic::addArray(QByteArray& out, const char* data, int len, int size, int order,
                             int ascii)
{
    if (!isSize(size) || !data || len > longest_array) {
        qDebug() << "composeDataArray: Invalid parameter!";
        return false;
    }
    if (len > 0 && !isElementSize(size))
        return false;
    if (len > 0)
        pack(&out, data, len, size, order == 1, ascii);
    return true;
}

bool ProtocolBasic::extractArray(QByteArray& out, const char* src, int len, int size, int order,
                                 int ascii)
{
    if (!isSize(size) || !src) {
        qDebug() << "composeDataArray: Invalid parameter!";
        out.clear();
        return false;
    }
    QByteArray bytes;
    const bool packed = len <= 0 || isElementSize(size);
    if (packed && len > 0) {
        bytes.resize(ascii ? len / 2 : len);
        unpack(bytes.data(), bytes.size(), src, len, size, order == 1, ascii);
    }
    out.swap(bytes); // not before: the source may lie in it
    return packed;
}

int ProtocolBasic::extractDataArea(char* dst, QByteArray* src, int offset, int len, int size,
                                   int order, int ascii)
{
    if (size > 4) {
        qDebug() << "Warning: Not support byte group operation of " << size;
        return result_code::not_supported;
    }
    if (len < 1 || size < 1)
        return 0;
    if (!dst || !src || offset < 0)
        return result_code::not_supported;
    const char* bytes = src->data(); // makes the array its owner's alone
    const int there = qBound(0, src->size() - offset, len);
    unpack(dst, ascii ? there / 2 : there, bytes + offset, there, size, order == 1, ascii);
    return 0;
}
