#ifndef TESTS_PROPERTY_STREAM_MODEL_H
#define TESTS_PROPERTY_STREAM_MODEL_H

#include "property/property_tovik_iot.h"
#include "tests/property/stream_format.h"

#include <QByteArray>

/// Says what reading a configuration must give, without the library's operators or `QDataStream`.
///
/// A value that the bytes do not hold whole takes all that is left and is zero, false, an empty
/// text or no value. Lists end with the element in which the bytes ended.
class StreamModel
{
public:
    StreamModel(const QByteArray& bytes, const StreamFormat& format)
        : bytes_(bytes),
          format_(format)
    {}

    PropertyTovikIotDataItem item();
    PropertyTovikIotGroup group();
    PropertyTovikIot root();

private:
    bool atEnd() const { return position_ >= bytes_.size(); }
    /// The next \a size bytes; none, and nothing left, if there are fewer.
    QByteArray take(int size);
    quint64 word(int size);
    bool flag() { return word(1) != 0; }
    int number() { return int(quint32(word(4))); }
    QString text();
    float floatingPoint();
    QVariant variant();
    QVariant variantOf(int type);
    QList<PropertyTovikIotDataItem> items();

    QByteArray bytes_;
    StreamFormat format_;
    int position_ = 0;
};

#endif
