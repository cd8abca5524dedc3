#ifndef CLOUD_HOST_BYTES_H
#define CLOUD_HOST_BYTES_H

#include <QByteArray>

#include <cstring>

/// \file
/// Numbers in the host's bytes: least significant byte first, on every processor.
///
/// What reads them stands here: a conversion is hardly more than that, and took a third longer when
/// it had to call it.
namespace host_bytes {

/// The \a size low bytes of \a number (1, 2 or 4), least significant first.
QByteArray fromNumber(quint32 number, int size);
/// The number in the first \a size bytes (1, 2 or 4). Extra bytes are ignored; too few give 0.
inline quint32 toNumber(const QByteArray& bytes, int size)
{
    if (bytes.size() < size)
        return 0;
    const char* first = bytes.constData();
    quint32 number = 0;
    for (int i = 0; i < size; ++i)
        number |= quint32(static_cast<unsigned char>(first[i])) << (8 * i);
    return number;
}

/// An IEEE-754 single as four bytes.
QByteArray fromFloat(float number);
/// The IEEE-754 single in the first four bytes; missing high bytes count as zero.
inline float toFloat(const QByteArray& bytes)
{
    const quint32 bits =
        bytes.size() < 4 ? toNumber(bytes.leftJustified(4, '\0'), 4) : toNumber(bytes, 4);
    float number = 0;
    std::memcpy(&number, &bits, sizeof number);
    return number;
}

/// The low 16 bits as a two's complement number: 0xFFFE is -2.
inline qint16 signed16(quint32 bits)
{
    const quint16 low = static_cast<quint16>(bits & 0xFFFF);
    qint16 number = 0;
    std::memcpy(&number, &low, sizeof number);
    return number;
}

/// The 32 bits as a two's complement number.
inline qint32 signed32(quint32 bits)
{
    qint32 number = 0;
    std::memcpy(&number, &bits, sizeof number);
    return number;
}

} // namespace host_bytes

#endif
