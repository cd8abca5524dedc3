#ifndef TOOLS_HOST_COMMANDS_H
#define TOOLS_HOST_COMMANDS_H

#include "tools/host/config/config.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace tovik_host::config {
struct Account;
}

namespace tovik_host::service {
struct Catalogue;
} // namespace tovik_host::service

namespace tovik_host::driver {
struct ServiceSetup;
}

namespace tovik_host::terminal {
struct Context;
}

namespace tovik_host {

/// What a command does; returns the exit code, and throws UsageError.
using Run = std::function<int()>;

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

/// What a command needs beside its own options.
enum class Needs
{
    configuration, ///< Or a link.
    address        ///< A service's address will do, too.
};

/// Adds a command, which does \a what; its help ends with \a text.
CLI::App* addCommand(CLI::App& app, Run& run, const char* name, const char* description,
                     const char* text, const Run& what);
/// The same with a driver: the line must name what the command \a needs, and \a common is told
/// which options it has that only a service has, or only a device.
CLI::App* addCommand(CLI::App& app, Run& run, const char* name, const char* description,
                     const char* text, const Run& what, config::CommonOptions& common,
                     Needs needs = Needs::configuration);

/// Parses a command line without the program, after what the user's settings add to it, and prints
/// what help is asked for; that was all then, and the exit code is returned. Throws UsageError in
/// the user's words.
std::optional<int> parseLine(CLI::App& app, std::vector<std::string> words);

/// Puts the user's settings after the command that begins \a words, as far as that command has
/// such options and the line does not give them. The file is `tovik/tovik-host.json` in the folder
/// of the user's configurations. A password in it goes into the environment, where every command
/// looks for one. Throws UsageError, also for a password that others may read.
void addSettings(const CLI::App& command, std::vector<std::string>& words);

/// \a word so that the command-line library takes it as it is: what stands in brackets would be a
/// list. What addText() and addTexts() give has them back.
std::string keepBrackets(const std::string& word);
/// A text of the library, with such words as they were.
std::string withoutMark(std::string text);

// Options that commands share. They go straight into what they are given, which has to live until
// the line is parsed.

/// \param type what stands for the text in the help; nothing for an argument without a name
CLI::Option* addText(CLI::App* command, const char* name, QString& text, const char* description,
                     const char* type = "");
CLI::Option* addText(CLI::App* command, const char* name, std::optional<QString>& text,
                     const char* description, const char* type);
CLI::Option* addTexts(CLI::App* command, const char* name, QStringList& texts,
                      const char* description, const char* type = "");
/// A number of seconds from a tenth to \a most.
CLI::Option* addSeconds(CLI::App* command, const char* name, double& seconds,
                        const char* description, double most = 86400);
/// A whole number from \a low to \a high.
CLI::Option* addWhole(CLI::App* command, const char* name, int& number, const char* description,
                      const char* type, int low, int high);
CLI::Option* addTimeout(CLI::App* command, double& timeout, const char* description);

/// Configuration, library, log and trace.
void addCommon(CLI::App* command, config::CommonOptions& common);
/// The link to a device and its settings.
void addLink(CLI::App* command, config::LinkOptions& link);
/// The address of a service, or the link to a device and what a request says beside its address.
void addWays(CLI::App* command, config::CommonOptions& common);
/// Marks an option as one that only a service has, or only a device.
void markOfService(CLI::Option* option);
void markOfDevice(CLI::Option* option);
/// Why a driver with this \a status got no connection to its service; empty: that is not known.
QString causeOfNoConnection(terminal::Context& context, const driver::ServiceSetup& setup,
                            const config::CommonOptions& common, int status);
/// Says it, with the next command.
void explainNoConnection(terminal::Context& context, const driver::ServiceSetup& setup,
                         const config::CommonOptions& common, int status);

/// What the service offers; nothing: it has been said why, and what to try next.
std::optional<service::Catalogue> catalogueOf(terminal::Context& context,
                                              const config::CommonOptions& options,
                                              const config::Account& account);

/// The account, the time-out and the client's log of the commands that ask for a catalogue.
void addServiceOptions(CLI::App* command, config::CommonOptions& options);

} // namespace tovik_host

#endif
