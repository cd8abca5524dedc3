#include "tests/reliability/stress/stamped_value.h"

#include <QtEndian>

#include <cstring>

namespace stamped {

namespace {

/// A HEX or UINT item: the stamp, and its complement above it.
quint32 withComplement(qint64 stamp)
{
    const quint32 low = quint32(stamp) & 0xFFFF;
    return low | (~low << 16);
}

qint64 withoutComplement(quint32 number)
{
    const qint64 stamp = number & 0xFFFF;
    return withComplement(stamp) == number ? stamp : torn;
}

/// Of any length from 10 to 200 characters, so that new memory is needed most of the time.
QByteArray textOf(qint64 stamp)
{
    const int length = 1 + int(stamp * 37 % 190);
    return QByteArray::number(stamp, 16).rightJustified(8, '0') + ':' +
           QByteArray(length, char('a' + stamp % 26));
}

qint64 stampOfText(const QByteArray& text)
{
    bool is_number = false;
    const qint64 stamp = text.left(8).toLongLong(&is_number, 16);
    return is_number && stamp >= 0 && textOf(stamp) == text ? stamp : torn;
}

float asFloat(quint32 bits)
{
    float real = 0;
    std::memcpy(&real, &bits, sizeof real);
    return real;
}

quint32 bitsOf(float real)
{
    quint32 bits = 0;
    std::memcpy(&bits, &real, sizeof bits);
    return bits;
}

/// Whole numbers that a float holds exactly.
qint64 stampOfReal(double real)
{
    return real >= 0 && real <= 0xFFFFFF && double(qint64(real)) == real ? qint64(real) : torn;
}

} // namespace

const char* typeName(Kind kind)
{
    const char* const names[kind_count] = {"String", "32Bit-HEX", "32Bit-UINT", "32Bit-FLOAT"};
    return names[int(kind)];
}

qint64 stampOf(Kind kind, quint32 sequence)
{
    const quint32 masks[kind_count] = {0xFFFFFFFF, 0xFFFF, 0xFFFF, 0xFFFFFF};
    return sequence & masks[int(kind)];
}

QByteArray hostBytes(Kind kind, qint64 stamp)
{
    if (kind == Kind::text)
        return textOf(stamp);
    QByteArray bytes(4, '\0');
    qToLittleEndian(kind == Kind::real ? bitsOf(float(stamp)) : withComplement(stamp),
                    bytes.data());
    return bytes;
}

nlohmann::json json(Kind kind, qint64 stamp)
{
    switch (kind) {
    case Kind::text:
        return textOf(stamp).toStdString();
    case Kind::hex:
        return QByteArray::number(withComplement(stamp), 16).toUpper().toStdString();
    case Kind::number:
        return withComplement(stamp);
    case Kind::real:
        break;
    }
    return double(stamp);
}

QVariant variant(Kind kind, qint64 stamp)
{
    const nlohmann::json value = json(kind, stamp);
    if (value.is_string())
        return QString::fromStdString(value.get<std::string>());
    return kind == Kind::real ? QVariant(float(stamp)) : QVariant(withComplement(stamp));
}

qint64 stampOfHostBytes(Kind kind, const QByteArray& bytes)
{
    if (kind == Kind::text)
        return stampOfText(bytes);
    if (bytes.size() != 4)
        return torn;
    const quint32 bits = qFromLittleEndian<quint32>(bytes.constData());
    return kind == Kind::real ? stampOfReal(double(asFloat(bits))) : withoutComplement(bits);
}

qint64 stampOfJson(Kind kind, const nlohmann::json& json)
{
    const bool is_text = kind == Kind::text || kind == Kind::hex;
    if (is_text ? !json.is_string() : !json.is_number())
        return torn;
    if (kind == Kind::real)
        return stampOfReal(json.get<double>());
    if (kind == Kind::number)
        return withoutComplement(quint32(json.get<double>()));
    const QByteArray text = QByteArray::fromStdString(json.get<std::string>());
    bool is_number = false;
    const quint32 number = text.toUInt(&is_number, 16);
    if (kind == Kind::text)
        return stampOfText(text);
    return is_number ? withoutComplement(number) : torn;
}

} // namespace stamped
