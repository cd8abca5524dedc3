#include "tools/host/value/value_codec.h"

#include <array>
#include <charconv>
#include <cstring>

namespace tovik_host::value::codec {

namespace {

/// The number in the first \a size bytes, least significant first.
quint32 bits(const QByteArray& bytes, int size)
{
    quint32 number = 0;
    for (int i = 0; i < size; ++i)
        number |= quint32(static_cast<unsigned char>(bytes.at(i))) << (8 * i);
    return number;
}

} // namespace

std::optional<QString> decodeBit(const ItemType&, const QByteArray& bytes)
{
    return bytes.at(0) == 0 ? QStringLiteral("0") : QStringLiteral("1");
}

std::optional<QString> decodeInteger(const ItemType& type, const QByteArray& bytes)
{
    qint64 number = bits(bytes, type.size);
    // Two's complement: what exceeds the largest number stands for one below zero.
    if (type.low < 0 && number > type.high)
        number += 2 * type.low;
    return QString::number(number);
}

std::optional<QString> decodeHex(const ItemType& type, const QByteArray& bytes)
{
    const QString digits = QString::number(bits(bytes, type.size), 16).toUpper();
    return digits.rightJustified(2 * type.size, QLatin1Char('0'));
}

std::optional<QString> decodeBcd(const ItemType& type, const QByteArray& bytes)
{
    bool is_decimal = false;
    const QString digits = QString::number(bits(bytes, type.size), 16);
    const uint number = digits.toUInt(&is_decimal, 10);
    if (!is_decimal)
        return std::nullopt;
    return QString::number(number);
}

float floatFromBytes(const QByteArray& bytes)
{
    const quint32 pattern = bits(bytes, 4);
    float number = 0;
    std::memcpy(&number, &pattern, sizeof number);
    return number;
}

std::optional<QString> decodeFloat(const ItemType&, const QByteArray& bytes)
{
    // The shortest digits that read back as the same single: 0.1, not 0.100000001490116.
    std::array<char, 32> buffer = {};
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), floatFromBytes(bytes));
    return QString::fromLatin1(buffer.data(), int(end.ptr - buffer.data()));
}

std::optional<QString> decodeText(const ItemType&, const QByteArray& bytes)
{
    const int end = bytes.indexOf('\0');
    return QString::fromLatin1(end < 0 ? bytes : bytes.left(end));
}

} // namespace tovik_host::value::codec
