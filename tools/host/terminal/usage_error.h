#ifndef TOOLS_HOST_TERMINAL_USAGE_ERROR_H
#define TOOLS_HOST_TERMINAL_USAGE_ERROR_H

#include <QString>

#include <stdexcept>

namespace tovik_host::terminal {

/// Something that the user must put right before the program can work: ends it with exitUsage.
class UsageError : public std::runtime_error
{
public:
    /// \param message for the user, complete but for the program's name.
    explicit UsageError(const QString& message) : std::runtime_error(message.toStdString()) {}

    QString message() const { return QString::fromUtf8(what()); }
};

} // namespace tovik_host::terminal

#endif
