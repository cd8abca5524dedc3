#include "tools/host/value/value_codec.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace tovik_host::value::codec {

namespace {

/// Halfway between the largest single and the next power of two.
const double rounds_to_infinity = 340282356779733661637539395458142568448.0;

EncodedValue failure(const QString& problem)
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
    return failure(QStringLiteral("%1 is out of range for %2: %3 to %4")
                       .arg(text, QLatin1String(type.name), shown(type.low), shown(type.high)));
}

/// Whether \a text is a sign, where one is allowed, and digits of the base: then a failed
/// conversion means that the number is too long, not that it is none.
bool consistsOfDigits(const QString& text, int base)
{
    const int first = base == 10 && !text.isEmpty() &&
                              (text.at(0) == QLatin1Char('-') || text.at(0) == QLatin1Char('+'))
                          ? 1
                          : 0;
    for (int i = first; i < text.size(); ++i) {
        const ushort code = text.at(i).unicode();
        const bool decimal = code >= '0' && code <= '9';
        const ushort lower = ushort(code | 0x20);
        if (!decimal && !(base == 16 && lower >= 'a' && lower <= 'f'))
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
        return {0, QStringLiteral("\"%1\" is not %2, which %3 needs")
                       .arg(text, QLatin1String(kind), QLatin1String(type.name))};
    }
    bool fits = false;
    const qint64 number = text.toLongLong(&fits, base);
    if (!fits || number < type.low || number > type.high)
        return {0, outOfRange(type, text, base).problem};
    return {number, QString()};
}

} // namespace

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
    return failure(
        QStringLiteral("\"%1\" is not a bit: 0 or 1, off or on, false or true").arg(text));
}

EncodedValue encodeInteger(const ItemType& type, const QString& text, int)
{
    const ParsedInteger parsed = parseInteger(type, text.trimmed(), 10, "a whole number");
    if (!parsed.problem.isEmpty())
        return failure(parsed.problem);
    return number(quint32(parsed.number & 0xFFFFFFFF), type.size);
}

EncodedValue encodeHex(const ItemType& type, const QString& text, int)
{
    QString digits = text.trimmed();
    if (digits.startsWith(QLatin1String("0x"), Qt::CaseInsensitive))
        digits.remove(0, 2);
    const ParsedInteger parsed = parseInteger(type, digits, 16, "a hexadecimal number");
    if (!parsed.problem.isEmpty())
        return failure(parsed.problem);
    return number(quint32(parsed.number), type.size);
}

EncodedValue encodeBcd(const ItemType& type, const QString& text, int)
{
    const ParsedInteger parsed = parseInteger(type, text.trimmed(), 10, "a whole number");
    if (!parsed.problem.isEmpty())
        return failure(parsed.problem);
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
        return failure(QStringLiteral("\"%1\" is not a decimal number such as 12.5").arg(text));
    if (too_wide || std::fabs(wide) >= rounds_to_infinity) {
        return failure(QStringLiteral("%1 is out of range for %2: -3.4028235e38 to 3.4028235e38")
                           .arg(text.trimmed(), QLatin1String(type.name)));
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
            return failure(QStringLiteral("the character \"%1\" is not Latin-1, and a text item "
                                          "carries no other")
                               .arg(character));
        }
    }
    if (length > 0 && text.size() > length) {
        return failure(QStringLiteral("the text has %1 characters; the item has room for %2")
                           .arg(text.size())
                           .arg(length));
    }
    return {text.toLatin1().leftJustified(length, '\0'), QString()};
}

} // namespace tovik_host::value::codec
