#ifndef TOOLS_HOST_STORED_COMMANDS_H
#define TOOLS_HOST_STORED_COMMANDS_H

#include "tools/host/stored/stream.h"
#include "tools/host/terminal/context.h"

#include <QStringList>

#include <optional>

/// \file
/// The commands for stored configurations. They return the exit code, and throw UsageError.
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
    QString path; ///< As messages name it.
    int size;     ///< In bytes.
    Reading reading = {};
    Hints format = {};      ///< Of a stream, what was found; of JSON, what it says.
    QStringList notes = {}; ///< What the user should know.
    /// The same, when the record is to be stored.
    QStringList conversion_notes = {};

    bool isDamaged() const { return !reading.problems.isEmpty(); }
    /// Whether it may hold a password; a damaged one may have it anywhere.
    bool isSecret() const;
    /// Says on the standard error what the user should know, and what is wrong with the file.
    void report(terminal::Streams& streams) const;
};

/// Where a record is read.
struct Source
{
    QString path;                ///< `-` is the standard input.
    std::optional<bool> is_json; ///< Not given: the first character tells.

    /// \param hints what is known of a stream's format; not used for JSON.
    /// \param which_format what the user is told to do when the format cannot be told; options
    ///        follow
    /// Throws UsageError if the file cannot be read or is nothing of the kind. A damaged stream has
    /// problems.
    File read(const Hints& hints, const QString& which_format) const;
};

struct Convert
{
    Source input;
    QString output;
    std::optional<bool> to_json;
    Hints format; ///< Of the output if that is a stream, else of the input.
    bool force = false;
    bool salvage = false;

    int run() const;
};

struct Show
{
    Source input;
    Hints format;
    bool json = false;
    bool show_password = false;

    int run() const;
};

} // namespace tovik_host::stored

#endif
