#include "tests/reliability/histories/values.h"

#include <QDataStream>

#include <cmath>
#include <cstdio>
#include <cstring>

namespace values {

namespace {

bool ends(const QString& type, const char* with)
{
    return type.endsWith(QLatin1String(with));
}

bool isBit(const QString& type)
{
    return type == QLatin1String("Bit");
}

bool isText(const QString& type)
{
    return type == QLatin1String("String") || ends(type, "-HEX");
}

bool isKnown(const QString& type)
{
    return type != QLatin1String("Ascii String");
}

int sizeOf(const QString& type)
{
    return type.startsWith(QLatin1String("16")) ? 2 : 4;
}

double saturated(double real, double least, double most)
{
    return std::fmin(std::fmax(std::trunc(real), least), most);
}

/// The first bytes as a number; 0 when there are too few.
quint32 numberIn(const QByteArray& bytes, int size)
{
    QDataStream stream(bytes);
    stream.setByteOrder(QDataStream::LittleEndian);
    quint16 half = 0;
    quint32 whole = 0;
    if (bytes.size() < size)
        return 0;
    if (size == 2)
        stream >> half;
    else
        stream >> whole;
    return size == 2 ? half : whole;
}

QByteArray bytesOf(quint32 number, int size)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream << number;
    return bytes.left(size);
}

/// As JSON has it: with escapes for quotes, slashes and control characters.
QString escaped(const QString& text)
{
    static const QString with_letter = QStringLiteral("\b\f\n\r\t");
    QString result;
    for (const QChar character : text) {
        const int letter = with_letter.indexOf(character);
        if (QStringLiteral("\"\\/").contains(character))
            result += QLatin1Char('\\') + character;
        else if (letter >= 0)
            result += QString(QLatin1Char('\\')) + QLatin1Char("bfnrt"[letter]);
        else if (character < QLatin1Char(' ') || character == QLatin1Char('\x7f'))
            result += QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
        else
            result += character;
    }
    return QLatin1Char('"') + result + QLatin1Char('"');
}

quint32 bitsOf(float real)
{
    quint32 bits = 0;
    std::memcpy(&bits, &real, sizeof bits);
    return bits;
}

QVariant numberFromService(const QString& type, double real)
{
    if (ends(type, "FLOAT"))
        return QVariant(float(real));
    const bool is_signed = ends(type, "-INT");
    const qint64 whole = is_signed ? qint64(saturated(real, -2147483648.0, 2147483647.0))
                                   : qint64(saturated(real, 0, 4294967295.0));
    if (sizeOf(type) == 4)
        return is_signed ? QVariant(int(whole)) : QVariant(uint(whole));
    const int low = int(whole & 0xFFFF);
    return is_signed ? QVariant::fromValue<short>(short(low > 0x7FFF ? low - 0x10000 : low))
                     : QVariant::fromValue<ushort>(ushort(low));
}

} // namespace

QVariant fromService(const QString& type, const Json& json, const QVariant& old, bool* taken)
{
    const Json::Kind wanted = isBit(type) ? Json::flag : isText(type) ? Json::text : Json::number;
    *taken = isKnown(type) && json.kind == wanted;
    if (!*taken)
        return old;
    if (wanted == Json::flag)
        return QVariant(json.real != 0);
    if (wanted == Json::text)
        return QVariant(QString::fromLatin1(json.characters));
    return numberFromService(type, json.real);
}

QString toService(const QString& type, const QVariant& value)
{
    if (!isKnown(type))
        return {};
    if (isBit(type))
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    if (isText(type))
        return escaped(value.toString());
    if (ends(type, "-INT"))
        return QString::number(value.toInt());
    if (!ends(type, "FLOAT"))
        return QString::number(value.toUInt());
    const double real = double(value.toFloat());
    const bool is_short = std::trunc(real) == real && std::fabs(real) < 9007199254740992.0;
    char text[400];
    std::snprintf(text, sizeof text, is_short ? "%.f" : "%f", real); // Qt's has no -0
    return QLatin1String(text);
}

QVariant fromHost(const QString& type, const QByteArray& bytes)
{
    if (!isKnown(type))
        return {};
    if (isBit(type))
        return QVariant(!bytes.isEmpty() && bytes.at(0) != '\0');
    if (type == QLatin1String("String"))
        return QVariant(QString::fromLatin1(bytes.constData())); // up to the first zero byte
    if (ends(type, "FLOAT")) {
        const quint32 bits = numberIn(bytes + QByteArray(4, '\0'), 4);
        float real = 0;
        std::memcpy(&real, &bits, sizeof real);
        return QVariant(real);
    }
    const int size = sizeOf(type);
    const quint32 number = numberIn(bytes, size);
    const QByteArray digits = QByteArray::number(number, 16);
    if (ends(type, "-HEX"))
        return QVariant(digits);
    if (ends(type, "-BCD"))
        return size == 2 ? QVariant(int(digits.toUShort())) : QVariant(digits.toUInt());
    if (size == 4)
        return ends(type, "-INT") ? QVariant(int(number)) : QVariant(number);
    return ends(type, "-INT") ? QVariant(int(qint16(number))) : QVariant(int(number));
}

QByteArray toHost(const QString& type, const QVariant& value, int data_length)
{
    if (!isKnown(type))
        return QByteArray(1, '\0');
    if (isBit(type))
        return QByteArray(1, value.toBool() ? '\1' : '\0');
    if (type == QLatin1String("String")) {
        QByteArray bytes = value.toString().toLatin1();
        while (bytes.size() < data_length)
            bytes += '\0';
        return bytes;
    }
    if (ends(type, "FLOAT"))
        return bytesOf(bitsOf(value.toFloat()), 4);
    const int size = sizeOf(type);
    if (ends(type, "-INT"))
        return bytesOf(quint32(value.toInt()), size);
    if (ends(type, "-UINT"))
        return bytesOf(value.toUInt(), size);
    return bytesOf(size == 2 ? value.toString().toUShort(nullptr, 16)
                             : value.toString().toUInt(nullptr, 16),
                   size);
}

} // namespace values
