#ifndef TOOLS_SERVICE_SETTINGS_H
#define TOOLS_SERVICE_SETTINGS_H

namespace CLI {
class App;
} // namespace CLI

namespace tovik_service {

/// Has \a app take what its line does not give from a file of settings: a JSON object of long names
/// of options, where there is one.
void addSettings(CLI::App& app);

} // namespace tovik_service

#endif
