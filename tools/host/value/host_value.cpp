#include "tools/host/value/host_value.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace tovik_host::value {

namespace {

/// The number in the first \a size bytes, least significant first.
quint32 bits(const QByteArray& bytes, int size)
{
    quint32 number = 0;
    for (int i = 0; i < size; ++i)
        number |= quint32(static_cast<unsigned char>(bytes.at(i))) << (8 * i);
    return number;
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

/// The IEEE-754 single in the first four bytes.
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

/// Halfway between the largest single and the next power of two.
const double rounds_to_infinity = 340282356779733661637539395458142568448.0;

EncodedValue notEncoded(const QString& problem)
{
    return {QByteArray(), problem};
}

EncodedValue number(quint32 bits, int size)
{
    QByteArray bytes(size, '\0');
    for (int i = 0; i < size; ++i)
        bytes[i] = static_cast<char>((bits >> (8 * i)) & 0xFF);
    return {bytes, QString()};
}

EncodedValue outOfRange(const ItemType& type, const QString& text, int base)
{
    const auto shown = [base](qint64 limit) { return QString::number(limit, base).toUpper(); };
    return notEncoded(u"%1 is out of range for %2: %3 to %4"_s.arg(
        text, QLatin1String(type.name), shown(type.low), shown(type.high)));
}

bool isHexDigit(QChar character)
{
    const ushort code = character.unicode();
    const ushort lower = ushort(code | 0x20);
    return (code >= '0' && code <= '9') || (lower >= 'a' && lower <= 'f');
}

/// Whether \a text is a sign, where one is allowed, and digits of the base: then a failed
/// conversion means that the number is too long, not that it is none.
bool consistsOfDigits(const QString& text, int base)
{
    const int first =
        base == 10 && !text.isEmpty() && (text.at(0) == u'-' || text.at(0) == u'+') ? 1 : 0;
    for (int i = first; i < text.size(); ++i) {
        const ushort code = text.at(i).unicode();
        const bool is_decimal = code >= '0' && code <= '9';
        if (!is_decimal && !(base == 16 && isHexDigit(text.at(i))))
            return false;
    }
    return text.size() > first;
}

struct ParsedInteger
{
    qint64 number = 0;
    QString problem;
};

ParsedInteger parseInteger(const ItemType& type, const QString& text, int base, const char* kind)
{
    if (!consistsOfDigits(text, base)) {
        return {0, u"\"%1\" is not %2, which %3 needs"_s.arg(text, QLatin1String(kind),
                                                             QLatin1String(type.name))};
    }
    bool fits = false;
    const qint64 number = text.toLongLong(&fits, base);
    if (!fits || number < type.low || number > type.high)
        return {0, outOfRange(type, text, base).problem};
    return {number, QString()};
}

EncodedValue encodeBit(const ItemType& type, const QString& text, int)
{
    struct Word
    {
        const char* text;
        quint32 bit;
    };
    static const Word words[] = {{"0", 0},   {"1", 1},    {"false", 0},
                                 {"off", 0}, {"true", 1}, {"on", 1}};
    for (const Word& word : words) {
        if (text.trimmed().compare(QLatin1String(word.text), Qt::CaseInsensitive) == 0)
            return number(word.bit, type.size);
    }
    return notEncoded(u"\"%1\" is not a bit: 0 or 1, off or on, false or true"_s.arg(text));
}

EncodedValue encodeInteger(const ItemType& type, const QString& text, int)
{
    const ParsedInteger parsed = parseInteger(type, text.trimmed(), 10, "a whole number");
    if (!parsed.problem.isEmpty())
        return notEncoded(parsed.problem);
    return number(quint32(parsed.number & 0xFFFFFFFF), type.size);
}

EncodedValue encodeHex(const ItemType& type, const QString& text, int)
{
    QString digits = text.trimmed();
    if (digits.startsWith(QLatin1String("0x"), Qt::CaseInsensitive))
        digits.remove(0, 2);
    const ParsedInteger parsed = parseInteger(type, digits, 16, "a hexadecimal number");
    if (!parsed.problem.isEmpty())
        return notEncoded(parsed.problem);
    return number(quint32(parsed.number), type.size);
}

EncodedValue encodeBcd(const ItemType& type, const QString& text, int)
{
    const ParsedInteger parsed = parseInteger(type, text.trimmed(), 10, "a whole number");
    if (!parsed.problem.isEmpty())
        return notEncoded(parsed.problem);
    // BCD is the decimal digits read as hexadecimal ones.
    return number(QString::number(parsed.number).toUInt(nullptr, 16), type.size);
}

EncodedValue encodeFloat(const ItemType& type, const QString& text, int)
{
    QByteArray digits = text.trimmed().toUtf8();
    if (digits.startsWith('+'))
        digits.remove(0, 1);
    double wide = 0;
    const char* end = digits.constData() + digits.size();
    const auto result = std::from_chars(digits.constData(), end, wide);
    const bool too_wide = result.ec == std::errc::result_out_of_range;
    if (result.ptr != end || (result.ec != std::errc() && !too_wide) || !std::isfinite(wide))
        return notEncoded(u"\"%1\" is not a decimal number such as 12.5"_s.arg(text));
    if (too_wide || std::fabs(wide) >= rounds_to_infinity) {
        return notEncoded(u"%1 is out of range for %2: -3.4028235e38 to 3.4028235e38"_s.arg(
            text.trimmed(), QLatin1String(type.name)));
    }
    const double largest = double(std::numeric_limits<float>::max());
    const float narrow = static_cast<float>(std::clamp(wide, -largest, largest));
    quint32 pattern = 0;
    std::memcpy(&pattern, &narrow, sizeof pattern);
    return number(pattern, type.size);
}

EncodedValue encodeText(const ItemType&, const QString& text, int length)
{
    for (const QChar character : text) {
        if (character.unicode() == 0 || character.unicode() > 0xFF) {
            return notEncoded(
                u"the character \"%1\" is not Latin-1, and a text item carries no other"_s.arg(
                    character));
        }
    }
    if (length > 0 && text.size() > length) {
        return notEncoded(
            u"the text has %1 characters; the item has room for %2"_s.arg(text.size()).arg(length));
    }
    return {text.toLatin1().leftJustified(length, '\0'), QString()};
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

EncodedValue encodeValue(const ItemType& type, const QString& text, int length)
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
    const double a = double(floatFromBytes(shown));
    const double b = double(floatFromBytes(wanted));
    return std::fabs(a - b) <= 1e-6 * std::fmax(1.0, std::fabs(b));
}

QString hexText(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toHex(' '));
}

namespace {

HexBytes failure(const QString& problem)
{
    return {QByteArray(), problem};
}

} // namespace

HexBytes parseHexBytes(const QStringList& texts)
{
    HexBytes result;
    const QStringList groups = texts.join(u' ').simplified().split(u' ', Qt::SkipEmptyParts);
    for (const QString& group : groups) {
        for (const QChar character : group) {
            if (!isHexDigit(character)) {
                return failure(
                    u"\"%1\" is not hexadecimal: write bytes as pairs of digits 0 to 9 and A to F, "
                    "such as 01 03 00 0A"_s.arg(group));
            }
        }
        if (group.size() % 2 != 0) {
            return failure(
                u"\"%1\" has an odd number of digits: each byte has two, such as 0A"_s.arg(group));
        }
        result.bytes += QByteArray::fromHex(group.toLatin1());
    }
    if (result.bytes.isEmpty())
        return failure(u"there is nothing to send: write bytes such as 01 03 00 0A"_s);
    return result;
}

} // namespace tovik_host::value
