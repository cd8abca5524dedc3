#ifndef TOOLS_HOST_STORED_FORMAT_H
#define TOOLS_HOST_STORED_FORMAT_H

#include <QDataStream>
#include <QString>

#include <array>
#include <optional>
#include <vector>

/// \file
/// The settings of a stream that decide how a record is stored.
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

} // namespace tovik_host::stored

#endif
