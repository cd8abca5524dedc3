#ifndef TESTS_PROPERTY_STREAM_FORMAT_H
#define TESTS_PROPERTY_STREAM_FORMAT_H

#include <QDataStream>
#include <QMetaType>

/// The settings of a stream that change its bytes.
struct StreamFormat
{
    int version = QDataStream::Qt_5_15;
    QDataStream::ByteOrder order = QDataStream::BigEndian;
    QDataStream::FloatingPointPrecision precision = QDataStream::DoublePrecision;

    void applyTo(QDataStream* stream) const
    {
        stream->setVersion(version);
        stream->setByteOrder(order);
        stream->setFloatingPointPrecision(precision);
    }
    /// Before Qt 4.6 a stream had no precision: every number kept its own size.
    bool hasWideFloats() const
    {
        return precision == QDataStream::DoublePrecision && version >= QDataStream::Qt_4_6;
    }
    bool isQt4() const { return version < QDataStream::Qt_5_0; }
};

Q_DECLARE_METATYPE(StreamFormat)

/// The versions that differ in the bytes of a configuration; Qt 4.6 to 4.8 share a number.
extern const int stream_versions[3];

/// A column `format` with one row for each combination of version, byte order and precision.
void addFormatRows();
/// The same for the default precision alone.
void addDoublePrecisionRows();

#endif
