#include "property/value_stream.h"

#include <QMetaType>
#include <QStringList>

namespace {

/// How the values of a type are read.
enum Form
{
    refused,
    plain,
    texts,
    list,
    map,
    hash
};

Form formOf(int type)
{
    switch (type) {
    case QMetaType::QStringList:
        return texts;
    case QMetaType::QVariantList:
        return list;
    case QMetaType::QVariantMap:
        return map;
    case QMetaType::QVariantHash:
        return hash;
    case QMetaType::Bool:
    case QMetaType::Char:
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Float:
    case QMetaType::Double:
    case QMetaType::QChar:
    case QMetaType::QString:
    case QMetaType::QByteArray:
    case QMetaType::QDate:
    case QMetaType::QTime:
        return plain;
    default: // Qt 4 has no signed char
        return type == QMetaType::type("signed char") ? plain : refused;
    }
}

/// The type of a number in the stream. Streams of Qt 4 count the types from `void*` on from another
/// number than Qt 5 does; Qt 4 itself reads no others.
int readType(QDataStream& stream)
{
    const int first_version_of_qt5 = 13;
    const quint32 first_moved = 128;
    const quint32 moved_by = first_moved - quint32(QMetaType::VoidStar);
    quint32 number = 0;
    stream >> number;
    const bool is_moved = number >= first_moved && stream.version() < first_version_of_qt5;
    return int(is_moved ? number - moved_by : number);
}

void readValue(QDataStream& stream, QVariant* value, int depth);

void readElement(QDataStream& stream, QStringList* elements, int)
{
    elements->append(QString());
    stream >> elements->last();
}

void readElement(QDataStream& stream, QVariantList* elements, int depth)
{
    elements->append(QVariant());
    readValue(stream, &elements->last(), depth + 1);
}

template <typename Map>
void readElement(QDataStream& stream, Map* elements, int depth)
{
    QString key;
    stream >> key;
    readValue(stream, &(*elements)[key], depth + 1);
}

/// No room is made for the count: it says nothing until the elements come.
template <typename Elements>
void readElements(QDataStream& stream, QVariant* value, int depth)
{
    Elements* elements = static_cast<Elements*>(value->data());
    quint32 count = 0;
    stream >> count;
    for (quint32 i = 0; i < count && !stream.atEnd(); ++i)
        readElement(stream, elements, depth);
}

/// What stands behind the type and the null flag. \a value is of the type, and empty.
void readContent(QDataStream& stream, QVariant* value, int depth)
{
    switch (formOf(value->userType())) {
    case texts:
        return readElements<QStringList>(stream, value, depth);
    case list:
        return readElements<QVariantList>(stream, value, depth);
    case map:
        return readElements<QVariantMap>(stream, value, depth);
    case hash:
        return readElements<QVariantHash>(stream, value, depth);
    case plain:
    case refused:
        break;
    }
    QMetaType::load(stream, value->userType(), value->data());
}

void readValue(QDataStream& stream, QVariant* value, int depth)
{
    value->clear();
    const int type = readType(stream);
    qint8 null_flag = 0;
    if (stream.version() >= QDataStream::Qt_4_2)
        stream >> null_flag;
    if (type == QVariant::Invalid) {
        QString nothing; // Qt 4 writes a text behind an invalid variant
        if (stream.version() <= QDataStream::Qt_4_8)
            stream >> nothing;
        return;
    }
    if (formOf(type) == refused || depth > deepest_value) {
        stream.setStatus(QDataStream::ReadCorruptData);
        return;
    }
    // The one constructor gives a variant that is null, the other one that is not.
    *value = null_flag != 0 ? QVariant(QVariant::Type(type))
                            : QVariant(type, static_cast<const void*>(0));
    readContent(stream, value, depth);
}

} // namespace

void ReadValue(QDataStream& stream, QVariant* value)
{
    readValue(stream, value, 0);
}
