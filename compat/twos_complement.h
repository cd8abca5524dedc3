#ifndef COMPAT_TWOS_COMPLEMENT_H
#define COMPAT_TWOS_COMPLEMENT_H

#include <QtGlobal>

#include <cstring>

/// \file
/// Bits that stand for a number with a sign.
namespace twos_complement {

/// The low 16 bits as a two's complement number: 0xFFFE is -2.
inline qint16 signed16(quint32 bits)
{
    const quint16 low = static_cast<quint16>(bits & 0xFFFF);
    qint16 number = 0;
    std::memcpy(&number, &low, sizeof number);
    return number;
}

/// The 32 bits as a two's complement number; a cast leaves those from 0x80000000 on to the
/// compiler.
inline qint32 signed32(quint32 bits)
{
    qint32 number = 0;
    std::memcpy(&number, &bits, sizeof number);
    return number;
}

} // namespace twos_complement

#endif
