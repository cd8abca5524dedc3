#include "cloud/host_bytes.h"

namespace host_bytes {

QByteArray fromNumber(quint32 number, int size)
{
    unsigned char bytes[4];
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<unsigned char>((number >> (8 * i)) & 0xFF);
    return QByteArray(reinterpret_cast<const char*>(bytes), size);
}

QByteArray fromFloat(float number)
{
    quint32 bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    return fromNumber(bits, 4);
}

} // namespace host_bytes
