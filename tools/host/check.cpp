#include "tools/host/check/check.h"
#include "tools/host/commands.h"

#include <CLI/CLI.hpp>

namespace tovik_host {

namespace {

const char check_text[] =
    "Walks the way that a value takes, with the driver's own client code: name, connection, TLS\n"
    "and certificate, login, catalogue, and every item: known, of the right type, of the right\n"
    "JSON type, and how long its read takes. Ends with what the driver's cycle comes to, and a\n"
    "verdict. It needs no driver library, writes nothing, and shows no password or token.\n"
    "\n"
    "Examples:\n"
    "  tovik-host check --config plant.json\n"
    "  tovik-host check --config plant.json --items 'Boiler.*' --timeout 3 --json\n"
    "\n"
    "Exit codes: 0 every value arrives, perhaps with warnings; 1 something on the way says no;\n"
    "2 usage or configuration is wrong.";

struct Check
{
    config::CommonOptions common;
    QStringList items;

    int run() const { return check::runCheck(common, items); }
};

} // namespace

void addCheck(CLI::App& app, Run& run)
{
    const auto options = std::make_shared<Check>();
    CLI::App* command = app.add_subcommand("check", "Why does the value not arrive?");
    command->footer(check_text);
    addText(command, "--config", options->common.config, "Configuration file (JSON)", "FILE")
        ->required();
    addService(command, options->common);
    addTexts(command, "--items", options->items,
             "Items to look at, by a pattern of their names with * ? []; may be repeated "
             "(default: all)",
             "GLOB")
        ->allow_extra_args(false);
    addTimeout(command, options->common.timeout, "Longest wait for each step");
    command->add_flag("--json", options->common.json, "One line of JSON for every step");
    addText(command, "--log", options->common.log, "Append the client's debug lines to a file",
            "FILE");
    command->add_flag("--verbose", options->common.verbose,
                      "Client's debug lines to the standard error");
    command->callback([=, &run] { run = [=] { return options->run(); }; });
}

} // namespace tovik_host
