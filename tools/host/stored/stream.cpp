#include "tools/host/stored/stream.h"

#include "property/value_stream.h"

#include <algorithm>

namespace tovik_host::stored {

namespace {

/// Newest version and widest numbers: every value is told from every other one.
const Format canonical = {false, QDataStream::Qt_DefaultCompiledVersion, true, false};

} // namespace

void prepare(QDataStream& stream, const Format& format)
{
    stream.setVersion(format.version);
    stream.setByteOrder(format.big_endian ? QDataStream::BigEndian : QDataStream::LittleEndian);
    stream.setFloatingPointPrecision(format.single_precision ? QDataStream::SinglePrecision
                                                             : QDataStream::DoublePrecision);
}

quint32 ownTypeIn(int version)
{
    return version < QDataStream::Qt_5_0 ? 127 : 1024;
}

QByteArray headerOf(const Format& format)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    prepare(stream, format);
    if (!format.is_variant)
        return bytes;
    stream << ownTypeIn(format.version);
    if (format.version >= QDataStream::Qt_4_2)
        stream << false;
    stream << "PropertyTovikIot";
    return bytes;
}

bool isSame(const QByteArray& left, const QByteArray& right)
{
    if (left.size() != right.size() || left == right)
        return left.size() == right.size();
    int surplus[256] = {};
    for (int i = 0; i < left.size(); ++i) {
        ++surplus[uchar(left.at(i))];
        --surplus[uchar(right.at(i))];
    }
    return std::all_of(surplus, surplus + 256, [](int count) { return count == 0; });
}

QByteArray written(const PropertyTovikIot& record, const Format& format)
{
    return headerOf(format) + bytesOf(record, format);
}

std::optional<PropertyTovikIot> readWhole(const QByteArray& bytes, const Format& format)
{
    const QByteArray header = headerOf(format);
    QDataStream stream(bytes);
    prepare(stream, format);
    stream.skipRawData(header.size());
    PropertyTovikIot record;
    if (bytes.startsWith(header))
        stream >> record;
    const bool is_whole = stream.status() == QDataStream::Ok && stream.atEnd() &&
                          isSame(written(record, format), bytes);
    return is_whole ? std::optional<PropertyTovikIot>(record) : std::nullopt;
}

QByteArray contentOf(const PropertyTovikIot& record)
{
    return written(record, canonical);
}

QString firstLoss(const PropertyTovikIot& record, const Format& format)
{
    const std::optional<PropertyTovikIot> again = readWhole(written(record, format), format);
    const QByteArray before = contentOf(record);
    const QByteArray after = again ? contentOf(*again) : QByteArray();
    if (isSame(before, after))
        return QString();
    // Cut where they part, the one ends in the member that differs.
    const auto parting = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    const QByteArray same = before.left(int(parting.first - before.begin()));
    return readDamaged(same, canonical).problems.last().member;
}

QByteArray valueBytes(const QVariant& value)
{
    return bytesOf(value, canonical);
}

std::optional<QVariant> valueOf(const QByteArray& bytes)
{
    QDataStream stream(bytes);
    prepare(stream, canonical);
    QVariant value;
    ExpressionAllowance expressions = {};
    ReadValue(stream, &value, &expressions);
    const bool is_whole = stream.status() == QDataStream::Ok && stream.atEnd();
    return is_whole ? std::optional<QVariant>(value) : std::nullopt;
}

} // namespace tovik_host::stored
