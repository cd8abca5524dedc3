#include "benchmarks/packing_peers.h"

#include <QtEndian>

#include <cstring>

namespace bench {

namespace {

template <typename Number>
void swapElements(char* to, const char* from, int len)
{
    for (int at = 0; at < len; at += int(sizeof(Number))) {
        Number number;
        std::memcpy(&number, from + at, sizeof number);
        number = qbswap(number);
        std::memcpy(to + at, &number, sizeof number);
    }
}

} // namespace

QByteArray packedRaw(const char* data, int len, int size, bool swap)
{
    if (size == 1 || !swap)
        return QByteArray(data, len);
    QByteArray bytes(len, Qt::Uninitialized);
    if (size == 2)
        swapElements<quint16>(bytes.data(), data, len);
    else
        swapElements<quint32>(bytes.data(), data, len);
    return bytes;
}

QByteArray packedCharacters(const char* data, int len, int size, bool swap)
{
    if (size == 1 || !swap)
        return QByteArray::fromRawData(data, len).toHex();
    return packedRaw(data, len, size, swap).toHex();
}

QByteArray unpackedCharacters(const char* characters, int len, int size, bool swap)
{
    QByteArray bytes = QByteArray::fromHex(QByteArray::fromRawData(characters, len));
    char* data = bytes.data();
    if (size == 2 && swap)
        swapElements<quint16>(data, data, bytes.size());
    else if (size == 4 && swap)
        swapElements<quint32>(data, data, bytes.size());
    return bytes;
}

} // namespace bench
