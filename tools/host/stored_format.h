#ifndef TOOLS_HOST_STORED_FORMAT_H
#define TOOLS_HOST_STORED_FORMAT_H

#include <QString>

#include <optional>

/// \file
/// The settings of a stream that decide how a record is stored.
namespace tovik_host {

enum class StoredForm
{
    record, ///< The record's members alone.
    variant ///< A variant: its type's number and name, then the members.
};

/// Everything that decides the bytes.
struct StoredFormat
{
    StoredForm form = StoredForm::variant;
    int version = 12; ///< As `QDataStream` numbers them, \ref oldest_version to newestVersion().
    bool big_endian = true;
    bool single_precision = false; ///< Floating numbers in 4 bytes; a setting since version 12.

    bool hasNullFlag() const;  ///< Of a variant.
    bool hasQt5Types() const;  ///< Numbers of types, and nothing behind an invalid variant.
    int floatSize() const;     ///< Bytes of a float.
    int doubleSize() const;    ///< Bytes of a double.
    bool hasPrecision() const; ///< Whether the precision changes anything.
    bool sameLayout(const StoredFormat& other) const; ///< Whether both give the same bytes.
};

/// The name of the record's type in a variant; the stream has its terminating zero as well.
const char record_type[] = "PropertyTovikIot";

/// Qt 4.0; streams of older versions hold no such record.
const int oldest_version = 7;
/// The newest version that this program's Qt knows.
int newestVersion();

/// Some versions that follow each other.
struct VersionRange
{
    int first = oldest_version;
    int last = newestVersion();

    bool isOne() const { return first == last; }
    bool contains(int version) const { return version >= first && version <= last; }
};

/// What is known of a format beforehand.
struct FormatHints
{
    std::optional<StoredForm> form;
    std::optional<VersionRange> versions;
    std::optional<bool> big_endian;
    std::optional<bool> single_precision;
};

/// A version by number or name: "12", "Qt_4_8", "4.8"; nothing when there is no such version.
std::optional<int> versionOf(const QString& text);
/// "12", or "8-19".
QString rangeText(const VersionRange& range);
/// The opposite, which also takes names.
std::optional<VersionRange> rangeOf(const QString& text);
/// "12 (Qt 4.6 to 4.8)", "8 to 19 (Qt 4.2 to 5.15)".
QString rangeInWords(const VersionRange& range);

/// The words of options and files.
QString formName(StoredForm form);
QString orderName(bool big_endian);
QString precisionName(bool single_precision);

} // namespace tovik_host

#endif
