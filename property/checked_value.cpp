#include "property/checked_value.h"

#include "compat/time_zone.h"

#include <QDateTime>
#include <QMetaType>
#include <QRegExp>

#include <limits>

namespace {

/// Takes the fields of a value from a stream, and keeps them as they came, for Qt to read.
class Fields
{
public:
    explicit Fields(QDataStream* from) : from_(*from), to_(&bytes_, QIODevice::WriteOnly)
    {
        to_.setVersion(from_.version());
        to_.setByteOrder(from_.byteOrder());
    }

    int version() const { return from_.version(); }

    template <typename Field>
    Field next()
    {
        Field field = Field();
        from_ >> field;
        to_ << field;
        return field;
    }

    /// Takes \a count bytes. If there are fewer, all are taken, and no field is left.
    void takeBytes(qint64 count)
    {
        char part[1024];
        while (count > 0) {
            const int wanted = int(qMin(count, qint64(sizeof part)));
            if (from_.readRawData(part, wanted) != wanted) {
                bytes_.clear();
                return;
            }
            to_.writeRawData(part, wanted);
            count -= wanted;
        }
    }

    void readAgain(QVariant* value)
    {
        QDataStream fields(bytes_);
        fields.setVersion(from_.version());
        fields.setByteOrder(from_.byteOrder());
        QMetaType::load(fields, value->userType(), value->data());
        from_.setStatus(fields.status());
    }

private:
    QDataStream& from_;
    QByteArray bytes_;
    QDataStream to_;
};

bool takeBits(Fields* fields)
{
    const quint32 count = fields->next<quint32>();
    if (count > quint32(std::numeric_limits<int>::max()))
        return false;
    fields->takeBytes((qint64(count) + 7) / 8);
    return true;
}

/// Zones are files below a folder of the system. Qt writes a name up to its first NUL.
bool isZoneName(const QString& name)
{
    return !name.isEmpty() && !name.contains(QLatin1String("..")) && !name.contains(QChar(0));
}

bool takeZone(Fields* fields)
{
    const QString name = fields->next<QString>();
    if (name != QLatin1String("OffsetFromUtc"))
        return isZoneName(name);
    const QString own_name = fields->next<QString>();
    fields->next<qint32>();  // seconds
    fields->next<QString>(); // name for display
    fields->next<QString>(); // abbreviation
    fields->next<qint32>();  // country
    fields->next<QString>(); // comment
    return isZoneName(own_name);
}

bool takeDateTime(Fields* fields)
{
    const int offset_from_utc = 2; // Qt 4 does not know these by name, nor the versions
    const int time_zone = 3;
    const int version = fields->version();
    const bool has_zones = version >= 15; // Qt 5.2
    fields->next<QDate>();
    fields->next<QTime>();
    if (version < QDataStream::Qt_4_0)
        return true;
    const qint8 kind = fields->next<qint8>();
    // All but Qt 5.0 tell local time with and without daylight saving, and where that is unknown.
    if (!has_zones && version != 13)
        return kind >= -1 && kind <= time_zone + 1;
    if (has_zones && kind == offset_from_utc)
        fields->next<qint32>();
    if (has_zones && kind == time_zone)
        return takeZone(fields);
    return kind >= 0 && kind <= time_zone;
}

/// Qt takes a time that is quadratic in the length of a host's name.
bool takeUrl(Fields* fields)
{
    const int longest_authority = 1024;
    const QByteArray url = fields->next<QByteArray>();
    const int start = url.indexOf("//");
    if (start < 0)
        return true;
    int end = start + 2;
    while (end < url.size() && url.at(end) != '/' && url.at(end) != '?' && url.at(end) != '#')
        ++end;
    return end - start <= longest_authority;
}

bool takeExpression(Fields* fields, ExpressionAllowance* expressions)
{
    const QString pattern = fields->next<QString>();
    fields->next<quint8>(); // case
    const quint8 syntax = fields->next<quint8>();
    fields->next<quint8>(); // minimal
    return syntax <= QRegExp::W3CXmlSchema11 && expressions->spend(pattern);
}

/// The largest number after the brace at \a position; 1 if none is larger.
double largestCount(const QString& pattern, int position)
{
    double largest = 1;
    double number = 0; // without an end
    while (++position < pattern.size()) {
        const int character = pattern.at(position).unicode();
        if (character >= '0' && character <= '9')
            number = number * 10 + character - '0';
        else if (character == ',')
            number = 0;
        else
            break;
        largest = qMax(largest, number);
    }
    return largest;
}

} // namespace

bool ExpressionAllowance::spend(const QString& pattern)
{
    const double most = 4000;
    double cost = pattern.size();
    double copies = 1;        // of the dearest atom
    double copies_of_all = 1; // through groups in one another
    for (int i = 0; i < pattern.size(); ++i) {
        const ushort character = pattern.at(i).unicode();
        if (character == '*' || character == '+' || character == '?' || character == '|' ||
            character == '(')
            cost += 20;
        if (character == '(' && pattern.midRef(i + 1, 1) == QLatin1String("?"))
            copies_of_all *= 2; // what is looked ahead for is compiled twice
        if (character == '{' && i > 0 && pattern.at(i - 1) == QLatin1Char(')'))
            copies_of_all *= largestCount(pattern, i);
        else if (character == '{')
            copies += largestCount(pattern, i);
    }
    cost = 16 + cost * copies * copies_of_all;
    if (cost > most || cost > left)
        return false;
    left -= int(cost);
    return true;
}

bool ReadChecked(QDataStream& stream, QVariant* value, ExpressionAllowance* expressions)
{
    Fields fields(&stream);
    const int type = value->userType();
    const bool is_taken = type == QMetaType::QBitArray   ? takeBits(&fields)
                          : type == QMetaType::QDateTime ? takeDateTime(&fields)
                          : type == QMetaType::QUrl      ? takeUrl(&fields)
                                                         : takeExpression(&fields, expressions);
    if (is_taken)
        fields.readAgain(value);
    return is_taken && (type != QMetaType::QDateTime || hasTimeZone(value->toDateTime()));
}
