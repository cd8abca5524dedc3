#ifndef TOOLS_HOST_COMMAND_OPTIONS_H
#define TOOLS_HOST_COMMAND_OPTIONS_H

#include "tools/host/config/options.h"
#include "tools/host/service/catalogue_fetch.h"

#include <CLI/CLI.hpp>

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <string>

/// \file
/// The options of the command line, as the commands share them. They go straight into what they
/// are given, which has to live until the line is parsed.
namespace tovik_host {

/// What a command does; returns the exit code, and throws UsageError.
using Run = std::function<int()>;

CLI::Option* addText(CLI::App* command, const char* name, QString& text, const char* description);
CLI::Option* addText(CLI::App* command, const char* name, std::optional<QString>& text,
                     const char* description);
CLI::Option* addTexts(CLI::App* command, const char* name, QStringList& texts,
                      const char* description);

/// Refuses everything but numbers of seconds from \a low to \a high.
CLI::Validator secondsWithin(double low, double high);

/// Configuration, library and log.
void addCommon(CLI::App* command, config::CommonOptions& common);
/// The address of a service.
void addService(CLI::App* command, config::CommonOptions& common);
/// The link to a device and its settings.
void addLink(CLI::App* command, config::LinkOptions& link);
/// What a request to a device says beside its address.
void addRequest(CLI::App* command, config::CommonOptions& common);
/// Marks an option as one that only a service has.
void markOfService(CLI::Option* option);
/// \param of_device whether only a device has it
CLI::Option* addTimeout(CLI::App* command, double& timeout, const char* description,
                        bool of_device = false);
/// Completes \a common, once the line is parsed. Throws CLI::ParseError if the options name neither
/// a configuration nor a link.
void complete(const CLI::App* command, config::CommonOptions& common);

/// The account, the time-out and the client's log of the commands that ask for a catalogue.
void addServiceOptions(CLI::App* command, service::ServiceOptions& options);

/// Adds a command, whose options are members of an Options. Its member run() becomes what the
/// program does if it is this command that is asked for.
template <typename Options>
void setRun(CLI::App* command, const std::shared_ptr<Options>& options, Run& run)
{
    command->callback([options, &run] { run = [options] { return options->run(); }; });
}

} // namespace tovik_host

#endif
