#ifndef TESTS_PROPERTY_STREAM_BYTES_H
#define TESTS_PROPERTY_STREAM_BYTES_H

#include "property/property_tovik_iot.h"
#include "tests/property/stream_format.h"

#include <QByteArray>

/// Puts a stored configuration together byte by byte, without `QDataStream`: what files look like,
/// said a second time and independently of the library.
class StreamBytes
{
public:
    explicit StreamBytes(const StreamFormat& format) : format_(format) {}

    QByteArray bytes() const { return bytes_; }

    StreamBytes& flag(bool value);
    StreamBytes& number(int value);
    /// A count of bytes, then UTF-16 code units; all ones for a null text.
    StreamBytes& text(const QString& value);
    /// A type number, a flag that says null, and the value in its type's own form.
    StreamBytes& variant(const QVariant& value);
    StreamBytes& item(const PropertyTovikIotDataItem& item);
    StreamBytes& group(const PropertyTovikIotGroup& group);
    StreamBytes& root(const PropertyTovikIot& root);

private:
    StreamBytes& word(quint64 value, int size);
    StreamBytes& typeTag(int qt4_number, int qt5_number);
    StreamBytes& floatingPoint(float value);
    StreamBytes& items(const QList<PropertyTovikIotDataItem>& items);

    StreamFormat format_;
    QByteArray bytes_;
};

#endif
