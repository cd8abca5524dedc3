#ifndef TOOLS_HOST_TERMINAL_EXIT_CODE_H
#define TOOLS_HOST_TERMINAL_EXIT_CODE_H

namespace tovik_host::terminal {

/// What the program tells the shell.
enum ExitCode : int
{
    exitDone = 0,    ///< Done.
    exitRefused = 1, ///< The service or the item says no, or the time ran out.
    exitUsage = 2    ///< Usage or configuration is wrong, or the library cannot be used.
};

} // namespace tovik_host::terminal

#endif
