#ifndef TOOLS_HOST_OUTPUT_H
#define TOOLS_HOST_OUTPUT_H

#include <QByteArray>
#include <QString>

namespace tovik_host {

/// Writes text as UTF-8 to a file descriptor at once, whatever conventions Qt and the locale have.
class Output
{
public:
    /// \param descriptor not closed by this class.
    explicit Output(int descriptor) : descriptor_(descriptor) {}

    /// Writes \a text as it is.
    void write(const QString& text);
    /// Writes \a text and a line break.
    void line(const QString& text);
    /// Whether the reader has gone; all further writing is in vain.
    bool broken() const;

private:
    int descriptor_;
    bool broken_ = false;
};

} // namespace tovik_host

#endif
