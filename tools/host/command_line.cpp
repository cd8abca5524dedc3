#include "tools/host/command_line.h"

#include "tools/host/check_command.h"
#include "tools/host/command_options.h"
#include "tools/host/config/device_limits.h"
#include "tools/host/device_commands.h"
#include "tools/host/driver/device_config.h"
#include "tools/host/read.h"
#include "tools/host/service_commands.h"
#include "tools/host/stored_commands.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/usage_error.h"
#include "tools/host/watch.h"
#include "tools/host/write.h"

#include <algorithm>

namespace tovik_host {

namespace {

const char program_text[] = "Loads a driver plug-in as a host does, and shows it work.";

const char exit_text[] =
    "With --config it runs a cloud driver, with --link the driver of a device on a serial line or\n"
    "a TCP connection.\n"
    "\n"
    "Exit codes: 0 done; 1 the service, the device or the item says no, or the time ran out;\n"
    "2 usage, configuration or library is wrong.";

const char watch_text[] =
    "Reads all items again and again and shows what changes: a live table on a terminal,\n"
    "a line for every change elsewhere. Ends with Ctrl-C or after --seconds.\n"
    "Values are what a host sees: of a cloud driver zeros and empty texts until the first cycle\n"
    "is done. A link that is lost is opened again; until then the status is offline.\n"
    "\n"
    "Example:\n"
    "  tovik-host watch --config plant.json --seconds 60 --json\n"
    "With a device:\n"
    "  tovik-host watch 4x1 4x10=32Bit-FLOAT --library ./libmodbus_drv.so.1 \\\n"
    "      --link tcp:192.168.1.5:502 --interval 1000";

const char read_text[] =
    "Reads items once, as the service or the device has them.\n"
    "Of a service it takes a value once the driver tells that the service has delivered it, so\n"
    "it is never one from the driver's empty cache. An error code of the service ends it at\n"
    "once; a service that cannot be reached is tried again until --timeout.\n"
    "A device is asked once (and --retries times more); --timeout is for opening the link.\n"
    "\n"
    "Example:\n"
    "  tovik-host read Pump.Speed Tank.Level --config plant.json\n"
    "With a device:\n"
    "  tovik-host read 4x1 4x2=16Bit-INT --library ./libmodbus_drv.so.1 \\\n"
    "      --link serial:/dev/ttyUSB0,19200,8E1 --station 3";

const char write_text[] =
    "Writes one value, checked against the limits of the item's type, and waits until the\n"
    "driver has sent it. --confirm starts another driver, which knows nothing of the write,\n"
    "and waits until that one hears the value from the service. A device itself says whether\n"
    "it has taken the value.\n"
    "A value that begins with a minus sign and is no plain number goes behind \"--\".\n"
    "\n"
    "Example:\n"
    "  tovik-host write Pump.Speed 1200 --config plant.json --confirm 5\n"
    "With a device:\n"
    "  tovik-host write 4x1 1200 --library ./libmodbus_drv.so.1 --link tcp:192.168.1.5:502";

const char raw_text[] =
    "Sends bytes to the device as they are (transparent mode) and prints the answer as\n"
    "hexadecimal digits. The frame must be complete, with its checksum.\n"
    "The answer is complete once no byte has come for a number of polls; all of it must fit\n"
    "into --response-timeout, 1000 ms by default. The library's own default of 10 ms never\n"
    "suffices: over TCP 12 polls of 1 ms are needed at least, over a serial line 52 of 1.5\n"
    "characters each. A poll counts for its shortest time, so the wait may be twice as long.\n"
    "\n"
    "Example:\n"
    "  tovik-host raw 01 03 00 00 00 0A C5 CD --library ./libmodbus_drv.so.1 \\\n"
    "      --link serial:/dev/ttyUSB0,9600,8N1 --response-timeout 2000";

using Run = std::function<int()>;

void addWatch(CLI::App& app, const Parsed& parsed, Run& run)
{
    CLI::App* command = app.add_subcommand("watch", "Show items live as the driver serves them");
    command->footer(watch_text);
    command
        ->add_option("ADDRESS", parsed->items,
                     "Of a device: addresses, or with --config names of items")
        ->type_name("");
    addCommon(command, parsed);
    addService(command, parsed);
    command->add_option("--seconds", parsed->watch.seconds, "End after this time")
        ->type_name("SECONDS")
        ->check(secondsWithin(0.1, 1000000));
    command->add_option("--interval", parsed->watch.interval, "Time between reads")
        ->type_name("MS")
        ->check(CLI::Range(20, 3600000))
        ->capture_default_str();
    command->add_flag("--json", parsed->json, "One line of JSON for every change");
    markOfService(
        command
            ->add_option("--metrics", parsed->watch.metrics,
                         "Also report cycle time, reads per second, errors and ages so often")
            ->type_name("SECONDS")
            ->check(secondsWithin(0.1, 86400)));
    addLink(command, parsed);
    addRequest(command, parsed);
    addTimeout(command, parsed, "Longest wait for the link", true);
    command->callback([command, parsed, &run] {
        config::CommonOptions common = commonOptions(command, *parsed);
        config::WatchOptions options = parsed->watch;
        options.items = texts(parsed->items);
        if (!options.items.isEmpty())
            common.device_options << QStringLiteral("\"%1\"").arg(options.items.first());
        run = [common, options] {
            if (driver::isForDevice(common))
                return runDeviceWatch(common, options);
            driver::refuseDeviceOptions(common);
            return runWatch(common, options);
        };
    });
}

void addRead(CLI::App& app, const Parsed& parsed, Run& run)
{
    CLI::App* command =
        app.add_subcommand("read", "Read items once, as the service or the device has them");
    command->footer(read_text);
    command
        ->add_option("ITEM", parsed->items,
                     "Names of items; of a device without --config: addresses")
        ->type_name("")
        ->required();
    addCommon(command, parsed);
    addService(command, parsed);
    addTimeout(command, parsed, "Longest wait for the values, or for the link");
    command->add_flag("--json", parsed->json, "One line of JSON for every item");
    command->add_flag("--quiet", parsed->quiet, "The values only");
    addLink(command, parsed);
    addRequest(command, parsed);
    command->callback([command, parsed, &run] {
        const config::CommonOptions common = commonOptions(command, *parsed);
        const config::ReadOptions options = {texts(parsed->items), parsed->quiet, parsed->timeout};
        run = [common, options] {
            if (driver::isForDevice(common))
                return runDeviceRead(common, options);
            driver::refuseDeviceOptions(common);
            return runRead(common, options);
        };
    });
}

void addWrite(CLI::App& app, const Parsed& parsed, Run& run)
{
    CLI::App* command = app.add_subcommand("write", "Write one value to an item");
    command->footer(write_text);
    command
        ->add_option("ITEM", parsed->item,
                     "Name of the item; of a device without --config: address")
        ->type_name("")
        ->required();
    command->add_option("VALUE", parsed->value, "New value")->type_name("")->required();
    addCommon(command, parsed);
    addService(command, parsed);
    addTimeout(command, parsed, "Longest wait until it is sent, or for the link");
    markOfService(
        command->add_option("--confirm", parsed->confirm, "Wait until the service shows the value")
            ->type_name("SECONDS")
            ->check(secondsWithin(0.1, 86400)));
    addLink(command, parsed);
    addRequest(command, parsed);
    command->callback([command, parsed, &run] {
        const config::CommonOptions common = commonOptions(command, *parsed);
        const config::WriteOptions options = {text(parsed->item), text(parsed->value),
                                              parsed->confirm, parsed->timeout};
        run = [common, options] {
            if (driver::isForDevice(common))
                return runDeviceWrite(common, options);
            driver::refuseDeviceOptions(common);
            return runWrite(common, options);
        };
    });
}

void addRaw(CLI::App& app, const Parsed& parsed, Run& run)
{
    CLI::App* command = app.add_subcommand("raw", "Send bytes to a device as they are");
    command->footer(raw_text);
    command->add_option("HEX", parsed->bytes, "Bytes, such as 01 03 00 0A or 0103000A")
        ->type_name("")
        ->required();
    addCommon(command, parsed);
    const CLI::Option* timeout = addTimeout(
        command, parsed,
        "Longest wait for the answer, as --response-timeout; the link has 10 s at least");
    command->add_flag("--json", parsed->json, "One line of JSON");
    command->add_flag("--force", parsed->force,
                      "Even if the driver says that it does not support it");
    addLink(command, parsed);
    command->callback([command, timeout, parsed, &run] {
        config::CommonOptions common = commonOptions(command, *parsed);
        common.link_timeout = std::max(common.link_timeout, 10.0);
        if (timeout->count() > 0 && !common.link.response_timeout) {
            common.link.response_timeout =
                std::min(int(parsed->timeout * 1000), config::limits::response_timeout);
        }
        const config::RawOptions options = {texts(parsed->bytes), parsed->force};
        run = [common, options] {
            if (driver::isForDevice(common))
                return runDeviceRaw(common, options);
            throw terminal::UsageError(
                QStringLiteral("raw is for a device on a link, and there is none: add "
                               "--link tcp:HOST:PORT or --link serial:DEVICE"));
        };
    });
}

} // namespace

ParsedCommandLine parseCommandLine(int argc, const char* const* argv)
{
    ParsedCommandLine parsed;
    const Parsed options = std::make_shared<ParsedOptions>();
    CLI::App app(program_text, "tovik-host");
    app.footer(exit_text);
    app.require_subcommand(1);
    app.set_version_flag("--version", "tovik-host " TOVIK_HOST_VERSION);
    addWatch(app, options, parsed.run);
    addRead(app, options, parsed.run);
    addWrite(app, options, parsed.run);
    addRaw(app, options, parsed.run);
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
