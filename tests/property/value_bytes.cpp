#include "tests/property/value_bytes.h"

#include "property/value_stream.h"

StreamBytes valueBytes()
{
    return StreamBytes(StreamFormat());
}

QByteArray taggedCount(int type, int count)
{
    return valueBytes().number(type).flag(false).number(count).bytes();
}

QVariant nestedList(int depth)
{
    QVariant value = QVariantList{5};
    for (int i = 0; i < depth; ++i)
        value = QVariantList{value};
    return value;
}

QByteArray writtenByQt(const QVariant& value, const StreamFormat& format)
{
    QByteArray result;
    QDataStream stream(&result, QIODevice::WriteOnly);
    format.applyTo(&stream);
    stream << value;
    return result;
}

ReadResult readValue(const QByteArray& stored, const StreamFormat& format)
{
    QDataStream stream(stored);
    format.applyTo(&stream);
    QVariant value = 7;
    ExpressionAllowance expressions;
    ReadValue(stream, &value, &expressions);
    return {value, stream.status(), stream.device()->bytesAvailable()};
}
