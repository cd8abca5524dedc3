#ifndef TOOLS_HOST_SERVICE_COMMANDS_H
#define TOOLS_HOST_SERVICE_COMMANDS_H

#include <CLI/CLI.hpp>

#include <functional>

/// \file
/// The options of the commands that ask a service for its catalogue. Each function adds a command
/// that, once parsed, sets \a run.
namespace tovik_host {

void addCatalogue(CLI::App& app, std::function<int()>& run);
void addConfigure(CLI::App& app, std::function<int()>& run);
void addDiff(CLI::App& app, std::function<int()>& run);

} // namespace tovik_host

#endif
