#ifndef TOOLS_HOST_COMMAND_LINE_H
#define TOOLS_HOST_COMMAND_LINE_H

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

namespace tovik_host {

/// Parses a command line without the program, after what the user's settings add to it, and prints
/// what help is asked for; that was all then, and the exit code is returned. Throws UsageError in
/// the user's words.
std::optional<int> parseLine(CLI::App& app, std::vector<std::string> words);

/// Puts the user's settings after the command that begins \a words, as far as that command has
/// such options and the line does not give them. The file is `tovik/tovik-host.json` in the folder
/// of the user's configurations. A password in it goes into the environment, where every command
/// looks for one. Throws UsageError, also for a password that others may read.
void addSettings(const CLI::App& command, std::vector<std::string>& words);

} // namespace tovik_host

#endif
