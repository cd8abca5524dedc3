#include "tools/host/value/host_value.h"

#include "tools/host/value/value_codec.h"

#include <QStringList>

#include <cmath>

namespace tovik_host::value {

namespace {

using namespace codec;

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
    return names.join(QStringLiteral(", "));
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

} // namespace tovik_host::value
