#ifndef TOOLS_HOST_TERMINAL_OUTPUT_H
#define TOOLS_HOST_TERMINAL_OUTPUT_H

#include "tools/file/line_file.h"
#include "tools/host/terminal/text.h"

#include <QByteArray>
#include <QString>

namespace tovik_host::terminal {

/// Keeps the standard descriptors that the program was started without from being given to
/// something else; writing to them fails then.
void reserveStandardDescriptors();

struct ScreenSize
{
    int columns;
    int rows;
};

/// Writes text as UTF-8 to a file descriptor at once, whatever conventions Qt and the locale have.
class Output
{
public:
    /// \param descriptor not closed by this class.
    explicit Output(int descriptor) : descriptor_(descriptor) {}

    void write(const QString& text) { write(text.toUtf8()); }
    void write(const QByteArray& bytes);
    void line(const QString& text);
    /// Writes a line of somebody else: on a terminal without control characters, elsewhere as it
    /// is.
    void foreignLine(const QString& text);
    /// Whether the reader has gone; all further writing is in vain.
    bool broken() const;
    /// Of the terminal; the usual one if it is none, or does not tell.
    ScreenSize screenSize() const;
    /// Why writing failed, as errno says it; 0 when all has been written.
    int error() const { return error_; }

private:
    int descriptor_;
    int error_ = 0;
};

/// A file that lines are appended to, such as a log. Those that cannot be written are missing in
/// it, which is said on the standard error, once for all that follow each other.
class LineOutput
{
public:
    /// \param what of a path, such as "the log"
    /// Throws UsageError when the file cannot be written.
    LineOutput(const QString& what, const QString& path);

    void line(const QString& text);

private:
    QString name_;
    tovik_file::LineFile file_;
};

/// Throws UsageError when \a path may not be written: when it exists and \a may_replace is not set,
/// and always when it is no regular file.
void checkOutputFile(const QString& path, bool may_replace);

/// Writes \a bytes to \a path, or leaves what is there: tools/file/whole_file.h.
/// \param is_secret nobody but the owner may read it, though others might read what it replaces
/// Throws UsageError; the file is then as it was.
void saveFile(const QString& path, const QByteArray& bytes, bool is_secret);

} // namespace tovik_host::terminal

#endif
