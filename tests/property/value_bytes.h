#ifndef TESTS_PROPERTY_VALUE_BYTES_H
#define TESTS_PROPERTY_VALUE_BYTES_H

#include "tests/property/stream_bytes.h"

#include <QVariant>

/// Type numbers as a stream of Qt 5 has them.
enum Tag
{
    map_tag = 8,
    list_tag = 9,
    texts_tag = 11,
    bits_tag = 13,
    date_time_tag = 16,
    url_tag = 17,
    expression_tag = 27,
    hash_tag = 28,
    variant_tag = 41,
    pixmap_tag = 65,
    image_tag = 70,
    own_tag = 1024
};

/// Bytes of a value, in the latest version.
StreamBytes valueBytes();
/// The type's number, no null flag, and a count.
QByteArray taggedCount(int type, int count);
/// A number in a list in as many lists.
QVariant nestedList(int depth);
/// The value's bytes as Qt itself writes them.
QByteArray writtenByQt(const QVariant& value, const StreamFormat& format);

/// What the library reads.
struct ReadResult
{
    QVariant value;
    QDataStream::Status status;
    qint64 left;
};
ReadResult readValue(const QByteArray& stored, const StreamFormat& format);

#endif
