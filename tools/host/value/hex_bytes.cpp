#include "tools/host/value/hex_bytes.h"

namespace tovik_host::value {

namespace {

bool isHexDigit(QChar character)
{
    const ushort code = character.unicode();
    const ushort lower = ushort(code | 0x20);
    return (code >= '0' && code <= '9') || (lower >= 'a' && lower <= 'f');
}

HexBytes failure(const QString& problem)
{
    return {QByteArray(), problem};
}

} // namespace

HexBytes parseHexBytes(const QStringList& texts)
{
    HexBytes result;
    const QStringList groups =
        texts.join(QLatin1Char(' ')).simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString& group : groups) {
        for (const QChar character : group) {
            if (!isHexDigit(character)) {
                return failure(QStringLiteral("\"%1\" is not hexadecimal: write bytes as pairs of "
                                              "digits 0 to 9 and A to F, such as 01 03 00 0A")
                                   .arg(group));
            }
        }
        if (group.size() % 2 != 0) {
            return failure(QStringLiteral("\"%1\" has an odd number of digits: each byte has two, "
                                          "such as 0A")
                               .arg(group));
        }
        result.bytes += QByteArray::fromHex(group.toLatin1());
    }
    if (result.bytes.isEmpty())
        return failure(QStringLiteral("there is nothing to send: write bytes such as 01 03 00 0A"));
    return result;
}

} // namespace tovik_host::value
