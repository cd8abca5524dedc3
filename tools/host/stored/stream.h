#ifndef TOOLS_HOST_STORED_STREAM_H
#define TOOLS_HOST_STORED_STREAM_H

#include "property/property_tovik_iot.h"

#include <QDataStream>
#include <QString>
#include <QVector>

#include <array>
#include <limits>
#include <optional>
#include <type_traits>
#include <vector>

/// \file
/// The record in the bytes of a stream, read and written by the library's operators, and the
/// settings that decide these bytes.
namespace tovik_host::stored {

/// Everything that decides the bytes.
struct Format
{
    bool is_variant = true; ///< A variant that holds the record, or the record's members alone.
    int version = QDataStream::Qt_4_8;
    bool big_endian = true;
    bool single_precision = false; ///< Floating numbers in 4 bytes; a setting since version 12.
};

/// Some versions that follow each other; by default those of Qt 4 and 5.
struct Versions
{
    int first = QDataStream::Qt_4_0;
    int last = QDataStream::Qt_DefaultCompiledVersion;

    bool contains(int version) const { return version >= first && version <= last; }
};

/// All that the library reads: from Qt 1 to the Qt that this program is compiled with.
const Versions all_versions = {1, QDataStream::Qt_DefaultCompiledVersion};

/// What is known of a format beforehand.
struct Hints
{
    std::optional<bool> is_variant = std::nullopt;
    std::optional<Versions> versions = std::nullopt;
    std::optional<bool> big_endian = std::nullopt;
    std::optional<bool> single_precision = std::nullopt;
};

/// A setting of two words, in options and JSON.
struct Choice
{
    const char* name;
    const char* word_of_true;
    const char* word_of_false;
    bool Format::*setting;
    std::optional<bool> Hints::*hint;

    QString word(bool value) const { return QLatin1String(value ? word_of_true : word_of_false); }
};

/// All there are, in the order in which JSON has them: form, byte order, precision.
extern const std::array<Choice, 3> choices;

/// All formats that the hints allow, the most likely ones first: the usual precision, in a variant,
/// big endian, of Qt 4.8, then of Qt 5. That is the order in which one of equals is chosen. Throws
/// UsageError if there is none.
std::vector<Format> possibleFormats(const Hints& hints);
/// The hints of \a first, and of \a second where that says nothing.
Hints merged(const Hints& first, const Hints& second);

/// A version by number or name: "12", "Qt_4_8", "4.8"; nothing when there is no such version.
std::optional<int> versionOf(const QString& text);
/// "12", or "8-19".
QString rangeText(const Versions& range);
/// The opposite, which also takes names.
std::optional<Versions> rangeOf(const QString& text);
/// "12 (Qt 4.6 to 4.8)", "8 to 19 (Qt 4.2 to 5.15)".
QString rangeInWords(const Versions& range);

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

/// Something that a good stream does not have.
struct Problem
{
    int offset;     ///< Byte where the value begins that is wrong, or the wrong byte itself.
    QString member; ///< "groups[2].dataitems[0].value"; empty before the record and after it.
    QString text;
};

const int all_known = std::numeric_limits<int>::max();

/// What can be read of a stream, whole or not.
struct Reading
{
    PropertyTovikIot record;
    /// So many members are known, in the order of the stream; a list is one, followed by those of
    /// its elements. All others have their defaults.
    int known = all_known;
    QVector<Problem> problems = {}; ///< The first one, and the one that stopped the reading.
    /// Bytes that fit the format. A stream that ends inside a member fits up to its end.
    int reach = 0;
};

/// The record as a host stores it.
QByteArray written(const PropertyTovikIot& record, const Format& format);
/// The record in \a bytes, if there is nothing else: the library's operators read it up to the last
/// byte, and write it in the same bytes again.
std::optional<PropertyTovikIot> readWhole(const QByteArray& bytes, const Format& format);
/// Reads any other bytes member by member, up to the first one that cannot be read.
Reading readDamaged(const QByteArray& bytes, const Format& format);

/// What a stream's bytes hold, and in which format.
struct Detected
{
    Reading reading;
    Format format;     ///< One that fits.
    Versions versions; ///< All that fit, from which the bytes do not tell the right one.
    /// The formats that fit with different results, as options; empty if there is but one result.
    QString ambiguity;
};

/// Finds out how the bytes were stored, as far as the hints leave that open.
///
/// A stream says nothing about its format, so all of them are tried: the format is one in which the
/// library's operators read a record up to the last byte and write it in the same bytes again.
/// Where several do with the same result, the first one of possibleFormats() is taken, together
/// with all versions that do likewise. Where they give different results, nobody but the user can
/// tell. The versions before Qt 4 are tried if no later one fits: most of what they hold, the later
/// ones hold in the same bytes.
///
/// If none does, the stream is damaged, and the format is the one that fits furthest: one that
/// begins as a variant of the record, which hardly any other bytes do, else the one with the most
/// bytes before its first problem.
Detected detect(const QByteArray& bytes, const Hints& hints);

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

} // namespace tovik_host::stored

#endif
