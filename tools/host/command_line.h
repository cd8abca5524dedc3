#ifndef TOOLS_HOST_COMMAND_LINE_H
#define TOOLS_HOST_COMMAND_LINE_H

#include <functional>
#include <optional>

namespace tovik_host {

/// What the command line asks for.
struct ParsedCommandLine
{
    /// The command, ready to run. Empty when there is none to run.
    std::function<int()> run;
    /// The exit code when there is none to run: help was shown, or the usage is wrong.
    int exit_code = 0;
};

/// Parses the command line. Help goes to the standard output, complaints to the standard error.
ParsedCommandLine parseCommandLine(int argc, const char* const* argv);

} // namespace tovik_host

#endif
