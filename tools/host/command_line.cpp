#include "tools/host/command_line.h"

#include "tools/host/commands.h"
#include "tools/host/terminal/exit_code.h"

namespace tovik_host {

namespace {

const char program_text[] = "Loads a driver plug-in as a host does, and shows it work.";

const char exit_text[] =
    "With --config it runs a cloud driver, with --link the driver of a device on a serial line or\n"
    "a TCP connection.\n"
    "\n"
    "Exit codes: 0 done; 1 the service, the device or the item says no, or the time ran out;\n"
    "2 usage, configuration or library is wrong.";

} // namespace

ParsedCommandLine parseCommandLine(int argc, const char* const* argv)
{
    ParsedCommandLine parsed;
    CLI::App app(program_text, "tovik-host");
    app.footer(exit_text);
    app.require_subcommand(1);
    app.set_version_flag("--version", "tovik-host " TOVIK_HOST_VERSION);
    addWatch(app, parsed.run);
    addRead(app, parsed.run);
    addWrite(app, parsed.run);
    addRaw(app, parsed.run);
    addCheck(app, parsed.run);
    addCatalogue(app, parsed.run);
    addConfigure(app, parsed.run);
    addDiff(app, parsed.run);
    addConvert(app, parsed.run);
    addShow(app, parsed.run);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        parsed.run = nullptr;
        parsed.exit_code = app.exit(error) == 0 ? terminal::exitDone : terminal::exitUsage;
    }
    return parsed;
}

} // namespace tovik_host
