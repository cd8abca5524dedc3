#ifndef TOOLS_HOST_STORED_COMMANDS_H
#define TOOLS_HOST_STORED_COMMANDS_H

#include <CLI/CLI.hpp>

#include <functional>

/// \file
/// The commands for stored configurations, as the command line knows them.
namespace tovik_host {

/// Adds "convert". \param run is set to the command once it has been parsed; outlives \a app.
void addConvert(CLI::App& app, std::function<int()>& run);
/// Adds "show" in the same way.
void addShow(CLI::App& app, std::function<int()>& run);

} // namespace tovik_host

#endif
