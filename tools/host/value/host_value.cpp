#include "tools/host/value/host_value.h"

#include "tools/host/terminal/exit_code.h"

#include <QRegularExpression>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace tovik_host::value {

namespace {

/// The number in the first \a size bytes, least significant first.
quint32 bits(const QByteArray& bytes, int size)
{
    return qFromLittleEndian<quint32>(bytes.left(size).leftJustified(4, '\0').constData());
}

template <typename Number>
QByteArray bytesOf(Number number, int size)
{
    QByteArray bytes(sizeof number, '\0');
    qToLittleEndian(number, bytes.data());
    return bytes.left(size);
}

std::optional<QString> decodeBit(const ItemType&, const QByteArray& bytes)
{
    return bytes.at(0) == 0 ? u"0"_s : u"1"_s;
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
    return digits.rightJustified(2 * type.size, u'0');
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

std::optional<QString> decodeFloat(const ItemType&, const QByteArray& bytes)
{
    // The shortest digits that read back as the same single: 0.1, not 0.100000001490116.
    std::array<char, 32> buffer = {};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(),
                                   qFromLittleEndian<float>(bytes.constData()));
    return QString::fromLatin1(buffer.data(), int(end.ptr - buffer.data()));
}

std::optional<QString> decodeText(const ItemType&, const QByteArray& bytes)
{
    const int end = bytes.indexOf('\0');
    return QString::fromLatin1(end < 0 ? bytes : bytes.left(end));
}

/// Halfway between the largest single and the next power of two.
const double rounds_to_infinity = 340282356779733661637539395458142568448.0;

using terminal::UsageError;

bool matches(const QString& text, const QString& expression)
{
    return QRegularExpression(QRegularExpression::anchoredPattern(expression))
        .match(text)
        .hasMatch();
}

/// \param kind what the text should be, for the message
qint64 parseInteger(const ItemType& type, const QString& text, int base, const QString& kind)
{
    const QLatin1String name(type.name);
    if (!matches(text, base == 16 ? u"[0-9A-Fa-f]+"_s : u"[+-]?[0-9]+"_s))
        throw UsageError(u"\"%1\" is not %2, which %3 needs"_s.arg(text, kind, name));
    bool fits = false;
    const qint64 number = text.toLongLong(&fits, base);
    if (!fits || number < type.low || number > type.high) {
        const auto shown = [base](qint64 limit) { return QString::number(limit, base).toUpper(); };
        throw UsageError(u"%1 is out of range for %2: %3 to %4"_s.arg(text, name, shown(type.low),
                                                                      shown(type.high)));
    }
    return number;
}

QByteArray encodeBit(const ItemType& type, const QString& text, int)
{
    const QString word = text.trimmed().toLower();
    if (QStringList{u"0"_s, u"off"_s, u"false"_s}.contains(word))
        return bytesOf(quint32(0), type.size);
    if (QStringList{u"1"_s, u"on"_s, u"true"_s}.contains(word))
        return bytesOf(quint32(1), type.size);
    throw UsageError(u"\"%1\" is not a bit: 0 or 1, off or on, false or true"_s.arg(text));
}

QByteArray encodeInteger(const ItemType& type, const QString& text, int)
{
    const qint64 number = parseInteger(type, text.trimmed(), 10, u"a whole number"_s);
    return bytesOf(quint32(number & 0xFFFFFFFF), type.size);
}

QByteArray encodeHex(const ItemType& type, const QString& text, int)
{
    QString digits = text.trimmed();
    if (digits.startsWith(QLatin1String("0x"), Qt::CaseInsensitive))
        digits.remove(0, 2);
    return bytesOf(quint32(parseInteger(type, digits, 16, u"a hexadecimal number"_s)), type.size);
}

QByteArray encodeBcd(const ItemType& type, const QString& text, int)
{
    const qint64 number = parseInteger(type, text.trimmed(), 10, u"a whole number"_s);
    // BCD is the decimal digits read as hexadecimal ones.
    return bytesOf(QString::number(number).toUInt(nullptr, 16), type.size);
}

QByteArray encodeFloat(const ItemType& type, const QString& text, int)
{
    QByteArray digits = text.trimmed().toUtf8();
    if (digits.startsWith('+'))
        digits.remove(0, 1);
    double wide = 0;
    const char* end = digits.constData() + digits.size();
    const auto result = std::from_chars(digits.constData(), end, wide);
    const bool too_wide = result.ec == std::errc::result_out_of_range;
    if (result.ptr != end || (result.ec != std::errc() && !too_wide) || !std::isfinite(wide))
        throw UsageError(u"\"%1\" is not a decimal number such as 12.5"_s.arg(text));
    if (too_wide || std::fabs(wide) >= rounds_to_infinity) {
        throw UsageError(u"%1 is out of range for %2: -3.4028235e38 to 3.4028235e38"_s.arg(
            text.trimmed(), QLatin1String(type.name)));
    }
    const double largest = double(std::numeric_limits<float>::max());
    const float narrow = static_cast<float>(std::clamp(wide, -largest, largest));
    return bytesOf(narrow, type.size);
}

QByteArray encodeText(const ItemType&, const QString& text, int length)
{
    for (const QChar character : text) {
        if (character.unicode() == 0 || character.unicode() > 0xFF) {
            throw UsageError(
                u"the character \"%1\" is not Latin-1, and a text item carries no other"_s.arg(
                    character));
        }
    }
    if (length > 0 && text.size() > length) {
        throw UsageError(
            u"the text has %1 characters; the item has room for %2"_s.arg(text.size()).arg(length));
    }
    return text.toLatin1().leftJustified(length, '\0');
}

const ItemType types[] = {
    {"Bit", 1, 0, 1, true, decodeBit, encodeBit},
    {"16Bit-BCD", 2, 0, 9999, true, decodeBcd, encodeBcd},
    {"16Bit-INT", 2, -32768, 32767, true, decodeInteger, encodeInteger},
    {"16Bit-UINT", 2, 0, 65535, true, decodeInteger, encodeInteger},
    {"16Bit-HEX", 2, 0, 0xFFFF, false, decodeHex, encodeHex},
    {"32Bit-BCD", 4, 0, 99999999, true, decodeBcd, encodeBcd},
    {"32Bit-INT", 4, -2147483648LL, 2147483647, true, decodeInteger, encodeInteger},
    {"32Bit-UINT", 4, 0, 4294967295LL, true, decodeInteger, encodeInteger},
    {"32Bit-HEX", 4, 0, 4294967295LL, false, decodeHex, encodeHex},
    {"32Bit-FLOAT", 4, 0, 0, true, decodeFloat, encodeFloat},
    {"String", 0, 0, 0, false, decodeText, encodeText},
};

} // namespace

const ItemType* findItemType(const QString& name)
{
    for (const ItemType& type : types) {
        if (name == QLatin1String(type.name))
            return &type;
    }
    return nullptr;
}

QString allItemTypeNames()
{
    QStringList names;
    for (const ItemType& type : types)
        names << QString::fromLatin1(type.name);
    return names.join(u", "_s);
}

std::optional<QString> decodeValue(const ItemType& type, const QByteArray& bytes)
{
    if (bytes.size() < type.size)
        return std::nullopt;
    return type.decode(type, bytes);
}

QByteArray encodeValue(const ItemType& type, const QString& text, int length)
{
    return type.encode(type, text, length);
}

bool sameValue(const ItemType& type, const QByteArray& shown, const QByteArray& wanted)
{
    const std::optional<QString> shown_text = decodeValue(type, shown);
    const std::optional<QString> wanted_text = decodeValue(type, wanted);
    if (!shown_text || !wanted_text || shown_text == wanted_text)
        return shown_text == wanted_text;
    if (type.decode == decodeText)
        return shown_text->toLatin1() == wanted_text->toUtf8();
    if (type.decode != decodeFloat)
        return false;
    const double a = double(qFromLittleEndian<float>(shown.constData()));
    const double b = double(qFromLittleEndian<float>(wanted.constData()));
    return std::fabs(a - b) <= 1e-6 * std::fmax(1.0, std::fabs(b));
}

QString hexText(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toHex(' '));
}

QByteArray parseHexBytes(const QStringList& texts)
{
    QByteArray bytes;
    const QStringList groups = texts.join(u' ').simplified().split(u' ', Qt::SkipEmptyParts);
    for (const QString& group : groups) {
        if (!matches(group, u"[0-9A-Fa-f]+"_s)) {
            throw UsageError(
                u"\"%1\" is not hexadecimal: write bytes as pairs of digits 0 to 9 and "
                "A to F, such as 01 03 00 0A"_s.arg(group));
        }
        if (group.size() % 2 != 0) {
            throw UsageError(
                u"\"%1\" has an odd number of digits: each byte has two, such as 0A"_s.arg(group));
        }
        bytes += QByteArray::fromHex(group.toLatin1());
    }
    if (bytes.isEmpty())
        throw UsageError(u"there is nothing to send: write bytes such as 01 03 00 0A"_s);
    return bytes;
}

} // namespace tovik_host::value
