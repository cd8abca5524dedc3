#ifndef COMPAT_TWOS_COMPLEMENT_H
#define COMPAT_TWOS_COMPLEMENT_H

#include <QtGlobal>

#include <cstring>

/// \file
/// Bits that stand for a number with a sign.
namespace twos_complement {

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
