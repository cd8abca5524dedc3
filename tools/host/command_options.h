#ifndef TOOLS_HOST_COMMAND_OPTIONS_H
#define TOOLS_HOST_COMMAND_OPTIONS_H

#include "tools/host/config/options.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <optional>
#include <string>
#include <vector>

/// \file
/// The options of the command line, as the commands share them.
namespace tovik_host {

/// What the options are parsed into: all commands' together, as only one of them runs.
struct ParsedOptions
{
    std::string config;
    std::string library;
    std::string url;
    std::string url_file;
    std::string log;
    bool json = false;
    bool verbose = false;
    std::optional<std::string> link;
    std::optional<std::string> unit;
    config::LinkOptions link_settings;
    std::optional<std::string> type;
    config::RequestOptions request;
    config::WatchOptions watch;
    std::vector<std::string> items;
    bool quiet = false;
    std::string item;
    std::string value;
    std::vector<std::string> bytes;
    bool force = false;
    double confirm = 0;
    double timeout = 10;
};

using Parsed = std::shared_ptr<ParsedOptions>;

/// Texts of the command line as Qt has them.
QString text(const std::string& bytes);
QStringList texts(const std::vector<std::string>& list);

/// Refuses everything but numbers of seconds from \a low to \a high.
CLI::Validator secondsWithin(double low, double high);

/// Configuration, library and log.
void addCommon(CLI::App* command, const Parsed& parsed);
/// The address of a service.
void addService(CLI::App* command, const Parsed& parsed);
/// The link to a device and its settings.
void addLink(CLI::App* command, const Parsed& parsed);
/// What a request to a device says beside its address.
void addRequest(CLI::App* command, const Parsed& parsed);
/// Marks an option as one that only a service has.
void markOfService(CLI::Option* option);
/// \param of_device whether only a device has it
CLI::Option* addTimeout(CLI::App* command, const Parsed& parsed, const char* description,
                        bool of_device = false);

/// The options that \a command was given. Throws CLI::ParseError if they name neither a
/// configuration nor a link.
config::CommonOptions commonOptions(const CLI::App* command, const ParsedOptions& parsed);

} // namespace tovik_host

#endif
