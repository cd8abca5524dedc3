#ifndef TOOLS_HOST_CHECK_COMMAND_H
#define TOOLS_HOST_CHECK_COMMAND_H

#include <functional>

namespace CLI {
class App;
}

namespace tovik_host {

/// Adds the command "check" to the command line.
/// \param run receives the command, ready to run, when the command line asks for it; must outlive
///        the parsing.
void addCheck(CLI::App& app, std::function<int()>& run);

} // namespace tovik_host

#endif
