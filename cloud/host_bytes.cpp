#include "cloud/host_bytes.h"

#include <cstring>

namespace host_bytes {

QByteArray fromNumber(quint32 number, int size)
{
    unsigned char bytes[4];
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<unsigned char>((number >> (8 * i)) & 0xFF);
    return QByteArray(reinterpret_cast<const char*>(bytes), size);
}

quint32 toNumber(const QByteArray& bytes, int size)
{
    if (bytes.size() < size)
        return 0;
    quint32 number = 0;
    for (int i = 0; i < size; ++i)
        number |= quint32(static_cast<unsigned char>(bytes.at(i))) << (8 * i);
    return number;
}

QByteArray fromFloat(float number)
{
    quint32 bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    return fromNumber(bits, 4);
}

float toFloat(const QByteArray& bytes)
{
    const quint32 bits = toNumber(bytes.leftJustified(4, '\0'), 4);
    float number = 0;
    std::memcpy(&number, &bits, sizeof number);
    return number;
}

qint16 signed16(quint32 bits)
{
    const quint16 low = static_cast<quint16>(bits & 0xFFFF);
    qint16 number = 0;
    std::memcpy(&number, &low, sizeof number);
    return number;
}

qint32 signed32(quint32 bits)
{
    qint32 number = 0;
    std::memcpy(&number, &bits, sizeof number);
    return number;
}

} // namespace host_bytes
