#ifndef TOOLS_HOST_STORED_STREAM_H
#define TOOLS_HOST_STORED_STREAM_H

#include "property/property_tovik_iot.h"
#include "tools/host/stored/format.h"

#include <QDataStream>
#include <QVector>

#include <limits>
#include <type_traits>

/// \file
/// The record in the bytes of a stream, read and written by the library's operators.
namespace tovik_host::stored {

/// Hands name and member of a record, a group or an item to \a visit, in the order of the stream,
/// until that returns false. Reading damaged streams and JSON are visitors.
template <typename Structure, typename Visitor>
bool visitMembers(Structure& of, Visitor&& visit)
{
    using Plain = std::remove_const_t<Structure>;
    if constexpr (std::is_same_v<Plain, PropertyTovikIot>) {
        return visit("aux_flag", of.aux_flag) && visit("host", of.host) &&
               visit("aux_value", of.aux_value) && visit("project", of.project) &&
               visit("email", of.email) && visit("password", of.password) &&
               visit("groups", of.groups) && visit("dataitems", of.dataitems);
    } else if constexpr (std::is_same_v<Plain, PropertyTovikIotGroup>) {
        return visit("group_id", of.group_id) && visit("name", of.name) &&
               visit("location", of.location) && visit("ddLocation", of.ddLocation) &&
               visit("alert", of.alert) && visit("permission", of.permission) &&
               visit("marked", of.marked) && visit("dataitems", of.dataitems);
    } else {
        static_assert(std::is_same_v<Plain, PropertyTovikIotDataItem>);
        return visit("name", of.name) && visit("dataitem_id", of.dataitem_id) &&
               visit("type", of.type) && visit("length", of.length) && visit("value", of.value) &&
               visit("cloud_status", of.cloud_status) && visit("alert", of.alert) &&
               visit("update_time", of.update_time) && visit("marked", of.marked);
    }
}

/// Whether the type has members to visit.
template <typename T>
constexpr bool is_structure =
    std::is_same_v<T, PropertyTovikIot> || std::is_same_v<T, PropertyTovikIotGroup> ||
    std::is_same_v<T, PropertyTovikIotDataItem>;

/// A record, and how much of it a damaged stream gave.
struct Record
{
    PropertyTovikIot property;
    /// So many members are known, in the order of the stream; a list is one, followed by those of
    /// its elements. All others have their defaults.
    int known = std::numeric_limits<int>::max();
};

/// Something that a good stream does not have.
struct Problem
{
    int offset;     ///< Byte where the value begins that is wrong, or the wrong byte itself.
    QString member; ///< "groups[2].dataitems[0].value"; empty in front of the record and behind it.
    QString text;
};

/// Problems that are kept: one that stops the reading is always among them.
const int most_problems = 20;

/// What can be read of a stream, whole or not.
struct Reading
{
    Record record;
    QVector<Problem> problems; ///< In the order of the bytes; none if it is whole.
    /// Bytes that fit the format. A stream that ends inside a member fits up to its end.
    int reach;
};

/// The record as a host stores it.
QByteArray written(const PropertyTovikIot& record, const Format& format);
/// The record in \a bytes, if there is nothing else: the library's operators read it up to the last
/// byte, and write it in the same bytes again.
std::optional<PropertyTovikIot> readWhole(const QByteArray& bytes, const Format& format);
/// Reads any other bytes member by member, up to the first one that cannot be read. What Qt reads,
/// but would write otherwise, is a problem behind which it goes on.
Reading readDamaged(const QByteArray& bytes, const Format& format);

/// What the record holds, whatever format it was stored in.
QByteArray contentOf(const PropertyTovikIot& record);
/// The first member that does not come back from a stream of the format as it is, such as
/// "dataitems[0].value"; empty if all do.
QString firstLoss(const PropertyTovikIot& record, const Format& format);

/// A cached value as the newest version stores it: the type's number in 4 bytes, a flag that says
/// null, and what the value holds.
QByteArray valueBytes(const QVariant& value);
/// The opposite; nothing if the bytes are no value that the driver reads.
std::optional<QVariant> valueOf(const QByteArray& bytes);

// Common to both readings.

/// Gives a stream the settings of the format.
void prepare(QDataStream& stream, const Format& format);
/// The number of types that are not Qt's own.
quint32 ownTypeIn(int version);
/// What a variant has in front of the record: type, null flag, and the type's name.
QByteArray headerOf(const Format& format);
/// Whether the bytes are the same. Entries of a hash may stand in another order: it has none.
bool isSame(const QByteArray& left, const QByteArray& right);

template <typename T>
QByteArray bytesOf(const T& value, const Format& format)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    prepare(stream, format);
    stream << value;
    return bytes;
}

} // namespace tovik_host::stored

#endif
