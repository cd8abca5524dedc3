#ifndef TOOLS_HOST_COMMANDS_H
#define TOOLS_HOST_COMMANDS_H

#include "tools/host/command_options.h"

namespace tovik_host {

// Each adds its command; \a run becomes what the program does if it is the one asked for.
void addWatch(CLI::App& app, Run& run);
void addRead(CLI::App& app, Run& run);
void addWrite(CLI::App& app, Run& run);
void addRaw(CLI::App& app, Run& run);
void addCheck(CLI::App& app, Run& run);
void addCatalogue(CLI::App& app, Run& run);
void addConfigure(CLI::App& app, Run& run);
void addDiff(CLI::App& app, Run& run);
void addConvert(CLI::App& app, Run& run);
void addShow(CLI::App& app, Run& run);

/// Watches a device until a signal, or until \a seconds are over unless they are 0.
int watchDevice(const config::CommonOptions& common, const QStringList& items, double seconds,
                int interval);

} // namespace tovik_host

#endif
