#include "tools/host/check/check.h"
#include "tools/host/commands.h"
#include "tools/host/driver/device_config.h"
#include "tools/host/terminal/exit_code.h"

#include <CLI/CLI.hpp>

namespace tovik_host {

namespace {

const char check_text[] =
    R"(Walks the way that a value takes, with the driver's own client code: name, connection, TLS
and certificate, login, catalogue, and every item: known, of the right type, of the right
JSON type, and how long its read takes. Ends with what the driver's cycle comes to, and a
verdict. It needs no driver library, writes nothing, and shows no password or token.
With --url and no configuration it goes as far as no account is needed.
Of a device on a link, with its driver: the link, its settings, an answer at all, the station,
every item, and the times that answers take against the time that the driver waits.

Examples:
  tovik-host check --config plant.json
  tovik-host check --config plant.json --items 'Boiler.*' --timeout 3 --json
  tovik-host check 4x1 3x17 --library modbus_drv --link serial:/dev/ttyUSB0,9600,8N1

Exit codes: 0 every value arrives, perhaps with warnings; 1 something on the way says no;
2 usage or configuration is wrong.)";

struct Check
{
    config::CommonOptions common;
    QStringList items;     ///< Patterns of names.
    QStringList addresses; ///< Of a device only.

    int run() const;
};

int Check::run() const
{
    config::CommonOptions given = common;
    if (!addresses.isEmpty())
        given.device_options << u"\"%1\""_s.arg(addresses.first());
    return driver::meansDevice(given) ? check::runLinkCheck(common, addresses)
                                      : check::runCheck(common, items);
}

} // namespace

void addCheck(CLI::App& app, Run& run)
{
    const auto options = std::make_shared<Check>();
    CLI::App* const command = addCommand(
        app, run, "check", "Why does the value not arrive?", check_text,
        [options] { return options->run(); }, options->common, Needs::address);
    addTexts(command, "ADDRESS", options->addresses,
             "Of a device: addresses, or with --config names of items");
    addCommon(command, options->common);
    addWays(command, options->common);
    CLI::Option* items = addTexts(command, "--items", options->items,
                                  "Items to look at, by a pattern of their names with * ? []; may "
                                  "be repeated (default: all)",
                                  "GLOB");
    markOfService(items);
    items->allow_extra_args(false);
    addTimeout(command, options->common.timeout, "Longest wait for each step, or for the link");
    command->add_flag("-j,--json", options->common.json, "One line of JSON for every step");
}

} // namespace tovik_host
