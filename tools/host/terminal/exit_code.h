#ifndef TOOLS_HOST_TERMINAL_EXIT_CODE_H
#define TOOLS_HOST_TERMINAL_EXIT_CODE_H

#include "tools/host/terminal/text.h"

#include <QString>

#include <stdexcept>

namespace tovik_host::terminal {

/// What the program tells the shell.
enum ExitCode : int
{
    exitDone = 0,    ///< Done.
    exitRefused = 1, ///< The service or the item says no, or the time ran out.
    exitUsage = 2    ///< Usage or configuration is wrong, or the library cannot be used.
};

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
