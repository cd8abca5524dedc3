#ifndef TOOLS_HOST_STORED_FILE_H
#define TOOLS_HOST_STORED_FILE_H

#include "tools/host/stored/stream.h"

#include <QStringList>

namespace tovik_host::stored {

/// A file with a configuration record, whatever it is.
struct File
{
    enum Kind
    {
        stream,       ///< A binary stream.
        record_json,  ///< The record as JSON.
        configuration ///< The configuration that `watch` takes.
    };

    Kind kind;
    Record record;
    QVector<Problem> problems = {}; ///< Of a stream.
    int size = 0;                   ///< In bytes.
    Hints format = {};              ///< Of a stream, what was found; of JSON, what it says.
    QStringList notes = {};         ///< What the user should know.
    /// The same, when the record is to be stored.
    QStringList conversion_notes = {};

    /// Whether it may hold a password; a damaged one may have it anywhere.
    bool isSecret() const;
};

/// Reads \a path, `-` for the standard input.
/// \param as_json whether it is JSON; looks at the first character if that is not given.
/// \param hints what is known of a stream's format; not used for JSON.
/// \param which_format what the user is told to do when the format cannot be told; options follow
/// Throws UsageError if it cannot be read or is nothing of the kind. A damaged stream has problems.
File readFile(const QString& path, std::optional<bool> as_json, const Hints& hints,
              const QString& which_format);

/// How messages name a path that is read.
QString shownPath(const QString& path);

/// Writes \a bytes to \a path as saveFile() does, or for `-` to the standard output.
/// Throws UsageError; the file is then as it was.
void writeFile(const QString& path, const QByteArray& bytes, bool is_secret);

/// Says on the standard error what the user should know, and what is wrong with the file.
void report(const QString& line);
void report(const File& file, const QString& path);

} // namespace tovik_host::stored

#endif
