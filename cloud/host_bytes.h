#ifndef CLOUD_HOST_BYTES_H
#define CLOUD_HOST_BYTES_H

#include <QByteArray>

/// \file
/// Numbers in the host's bytes: least significant byte first, on every processor.
namespace host_bytes {

/// The \a size low bytes of \a number (1, 2 or 4), least significant first.
QByteArray fromNumber(quint32 number, int size);
/// The number in the first \a size bytes (1, 2 or 4). Extra bytes are ignored; too few give 0.
quint32 toNumber(const QByteArray& bytes, int size);

/// An IEEE-754 single as four bytes.
QByteArray fromFloat(float number);
/// The IEEE-754 single in the first four bytes; missing high bytes count as zero.
float toFloat(const QByteArray& bytes);

/// The low 16 bits as a two's complement number: 0xFFFE is -2.
qint16 signed16(quint32 bits);
/// The 32 bits as a two's complement number.
qint32 signed32(quint32 bits);

} // namespace host_bytes

#endif
