#include "tools/host/check/check.h"
#include "tools/host/commands.h"
#include "tools/host/driver/setup.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/watch/watch_view.h"

#include <CLI/CLI.hpp>

#include <limits>

namespace tovik_host {

namespace {

const char watch_text[] =
    R"(Reads all items again and again and shows what changes: a live table on a terminal,
a line for every change elsewhere. Ends with Ctrl-C or after --seconds.
An item shows a value once the service has delivered one, and says so when no news of it
has come for a while. When no value has ever come, the exit code is 1. A link that is lost
is opened again; until then the status is offline.

Example:
  tovik-host watch --config plant.json --seconds 60 --json
  tovik-host watch 'Pump.*' --config plant.json --count 1 --strict
With a device:
  tovik-host watch 4x1 4x10=32Bit-FLOAT --library modbus_drv \
      --link tcp:192.168.1.5:502 --interval 1000)";

struct Watch : watch::WatchOptions
{
    config::CommonOptions common;
    QStringList items;

    int run() const;
    int runOfService() const;
    int runOfDevice() const;
};

int Watch::run() const
{
    const bool is_traced_to_errors = common.trace && common.trace->isEmpty();
    if (is_traced_to_errors && watch::isWatchedOnTerminal(common) && ::isatty(STDERR_FILENO) != 0) {
        throw terminal::UsageError(
            u"the trace and the table would write over each other: name a file with "
            "--trace=FILE"_s);
    }
    return driver::meansDevice(common) ? runOfDevice() : runOfService();
}

int Watch::runOfService() const
{
    terminal::Context context;
    const driver::ServiceSetup setup(common, context);
    const std::unique_ptr<watch::WatchView> view = watch::watchView(common, context);
    const QVector<config::ItemConfig> watched =
        items.isEmpty() ? setup.config.items : setup.chosen(items);
    view->start({setup.plugin.path(), setup.plugin.versionText(), setup.shownUrl(),
                 setup.config.service.project},
                QDateTime::currentDateTime());
    watch::WatchModel model(watched, QDateTime::currentDateTime(), stale);
    watch::watchService(context, setup, *this, model, *view, [&](int status) {
        return causeOfNoConnection(context, setup, common, status);
    });
    const int code = watch::endWatch(*view, model, *this, context);
    if (code == terminal::exitRefused && model.valueCount() == 0) {
        if (model.wasConnected())
            check::advise(context, model.cycleEndText(), check::checkCommand(common));
        else
            explainNoConnection(context, setup, common, model.status());
    }
    return code;
}

int Watch::runOfDevice() const
{
    if (items.isEmpty() && common.config.isEmpty()) {
        throw terminal::UsageError(
            u"there is nothing to watch: name addresses, or a file of items with --config"_s);
    }
    terminal::Context context;
    driver::DeviceSetup setup(common, items, context);
    const std::unique_ptr<watch::WatchView> view = watch::watchView(common, context);
    if (!setup.open())
        return terminal::exitRefused;
    view->start({setup.plugin.path(), setup.plugin.versionText(), QString(), QString(),
                 driver::linkText(setup.config.link)},
                QDateTime::currentDateTime());
    watch::WatchModel model(setup.config.items, QDateTime::currentDateTime());
    watch::watchDevice(setup, *this, model, *view,
                       !watch::isWatchedOnTerminal(common) && !common.verbose);
    return watch::endWatch(*view, model, *this, context);
}

} // namespace

void addWatch(CLI::App& app, Run& run)
{
    const auto options = std::make_shared<Watch>();
    CLI::App* const command = addCommand(
        app, run, "watch", "Show items live as the driver serves them", watch_text,
        [options] { return options->run(); }, options->common);
    addTexts(command, "ITEM", options->items,
             "Names of items, or patterns of them with * ? [] (default: all); of a device without "
             "--config: addresses");
    addCommon(command, options->common);
    addWays(command, options->common);
    addSeconds(command, "--seconds", options->seconds, "End after this time", 1000000);
    addWhole(command, "--interval", options->interval, "Time between reads", "MS", 20, 3600000)
        ->capture_default_str();
    addWhole(command, "-C,--count", options->count, "End after so many values", "N", 1,
             std::numeric_limits<int>::max());
    command->add_flag("--strict", options->is_strict,
                      "End with 1 if a value was stale or bad at any time");
    command->add_flag("-j,--json", options->common.json, "One line of JSON for every change");
    markOfService(addWhole(command, "--stale", options->stale,
                           "A value is stale after so many cycles without news; 0: never", "CYCLES",
                           0, 1000000)
                      ->capture_default_str());
    markOfService(addSeconds(command, "--metrics", options->metrics,
                             "Also report cycle time, reads per second, errors and ages so often"));
    markOfDevice(addTimeout(command, options->common.timeout, "Longest wait for the link"));
}

} // namespace tovik_host
