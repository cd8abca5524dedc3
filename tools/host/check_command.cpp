#include "tools/host/check_command.h"

#include "tools/host/check/check.h"
#include "tools/host/command_options.h"

#include <memory>

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

} // namespace

void addCheck(CLI::App& app, std::function<int()>& run)
{
    const Parsed parsed = std::make_shared<ParsedOptions>();
    CLI::App* command = app.add_subcommand("check", "Why does the value not arrive?");
    command->footer(check_text);
    command->add_option("--config", parsed->config, "Configuration file (JSON)")
        ->type_name("FILE")
        ->required();
    addService(command, parsed);
    command
        ->add_option("--items", parsed->items,
                     "Items to look at, by a pattern of their names with * ? []; may be repeated "
                     "(default: all)")
        ->type_name("GLOB")
        ->allow_extra_args(false);
    addTimeout(command, parsed, "Longest wait for each step");
    command->add_flag("--json", parsed->json, "One line of JSON for every step");
    command->add_option("--log", parsed->log, "Append the client's debug lines to a file")
        ->type_name("FILE");
    command->add_flag("--verbose", parsed->verbose, "Client's debug lines to the standard error");
    command->callback([command, parsed, &run] {
        const config::CommonOptions common = commonOptions(command, *parsed);
        const check::CheckOptions options = {texts(parsed->items), parsed->timeout};
        run = [common, options] { return check::runCheck(common, options); };
    });
}

} // namespace tovik_host
