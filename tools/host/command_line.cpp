#include "tools/host/command_line.h"

#include "tools/host/exit_code.h"
#include "tools/host/read.h"
#include "tools/host/watch.h"
#include "tools/host/write.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <vector>

namespace tovik_host {

namespace {

const char program_text[] = "Loads a driver plug-in as a host does, and shows it work.";

const char exit_text[] =
    "Exit codes: 0 done; 1 the service or the item says no, or the time ran out;\n"
    "2 usage, configuration or library is wrong.";

const char watch_text[] =
    "Reads all items again and again and shows what changes: a live table on a terminal,\n"
    "a line for every change elsewhere. Ends with Ctrl-C or after --seconds.\n"
    "Values are what a host sees: zeros and empty texts until the first cycle is done.\n"
    "\n"
    "Example:\n"
    "  tovik-host watch --config plant.json --seconds 60 --json";

const char read_text[] =
    "Reads items once, as the service has them.\n"
    "It serves each item twice with different initial values and takes a value once both\n"
    "agree, so it is never one from the driver's empty cache. An error code of the service\n"
    "ends it at once; a service that cannot be reached is tried again until --timeout.\n"
    "\n"
    "Example:\n"
    "  tovik-host read Pump.Speed Tank.Level --config plant.json";

const char write_text[] =
    "Writes one value, checked against the limits of the item's type, and waits until the\n"
    "driver has sent it. --confirm starts another driver, which knows nothing of the write,\n"
    "and waits until that one hears the value from the service.\n"
    "A value that begins with a minus sign and is no plain number goes behind \"--\".\n"
    "\n"
    "Example:\n"
    "  tovik-host write Pump.Speed 1200 --config plant.json --confirm 5";

/// What the options are parsed into: all commands' together, as only one of them runs.
struct RawOptions
{
    std::string config;
    std::string library;
    std::string url;
    std::string url_file;
    std::string log;
    bool json = false;
    bool verbose = false;
    WatchOptions watch;
    std::vector<std::string> items;
    bool quiet = false;
    std::string item;
    std::string value;
    double confirm = 0;
    double timeout = 10;
};

using Raw = std::shared_ptr<RawOptions>;

QString text(const std::string& bytes)
{
    return QString::fromStdString(bytes);
}

CommonOptions commonOptions(const RawOptions& raw)
{
    CommonOptions common;
    common.config = text(raw.config);
    common.library = text(raw.library);
    common.url = text(raw.url);
    common.url_file = text(raw.url_file);
    common.json = raw.json;
    common.verbose = raw.verbose;
    common.log = text(raw.log);
    return common;
}

void addCommon(CLI::App* command, const Raw& raw)
{
    command->add_option("--config", raw->config, "Configuration file (JSON)")
        ->type_name("FILE")
        ->required();
    command
        ->add_option("--library", raw->library,
                     "Driver library (default: libtovik_iot.so.1 beside this program)")
        ->type_name("PATH");
    CLI::Option* url =
        command->add_option("--url", raw->url, "Address of the service, instead of the file's")
            ->type_name("URL");
    command->add_option("--url-file", raw->url_file, "File whose first line is the address")
        ->type_name("FILE")
        ->excludes(url);
    command->add_option("--log", raw->log, "Append the driver's debug lines to a file")
        ->type_name("FILE")
        ->group("Driver's log");
    command->add_flag("--verbose", raw->verbose, "Driver's debug lines to the standard error")
        ->group("Driver's log");
}

void addTimeout(CLI::App* command, const Raw& raw, const char* description)
{
    command->add_option("--timeout", raw->timeout, description)
        ->type_name("SECONDS")
        ->check(CLI::Range(0.1, 86400.0))
        ->capture_default_str();
}

void addWatch(CLI::App& app, const Raw& raw, std::function<int()>& run)
{
    CLI::App* command = app.add_subcommand("watch", "Show items live as the driver serves them");
    command->footer(watch_text);
    addCommon(command, raw);
    command->add_option("--seconds", raw->watch.seconds, "End after this time")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.1, 1000000.0));
    command->add_option("--interval", raw->watch.interval, "Time between reads")
        ->type_name("MS")
        ->check(CLI::Range(20, 3600000))
        ->capture_default_str();
    command->add_flag("--json", raw->json, "One line of JSON for every change");
    command->callback(
        [raw, &run] { run = [raw] { return runWatch(commonOptions(*raw), raw->watch); }; });
}

void addRead(CLI::App& app, const Raw& raw, std::function<int()>& run)
{
    CLI::App* command = app.add_subcommand("read", "Read items once, as the service has them");
    command->footer(read_text);
    command->add_option("ITEM", raw->items, "Names of items")->type_name("")->required();
    addCommon(command, raw);
    addTimeout(command, raw, "Longest wait for the values");
    command->add_flag("--json", raw->json, "One line of JSON for every item");
    command->add_flag("--quiet", raw->quiet, "The values only");
    command->callback([raw, &run] {
        run = [raw] {
            ReadOptions options;
            for (const std::string& item : raw->items)
                options.items << text(item);
            options.quiet = raw->quiet;
            options.timeout = raw->timeout;
            return runRead(commonOptions(*raw), options);
        };
    });
}

void addWrite(CLI::App& app, const Raw& raw, std::function<int()>& run)
{
    CLI::App* command = app.add_subcommand("write", "Write one value to an item");
    command->footer(write_text);
    command->add_option("ITEM", raw->item, "Name of the item")->type_name("")->required();
    command->add_option("VALUE", raw->value, "New value")->type_name("")->required();
    addCommon(command, raw);
    addTimeout(command, raw, "Longest wait until it is sent");
    command->add_option("--confirm", raw->confirm, "Wait until the service shows the value")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.1, 86400.0));
    command->callback([raw, &run] {
        run = [raw] {
            WriteOptions options;
            options.item = text(raw->item);
            options.value = text(raw->value);
            options.confirm = raw->confirm;
            options.timeout = raw->timeout;
            return runWrite(commonOptions(*raw), options);
        };
    });
}

} // namespace

ParsedCommandLine parseCommandLine(int argc, const char* const* argv)
{
    ParsedCommandLine parsed;
    const Raw raw = std::make_shared<RawOptions>();
    CLI::App app(program_text, "tovik-host");
    app.footer(exit_text);
    app.require_subcommand(1);
    app.set_version_flag("--version", "tovik-host " TOVIK_HOST_VERSION);
    addWatch(app, raw, parsed.run);
    addRead(app, raw, parsed.run);
    addWrite(app, raw, parsed.run);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        parsed.run = nullptr;
        parsed.exit_code = app.exit(error) == 0 ? exitDone : exitUsage;
    }
    return parsed;
}

} // namespace tovik_host
