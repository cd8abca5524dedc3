#include "fuzz/input.h"
#include "fuzz/target.h"

#include "property/property_tovik_iot.h"
#include "property/value_stream.h"

#include <QDataStream>

#include <algorithm>

namespace fuzz {

namespace {

const int oldest_version = 1;
const int first_with_whole_numbers = 6; // Qt swaps the halves of 64 bits in streams before it
const int versions = QDataStream::Qt_5_15 - oldest_version + 1;

/// The settings of a stream that change its bytes.
struct Format
{
    int version;
    QDataStream::ByteOrder order;
    QDataStream::FloatingPointPrecision precision;

    void applyTo(QDataStream* stream) const
    {
        stream->setVersion(version);
        stream->setByteOrder(order);
        stream->setFloatingPointPrecision(precision);
    }
};

Format takeFormat(Input* input)
{
    const int version = oldest_version + input->choice(versions);
    const int settings = input->byte();
    return {version, (settings & 1) != 0 ? QDataStream::LittleEndian : QDataStream::BigEndian,
            (settings & 2) != 0 ? QDataStream::SinglePrecision : QDataStream::DoublePrecision};
}

/// \param whole receives whether the record took all bytes and none was wrong.
template <typename Record>
Record read(const QByteArray& bytes, const Format& format, bool* whole)
{
    QDataStream stream(bytes);
    format.applyTo(&stream);
    Record record;
    stream >> record;
    *whole = stream.atEnd() && stream.status() == QDataStream::Ok;
    return record;
}

template <typename Record>
QByteArray written(const Record& record, const Format& format)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    format.applyTo(&stream);
    stream << record;
    return bytes;
}

/// Whether two records written are the same. A hash may hand out its elements in another order each
/// time, so that for records with one the bytes may stand elsewhere.
bool isSame(QByteArray once, QByteArray again, const Format& format)
{
    if (once == again)
        return true;
    if (!once.contains(char(QMetaType::QVariantHash)) && format.version >= first_with_whole_numbers)
        return false;
    std::sort(once.begin(), once.end());
    std::sort(again.begin(), again.end());
    return once == again;
}

/// How many lists and maps stand around the innermost value.
int depthOf(const QVariant& value)
{
    int deepest = -1;
    for (const QVariant& element : value.toList())
        deepest = qMax(deepest, depthOf(element));
    // A map can be had of a hash, too.
    for (const QVariant& element : value.toMap())
        deepest = qMax(deepest, depthOf(element));
    return deepest + 1;
}

void checkValues(const PropertyTovikIotDataItem& item)
{
    require(depthOf(item.value) <= deepest_value + 1, "a value is no deeper than the limit");
}

void checkValues(const PropertyTovikIotGroup& group)
{
    for (const PropertyTovikIotDataItem& item : group.dataitems)
        checkValues(item);
}

void checkValues(const PropertyTovikIot& root)
{
    for (const PropertyTovikIotGroup& group : root.groups)
        checkValues(group);
    for (const PropertyTovikIotDataItem& item : root.dataitems)
        checkValues(item);
}

template <typename Record>
void checkRecord(const QByteArray& bytes, const Format& format)
{
    bool whole = false;
    const Record first = read<Record>(bytes, format, &whole);
    checkValues(first);
    const QByteArray once = written(first, format);
    const Record second = read<Record>(once, format, &whole);
    require(whole, "what has been read and written is a whole record");
    require(isSame(once, written(second, format), format),
            "a record that is read again is the same");
    Record copy;
    copy.RenewAllmemeber(second);
    require(isSame(once, written(copy, format), format), "a copy of a record is the same");
}

} // namespace

// Two bytes for the format, one for the record, then the stream.
void runStream(const QByteArray& input)
{
    Input next(input);
    const Format format = takeFormat(&next);
    const int record = next.choice(3);
    const QByteArray bytes = next.rest();
    if (record == 0)
        checkRecord<PropertyTovikIot>(bytes, format);
    else if (record == 1)
        checkRecord<PropertyTovikIotGroup>(bytes, format);
    else
        checkRecord<PropertyTovikIotDataItem>(bytes, format);
}

} // namespace fuzz
