#include "tools/service/options.h"

#include "tools/service/control/control_guard.h"
#include "tools/service/faults/fault.h"
#include "tools/service/plant/near_name.h"
#include "tools/service/settings.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <system_error>

namespace tovik_service {

namespace {

std::string faultProblem(const std::string& text)
{
    try {
        faults::parseFault(text);
    } catch (const faults::FaultError& error) {
        return error.what();
    }
    return {};
}

/// An empty name would be taken as "not given", perhaps because a script's variable is not set.
CLI::Validator notEmpty()
{
    const auto problem = [](const std::string& name) {
        return name.empty() ? std::string("the name is empty; name a file, or leave the option out")
                            : std::string();
    };
    return {problem, ""};
}

void addNetworkOptions(CLI::App& app, Options& options)
{
    app.option_defaults()->group("Network");
    app.add_option("--host", options.host, "Address to serve on")
        ->type_name("HOST")
        ->capture_default_str();
    app.add_option("--port", options.port, "Port of the service, 0 for a free one")
        ->type_name("PORT")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    app.add_option("--url-file", options.url_file, "Write the URL of the service to this file")
        ->type_name("FILE")
        ->check(notEmpty());
}

void addControlOptions(CLI::App& app, Options& options)
{
    app.option_defaults()->group("Control API and dashboard");
    app.add_option("--control-host", options.control_host,
                   "Address for control; beyond this computer every request needs a token")
        ->type_name("HOST")
        ->capture_default_str();
    app.add_option("--control-port", options.control_port, "Port for control, 0 for a free one")
        ->type_name("PORT")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    app.add_option("--control-token-file", options.control_token_file,
                   "Every control request needs the token in this file (a new one, which is "
                   "printed, if the address is not of this computer alone)")
        ->type_name("FILE")
        ->check(notEmpty());
    app.add_option("--control-file", options.control_file,
                   "Write the URL of the control API to this file")
        ->type_name("FILE")
        ->check(notEmpty());
}

void addTlsOptions(CLI::App& app, Options& options)
{
    app.option_defaults()->group("TLS");
    auto* http = app.add_flag("--http", options.plain_http, "Plain HTTP without TLS");
    app.add_option("--tls", options.tls_version, "Only this TLS version: 1.2 or 1.3")
        ->check(CLI::IsMember({"1.2", "1.3"}))
        ->excludes(http);
    app.add_option("--key-type", options.key_type, "Key of the self-made certificates: rsa or p256")
        ->check(CLI::IsMember({"rsa", "p256"}))
        ->capture_default_str()
        ->excludes(http);
    auto* certificate = app.add_option("--cert", options.certificate_file,
                                       "Certificate chain to show instead, PEM; needs --key");
    auto* key = app.add_option("--key", options.key_file, "Key of that certificate, PEM");
    certificate->type_name("PEM")->check(CLI::ExistingFile)->excludes(http)->needs(key);
    key->type_name("PEM")->check(CLI::ExistingFile)->excludes(http)->needs(certificate);
    app.add_option("--save-cert", options.save_certificate_file,
                   "Write all certificates that can be shown to this PEM file, for clients that "
                   "shall trust them")
        ->type_name("FILE")
        ->check(notEmpty())
        ->excludes(http);
}

void addBehaviourOptions(CLI::App& app, Options& options)
{
    app.option_defaults()->group("Behaviour");
    app.add_option("--token-lifetime", options.token_lifetime,
                   "Tokens expire after SECONDS (never)")
        ->type_name("SECONDS")
        ->check(CLI::PositiveNumber);
    app.add_option("--write-hold", options.write_hold,
                   "Moving items go on SECONDS after a write (never)")
        ->type_name("SECONDS")
        ->check(CLI::PositiveNumber);
    app.add_option("--fault", options.faults, "A fault from the start, see below; repeatable")
        ->type_name("SPEC")
        ->allow_extra_args(false)
        ->check(CLI::Validator([](std::string& text) { return faultProblem(text); }, ""));
}

void addLogOptions(CLI::App& app, Options& options)
{
    app.option_defaults()->group("Log");
    app.add_option("--log", options.log_file, "Log to this file instead of stderr")
        ->type_name("FILE")
        ->check(notEmpty());
    app.add_flag("-v,--verbose", options.verbose, "Log every request");
}

/// Completes the options, or says why they cannot be used.
std::string findProblem(Options& options)
{
    if (options.project_file.empty())
        return "the project file is missing; name one, such as plant.json";
    if (!options.control_token_file.empty()) {
        try {
            options.control_token = control::readControlToken(options.control_token_file);
        } catch (const std::invalid_argument& error) {
            return error.what();
        }
    }
    for (const std::string& text : options.faults) {
        std::string problem = faults::tlsProblem(faults::parseFault(text), !options.plain_http);
        if (!problem.empty())
            return problem;
    }
    return {};
}

/// The file of settings in brackets if the option that \a problem begins with stands there, and not
/// on the line.
std::string originOf(const std::string& problem, const CLI::App& app, int count,
                     char* const* arguments)
{
    const std::string name = problem.substr(0, problem.find(':'));
    const CLI::Option* const option = app.get_option_no_throw(name);
    const bool is_given =
        !option || std::any_of(arguments, arguments + count, [&name](const char* word) {
            const std::string text(word);
            return text.substr(0, text.find('=')) == name;
        });
    return is_given ? std::string() : " (in " + app["--settings"]->as<std::string>() + ")";
}

/// How wrong usage is told.
std::string usageText(const std::string& problem)
{
    return "tovik-cloud: " + problem + "\nRun with --help for more information.\n";
}

/// The first word that is no option, with the option that it may mean; empty: all are.
std::string unknownOption(const CLI::App& app)
{
    const std::vector<std::string> words = app.remaining();
    const auto unknown = std::find_if(words.begin(), words.end(),
                                      [](const std::string& word) { return word[0] == '-'; });
    if (unknown == words.end())
        return std::string();
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
    }
    const std::string near = plant::nearName(unknown->substr(0, unknown->find('=')), names);
    return "no option \"" + *unknown + "\"" + (near.empty() ? "" : "; " + near + "?");
}

} // namespace

void requireOutput()
{
    if (!std::cout.flush())
        throw std::runtime_error("cannot write to standard output: " +
                                 std::generic_category().message(errno));
}

ParsedOptions parseOptions(int count, char** arguments)
{
    ParsedOptions parsed;
    Options& options = parsed.options;
    CLI::App app{"A simulated cloud monitoring service, with faults on demand.", "tovik-cloud"};
    bool list_faults = false;
    app.add_option("project", options.project_file, "Project file (JSON): accounts, groups, items")
        ->type_name("FILE");
    app.set_version_flag("--version", "tovik-cloud " TOVIK_VERSION);
    app.add_flag("--check", options.check_only, "Only check the project file");
    app.add_flag("--list-faults", list_faults, "Explain the faults and exit");
    addSettings(app);
    addNetworkOptions(app, options);
    addControlOptions(app, options);
    addTlsOptions(app, options);
    addBehaviourOptions(app, options);
    addLogOptions(app, options);
    app.footer("\n" + faults::faultHelp() +
               "\nExit codes: 0 success, 1 failure at run time, 2 wrong usage or "
               "project file.");
    app.failure_message([&](const CLI::App*, const CLI::Error& error) {
        const std::string unknown = unknownOption(app);
        return usageText(unknown.empty()
                             ? error.what() + originOf(error.what(), app, count, arguments)
                             : unknown);
    });
    try {
        app.parse(count, arguments);
    } catch (const CLI::ParseError& error) {
        parsed.exit_code = app.exit(error) == 0 ? exit_success : exit_usage;
        requireOutput();
        return parsed;
    }
    const bool asks_for_help =
        options.project_file == "help" && !std::filesystem::exists(options.project_file);
    if (list_faults || asks_for_help) {
        std::cout << (list_faults ? faults::faultHelp() : app.help());
        requireOutput();
        parsed.exit_code = exit_success;
        return parsed;
    }
    const std::string problem = findProblem(options);
    if (!problem.empty()) {
        std::cerr << usageText(problem);
        parsed.exit_code = exit_usage;
    }
    return parsed;
}

} // namespace tovik_service
