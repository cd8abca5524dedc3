#ifndef TOOLS_HOST_STORED_FILE_H
#define TOOLS_HOST_STORED_FILE_H

#include "tools/host/stored_detection.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace tovik_host {

enum class StoredKind
{
    stream,       ///< A binary stream.
    record_json,  ///< The record as JSON.
    configuration ///< The configuration that `watch` takes.
};

/// A file with a configuration record, whatever it is.
struct StoredFile
{
    StoredKind kind = StoredKind::stream;
    StoredRecord record = StoredRecord();
    QVector<StoredProblem> problems = {}; ///< Of a stream.
    QByteArray bytes = QByteArray();
    /// Of a stream, what was found; of JSON, what it says.
    FormatHints hints = FormatHints();
    StoredFormat format = StoredFormat();   ///< Of a stream.
    VersionRange versions = VersionRange(); ///< Of a stream.
    QStringList notes = {};                 ///< What the user should know.
    /// The same, when the record is to be stored.
    QStringList conversion_notes = {};

    /// Whether it may hold a password; a damaged one may have it anywhere.
    bool isSecret() const;
};

/// Largest file that is read.
const qint64 largest_file = 4 << 20;

/// Reads \a path, `-` for the standard input.
/// \param as_json whether it is JSON; looks at the first character if that is not given.
/// \param hints what is known of a stream's format; not used for JSON.
/// \param which_format what the user is told to do when the format cannot be told; options follow
/// Throws UsageError if it cannot be read or is nothing of the kind. A damaged stream has problems.
StoredFile readStoredFile(const QString& path, std::optional<bool> as_json,
                          const FormatHints& hints, const QString& which_format);

/// How messages name a path that is read.
QString shownPath(const QString& path);

/// Writes \a bytes to \a path as saveFile() does, or for `-` to the standard output.
/// Throws UsageError; the file is then as it was.
void writeStoredFile(const QString& path, const QByteArray& bytes, bool is_secret);

} // namespace tovik_host

#endif
