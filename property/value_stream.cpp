#include "property/value_stream.h"

#include <QMetaType>
#include <QStringList>

namespace {

/// Whether values of the type are read. These are the types that Qt Core can stream, but for easing
/// curves, JSON, CBOR and lists of byte arrays.
bool isRead(int type)
{
    return (type >= QMetaType::Bool && type <= QMetaType::QVariantHash) ||
           (type >= QMetaType::Long && type <= QMetaType::Float) ||
           // By name: Qt 4 does not have these, or not without its host's help.
           type == QMetaType::type("signed char") || type == QMetaType::type("QUuid") ||
           type == QMetaType::type("QRegularExpression");
}

const int no_type = -1;

/// The type of a number in a stream of Qt 3, as Qt 4 and 5 read it: three numbers are none to them.
/// Types of a user interface are left out.
int typeOfQt3(quint32 number)
{
    const signed char none = no_type;
    static const signed char types[] = {
        0, 8, 9, 10,   11,   none, none, none, 19, 21, none, none, 0,  none, 25,   none, 2, 3,
        1, 6, 0, none, none, none, none, none, 14, 15, 16,   12,   13, none, none, 4,    5};
    return number < sizeof types ? types[number] : no_type;
}

/// Reads the number of a type and, where the version has one, the null flag. Streams of Qt 4 count
/// the types from `void*` on from another number than Qt 5 does, and Qt 4 itself reads no others;
/// a type that is not Qt's own, such as a UUID in Qt 4, is one number and a name after the flag.
int readType(QDataStream& stream, bool* null_flag)
{
    const int first_version_of_qt5 = 13;
    const quint32 first_moved = 128;
    const quint32 moved_by = first_moved - quint32(QMetaType::VoidStar);
    const bool is_of_qt5 = stream.version() >= first_version_of_qt5;
    quint32 number = 0;
    stream >> number;
    qint8 flag = 0;
    if (stream.version() >= QDataStream::Qt_4_2)
        stream >> flag;
    *null_flag = flag != 0;
    if (stream.version() < QDataStream::Qt_4_0)
        return typeOfQt3(number);
    if (number == (is_of_qt5 ? 1024u : 127u)) {
        QByteArray name;
        stream >> name;
        const int type = QMetaType::type(name.constData());
        return type != 0 ? type : no_type;
    }
    return int(number >= first_moved && !is_of_qt5 ? number - moved_by : number);
}

void readValue(QDataStream& stream, QVariant* value, int depth, ExpressionAllowance* expressions);

void readElement(QDataStream& stream, QStringList* elements, int, ExpressionAllowance*)
{
    elements->append(QString());
    stream >> elements->last();
}

void readElement(QDataStream& stream, QVariantList* elements, int depth,
                 ExpressionAllowance* expressions)
{
    elements->append(QVariant());
    readValue(stream, &elements->last(), depth + 1, expressions);
}

template <typename Map>
void readElement(QDataStream& stream, Map* elements, int depth, ExpressionAllowance* expressions)
{
    QString key;
    stream >> key;
    readValue(stream, &(*elements)[key], depth + 1, expressions);
}

/// No room is made for the count: it says nothing until the elements come.
template <typename Elements>
bool readElements(QDataStream& stream, QVariant* value, int depth, ExpressionAllowance* expressions)
{
    Elements* elements = static_cast<Elements*>(value->data());
    quint32 count = 0;
    stream >> count;
    for (quint32 i = 0; i < count && !stream.atEnd(); ++i)
        readElement(stream, elements, depth, expressions);
    return true;
}

/// What stands after the type and the null flag. \a value is of the type, and empty.
/// \return whether it is a value
bool readContent(QDataStream& stream, QVariant* value, int depth, ExpressionAllowance* expressions)
{
    switch (value->userType()) {
    case QMetaType::QBitArray:
    case QMetaType::QDateTime:
    case QMetaType::QUrl:
    case QMetaType::QRegExp:
        return ReadChecked(stream, value, expressions);
    case QMetaType::QStringList:
        return readElements<QStringList>(stream, value, depth, expressions);
    case QMetaType::QVariantList:
        return readElements<QVariantList>(stream, value, depth, expressions);
    case QMetaType::QVariantMap:
        return readElements<QVariantMap>(stream, value, depth, expressions);
    case QMetaType::QVariantHash:
        return readElements<QVariantHash>(stream, value, depth, expressions);
    default:
        return QMetaType::load(stream, value->userType(), value->data());
    }
}

void readValue(QDataStream& stream, QVariant* value, int depth, ExpressionAllowance* expressions)
{
    value->clear();
    bool null_flag = false;
    const int type = readType(stream, &null_flag);
    if (type == QVariant::Invalid) {
        QString nothing; // Qt 4 writes a text after an invalid variant
        if (stream.version() <= QDataStream::Qt_4_8)
            stream >> nothing;
        return;
    }
    if (isRead(type) && depth <= deepest_value) {
        // The one constructor gives a variant that is null, the other one that is not.
        *value = null_flag ? QVariant(QVariant::Type(type))
                           : QVariant(type, static_cast<const void*>(0));
        if (readContent(stream, value, depth, expressions))
            return;
    }
    value->clear();
    stream.setStatus(QDataStream::ReadCorruptData);
}

} // namespace

void ReadValue(QDataStream& stream, QVariant* value, ExpressionAllowance* expressions)
{
    readValue(stream, value, 0, expressions);
}
